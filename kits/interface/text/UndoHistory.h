#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/Types.h"

// One change of a text: at `offset`, `removed` became `inserted`. Offsets count bytes.
struct TextEdit {
    int32 offset;
    std::string removed;
    std::string inserted;
    std::pair<int32, int32> selection; // before the change
};

// The changes of a text, to be taken back and made again. Characters typed or erased one after the
// other are one change, typed ones up to the end of a word. Their number is bounded, the oldest
// changes go first.
class UndoHistory {
public:
    enum class Kind { Typing, Erasing, Other };

    void Add(TextEdit edit, Kind kind);
    // The next change is one of its own.
    void EndGroup() { fLastKind = Kind::Other; }
    void Clear();

    bool CanUndo() const { return fDone > 0; }
    bool CanRedo() const { return fDone < fEdits.size(); }
    // The change to take back, or to make again; null if there is none. Valid until the next call.
    const TextEdit* Undo();
    const TextEdit* Redo();

private:
    bool Continue(const TextEdit& edit, Kind kind);

    std::vector<TextEdit> fEdits;
    size_t fDone = 0; // those before it are in the text
    Kind fLastKind = Kind::Other;
};
