#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kits/app/Message.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Desk.h"
#include "tests/support/TemporaryHome.h"

// The program under test, on a desktop and in a home folder. Places are in screen pixels.
class Program {
public:
    Program(test::Desk& desk, const test::TemporaryHome& home);

    // The program that is started: what QUILLBAR in the environment names, or the one built here.
    static std::string Path();
    static std::string TextIn(const std::filesystem::path& path); // empty if it is not there

    // Where it keeps its things in the home folder.
    std::filesystem::path Root() const { return fHome.Config() / "Quillbar"; }
    std::filesystem::path SettingsFile() const { return fHome.Config() / "Quillbar.settings"; }
    BMessage Settings() const; // empty if the file is not a whole message
    void WriteSettings(const BMessage& settings) const;

    // Starts it; Start also waits until the bar stands painted on the screen.
    using Variables = std::map<std::string, std::string>;
    void Launch(bool asOrdinaryUser = false, const Variables& environment = {});
    void Start(const Variables& environment = {});
    bool WaitForBar();
    bool IsRunning();
    void Signal(int number) { fProcess->Signal(number); }
    // The exit status, or -1 if it did not end within `deadline`.
    int WaitForEnd(std::chrono::milliseconds deadline = test::kDeadline);
    // Ends it by SIGTERM.
    int Stop();
    // Starts it once more beside itself and gives that one's exit status.
    int StartAgain();

    pid_t Pid() const { return fProcess->Pid(); }
    std::string Errors() const;

    // Its windows that are shown. A bar that is minimised is still given.
    test::WindowInfo Bar() const;
    std::vector<test::WindowInfo> Menus() const { return fDesk.Shown("POPUP_MENU", Pid()); }
    std::vector<test::WindowInfo> Alerts() const { return fDesk.Shown("DIALOG", Pid()); }
    std::vector<test::WindowInfo> Titled(const std::string& title) const;
    std::vector<test::WindowInfo> AddWindows() const { return Titled("Quillbar - Add Bookmark"); }

    // Of the bar: what its border encloses, and the widgets in it.
    test::Box Content() const;
    bool IsHorizontal() const;
    test::Box Button(int digit) const;
    test::Box DragBar() const;
    test::Box CloseBox() const;

private:
    test::Box InBar(int x, int y, int width, int height) const;

    const test::TemporaryHome& fHome;
    test::Desk& fDesk;
    std::unique_ptr<test::ChildProcess> fProcess;
};
