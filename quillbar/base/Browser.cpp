#include "quillbar/base/Browser.h"

#include "base/Errors.h"
#include "kits/app/Roster.h"

namespace {

// By their QBBrowser.
constexpr struct {
    const char* signature;
    const char* label;
} kBrowsers[] = {
    {"application/x-vnd.operasoftware-opera", "Opera"},
    {"application/x-vnd.Be-NPOS", "NetPositive"},
};

} // namespace

bool HasBrowser(QBBrowser browser) {
    return be_roster->FindApp(kBrowsers[browser].signature) == B_OK;
}

QBBrowser UsableBrowser(QBBrowser chosen, bool hasOpera, bool hasNetPositive) {
    if (hasOpera == hasNetPositive)
        return chosen;
    return hasOpera ? kQBOpera : kQBNetPositive;
}

BString BrowserName(QBBrowser browser) {
    const BString name = be_roster->NameOf(kBrowsers[browser].signature);
    return name.IsEmpty() ? kBrowsers[browser].label : name;
}

status_t OpenInBrowser(QBBrowser browser, const char* url, const BMessenger& report) {
    if (browser != kQBOpera && browser != kQBNetPositive)
        return B_BAD_VALUE;
    const char* const arguments[] = {url};
    return be_roster->Launch(kBrowsers[browser].signature, 1, arguments, report);
}

const char* LaunchReason(status_t status) {
    return status == B_LAUNCH_FAILED_APP_NOT_FOUND ? "it is not installed." : StatusText(status);
}
