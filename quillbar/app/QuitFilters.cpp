#include "quillbar/app/QuitFilters.h"

#include "kits/app/AppDefs.h"
#include "quillbar/app/Application.h"

QBRemoteFilter::QBRemoteFilter()
    : BMessageFilter(B_ANY_DELIVERY, B_REMOTE_SOURCE, B_QUIT_REQUESTED) {}

filter_result QBRemoteFilter::Filter(BMessage*, BHandler**) {
    return B_DISPATCH_MESSAGE;
}

QBLocalFilter::QBLocalFilter()
    : BMessageFilter(B_ANY_DELIVERY, B_LOCAL_SOURCE, B_QUIT_REQUESTED) {}

filter_result QBLocalFilter::Filter(BMessage*, BHandler**) {
    const auto* app = static_cast<const QBApp*>(be_app);
    return app->IsMainWindowActive() ? B_DISPATCH_MESSAGE : B_SKIP_MESSAGE;
}
