#include "kits/app/MessageFilter.h"

#include "kits/app/Message.h"

BMessageFilter::BMessageFilter(message_delivery delivery, message_source source, uint32 command,
                               filter_hook hook)
    : fDelivery(delivery)
    , fSource(source)
    , fCommand(command)
    , fHook(hook) {}

BMessageFilter::BMessageFilter(uint32 command, filter_hook hook)
    : BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE, command, hook) {}

BMessageFilter::~BMessageFilter() = default;

filter_result BMessageFilter::Filter(BMessage* message, BHandler** target) {
    return fHook ? fHook(message, target, this) : B_DISPATCH_MESSAGE;
}

bool BMessageFilter::Concerns(const BMessage& message) const {
    const auto delivery = message.WasDropped() ? B_DROPPED_DELIVERY : B_PROGRAMMED_DELIVERY;
    const auto source = message.IsSourceRemote() ? B_REMOTE_SOURCE : B_LOCAL_SOURCE;
    return fCommand == message.what && (fDelivery == B_ANY_DELIVERY || fDelivery == delivery) &&
           (fSource == B_ANY_SOURCE || fSource == source);
}
