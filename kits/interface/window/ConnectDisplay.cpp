#include <algorithm>
#include <cctype>
#include <string>

#include "host/draw/Image.h"
#include "host/x11/Display.h"
#include "kits/app/AppResources.h"
#include "kits/app/Application.h"
#include "kits/app/SessionHooks.h"
#include "kits/interface/window/Window.h"
#include "kits/interface/window/WindowRoster.h"

namespace {

constexpr bigtime_t kClipboardPatience = 1'000'000;

// "Name" of the signature "application/x-Vendor.Name".
std::string ProgramName() {
    const char* resource = get_app_resources()->signature;
    std::string signature = be_app ? be_app->Signature() : resource ? resource : "";
    return signature.substr(signature.find_last_of("./") + 1);
}

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    return text;
}

void SetIcons(host::Display& display) {
    std::vector<host::Image> icons;
    for (const app_icon& icon : {get_app_resources()->large_icon, get_app_resources()->mini_icon}) {
        if (icon.pixels != nullptr && icon.size > 0)
            icons.push_back(
                {reinterpret_cast<const uint8*>(icon.pixels), icon.size, icon.size, icon.size * 4});
    }
    display.SetIcons(icons);
}

// After the last window nothing is copied any more.
bool QuitWindows(WindowRoster& roster) {
    bool haveQuit = roster.QuitWindows();
    if (haveQuit)
        host::Display::Shared()->SaveClipboard(kClipboardPatience);
    return haveQuit;
}

} // namespace

status_t connect_display() {
    WindowRoster& roster = WindowRoster::Shared();
    std::string name = ProgramName();
    status_t status = host::Display::Open(&roster, LowerCase(name).c_str(), name.c_str());
    if (status != B_OK)
        return status;
    SetIcons(*host::Display::Shared());
    set_session_hooks({.dismiss = [&roster] { roster.Dismiss(); },
                       .allow = [&roster] { roster.Allow(); },
                       .quit_windows = [&roster] { return QuitWindows(roster); },
                       .wake = [&roster] { roster.Wake(); },
                       .window_at = [&roster](int32 index) { return roster.WindowAt(index); }});
    return B_OK;
}
