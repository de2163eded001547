#include "kits/app/Handler.h"

#include <algorithm>

#include "kits/app/HandlerRegistry.h"
#include "kits/app/LooperState.h"
#include "kits/support/List.h"

BHandler::BHandler(const char* name)
    : fToken(HandlerRegistry::Shared().Enter(*this))
    , fName(name ? name : "") {}

BHandler::~BHandler() {
    if (BLooper* const looper = Looper())
        looper->RemoveHandler(this);
    HandlerRegistry::Shared().Leave(fToken);
}

void BHandler::MessageReceived(BMessage* message) {
    if (fNextHandler)
        fNextHandler->MessageReceived(message);
}

bool BHandler::LockLooper() {
    return LockLooperWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t BHandler::LockLooperWithTimeout(bigtime_t timeout) {
    HandlerRegistry& registry = HandlerRegistry::Shared();
    const auto state = registry.StateOf(*this);
    const status_t status = state ? state->LockUnlessDeleted(timeout) : B_BAD_VALUE;
    if (status != B_OK || registry.StateOf(*this) == state)
        return status;
    state->lock.Unlock();
    return B_BAD_VALUE;
}

void BHandler::UnlockLooper() {
    if (BLooper* const looper = Looper())
        looper->Unlock();
}

void BHandler::AddFilter(BMessageFilter* filter) {
    if (filter)
        fFilters.emplace_back(filter);
}

bool BHandler::RemoveFilter(BMessageFilter* filter) {
    return TakeOut(fFilters, filter);
}

bool BHandler::TakeOut(FilterList& filters, BMessageFilter* filter) {
    const auto found = std::find_if(filters.begin(), filters.end(),
                                    [filter](const auto& owned) { return owned.get() == filter; });
    if (found == filters.end())
        return false;
    // The caller's now.
    static_cast<void>(found->release());
    filters.erase(found);
    return true;
}

void BHandler::SetFilterList(BList* filters) {
    const std::unique_ptr<BList> list(filters);
    fFilters.clear();
    for (int32 i = 0; list && i < list->CountItems(); ++i)
        AddFilter(static_cast<BMessageFilter*>(list->ItemAt(i)));
}
