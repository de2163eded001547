#include "host/files/monitor/MonitorState.h"

#include <algorithm>

namespace host {

void MonitorState::Drop(int number) {
    inotify.Remove(number);
    Forget(number);
}

void MonitorState::Forget(int number) {
    if (watches.NamesOf(number))
        ForgetEntries(number);
    watches.Remove(number);
}

void MonitorState::ForgetEntries(int number) {
    std::erase_if(moves, [&](const auto& item) {
        if (item.second.origin.watch != number)
            return false;
        moveEnds.Remove(item.first);
        return true;
    });
    unread.erase(number);
}

void MonitorState::ForgetAllEntries() {
    moves.clear();
    moveEnds.Clear();
    quiet.Clear();
    unread.clear();
}

bigtime_t MonitorState::NextDeadline() const {
    bigtime_t first = moveEnds.Next();
    bigtime_t second = quiet.Next();
    return first == 0 || second == 0 ? std::max(first, second) : std::min(first, second);
}

} // namespace host
