#pragma once

#include <functional>
#include <memory>

#include "host/loop/Descriptor.h"
#include "host/loop/ServiceLoop.h"

namespace host {

// Blocks the signals by which the system asks a program to end (SIGTERM, SIGINT, SIGHUP) in the
// calling thread and those it starts from now on, and ignores SIGPIPE; stays so when the object
// goes. A signal that the starter of the program had ignored stays ignored.
//
// While it lives, `onSignal` runs on the service thread for each that arrives. Destruction as for
// DescriptorWatch.
class SignalWatch {
public:
    explicit SignalWatch(std::function<void()> onSignal);

    SignalWatch(const SignalWatch&) = delete;

private:
    Descriptor fSignals;
    std::unique_ptr<DescriptorWatch> fWatch;
};

} // namespace host
