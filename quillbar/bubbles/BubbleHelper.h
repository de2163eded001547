#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "base/Point.h"
#include "kits/app/Messenger.h"
#include "kits/kernel/Locker.h"
#include "kits/kernel/OS.h"

class BList;
class BTextView;
class BView;
class BWindow;

// Shows help bubbles: when the pointer rests over a view that has a help text, or over one inside
// it, a small window with that text comes up beside the pointer. It goes when the pointer moves or
// a button is pressed, when a menu opens, or after a time that grows with the text, and does not
// come up again before the pointer has moved.
//
// A thread of its own looks at the pointer once in a cycle, but sleeps while the pointer is over no
// window of the program. Order of locks: the bubble's window, another window, the entries.
class BubbleHelper {
public:
    static constexpr bigtime_t kCycle = 100'000; // microseconds

    // There is one at a time. Another one reports that as a mistake, and has no effect.
    explicit BubbleHelper(bigtime_t cycle = kCycle);

    // Stops the thread, quits the bubble's window and forgets all texts. The caller may hold the
    // locks of windows, but not the bubble's.
    virtual ~BubbleHelper();

    BubbleHelper(const BubbleHelper&) = delete;

    // Gives the view a copy of `text`, or no help for null. A view's help is taken away before the
    // view goes. Any thread.
    void SetHelp(BView* view, const char* text);

    // Null if the view has none. It stays the helper's, until the view's help is set again.
    const char* GetHelp(BView* view);

    // Whether bubbles come up; they do at first. Any thread.
    void EnableHelp(bool enable);

    // The view that can be seen at a point of the screen, in the first window of the program that
    // has one there; null if none has. A window that is busy for a second is left out. Any thread
    // that holds no window's lock but the bubble's.
    BView* FindView(BPoint where);

    // Show the bubble with its left-top corner at a point of the screen, or with `text` beside that
    // point, inside the point's monitor; and hide it. They do nothing before the bubble's window is
    // made, when the application has been launched. Any thread.
    void ShowBubble(BPoint where);
    void DisplayHelp(const char* text, BPoint where);
    void HideBubble();

private:
    static status_t _helper(void* data);
    void Helper();

    bool AwaitLaunch();
    void MakeBubble();
    bool LockBubble();
    bool WatchPointer();
    bool Raise(const std::string& text, BPoint where);
    bool PassCycle();
    bool AwaitLeave(BPoint where);

    void WithViewAt(BPoint where, const std::function<void(BView*)>& action);
    std::string HelpAt(BPoint where);
    int32 IndexOf(const BView* view) const;
    void RemoveEntry(int32 index);

    thread_id thread;
    BList* entries; // guarded by entrylock
    std::atomic<BWindow*> bubblewin;
    BTextView* bubbletext;
    std::atomic<bool> helpenabled;
    static std::atomic<int32> runcount;

    const bigtime_t cycle;
    BLocker entrylock;
    BMessenger bubble; // set before bubblewin
    // The helper thread's.
    BPoint lastseen;
    int32 restcount;
};
