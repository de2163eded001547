#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/loop/Descriptor.h"
#include "host/loop/ServiceLoop.h"

namespace host {

// One peer's connection to an instance socket: takes one message, answers, and is done. A peer
// that sends anything else, or is slower than two seconds, is done as well. Service thread.
class InstanceConnection {
public:
    // `onDone` may delete this.
    InstanceConnection(Descriptor connection, std::function<void(std::string_view)> onMessage,
                       std::function<void()> onDone);

    InstanceConnection(const InstanceConnection&) = delete;

private:
    // True when there is nothing more to come.
    bool Receive();

    const Descriptor fConnection;
    const std::function<void(std::string_view)> fOnMessage;
    std::string fReceived;
    const DescriptorWatch fWatch;
    const Timer fDeadline;
};

} // namespace host
