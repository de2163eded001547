#pragma once

#include "kits/app/Messenger.h"
#include "kits/support/String.h"
#include "quillbar/base/Commands.h"

// The browsers that bookmarks are opened in. Any thread.

// Whether it is installed.
bool HasBrowser(QBBrowser browser);

// The one that was chosen, or the other if that is the only one installed.
QBBrowser UsableBrowser(QBBrowser chosen, bool hasOpera, bool hasNetPositive);

// What the desktop calls it, or the platform.
BString BrowserName(QBBrowser browser);

// Opens the URL in the browser. `report` gets B_PROGRAM_FAILED if the browser ends at once with an
// error. B_BAD_VALUE if there is no such browser, or the URL could be read as an option or holds a
// control character; B_LAUNCH_FAILED_APP_NOT_FOUND if the browser is not installed; otherwise the
// reason why it could not be started.
status_t OpenInBrowser(QBBrowser browser, const char* url, const BMessenger& report = BMessenger());

// Why a browser could not be started, for the user: "it is not installed."
const char* LaunchReason(status_t status);
