#include "kits/interface/text/UndoHistory.h"

namespace {

constexpr size_t kMaxEdits = 1000;

bool BeginsWord(const TextEdit& before, const TextEdit& next) {
    return before.inserted.ends_with(' ') && !next.inserted.starts_with(' ');
}

} // namespace

void UndoHistory::Add(TextEdit edit, Kind kind) {
    fEdits.resize(fDone);
    bool isContinued = kind == fLastKind && fDone > 0 && Continue(edit, kind);
    fLastKind = kind;
    if (!isContinued)
        fEdits.push_back(std::move(edit));
    if (fEdits.size() > kMaxEdits)
        fEdits.erase(fEdits.begin());
    fDone = fEdits.size();
}

// Whether the change has become part of the last one.
bool UndoHistory::Continue(const TextEdit& edit, Kind kind) {
    TextEdit& last = fEdits.back();
    if (kind == Kind::Typing) {
        bool follows = edit.removed.empty() &&
                       edit.offset == last.offset + static_cast<int32>(last.inserted.size());
        if (!follows || BeginsWord(last, edit))
            return false;
        last.inserted += edit.inserted;
        return true;
    }
    if (kind != Kind::Erasing || !last.inserted.empty() || !edit.inserted.empty())
        return false;
    if (edit.offset == last.offset) {
        last.removed += edit.removed;
        return true;
    }
    if (edit.offset + static_cast<int32>(edit.removed.size()) != last.offset)
        return false;
    last.removed.insert(0, edit.removed);
    last.offset = edit.offset;
    return true;
}

void UndoHistory::Clear() {
    fEdits.clear();
    fDone = 0;
    EndGroup();
}

const TextEdit* UndoHistory::Undo() {
    EndGroup();
    return fDone > 0 ? &fEdits[--fDone] : nullptr;
}

const TextEdit* UndoHistory::Redo() {
    EndGroup();
    return fDone < fEdits.size() ? &fEdits[fDone++] : nullptr;
}
