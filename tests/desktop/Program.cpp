#include "tests/desktop/Program.h"

#include <csignal>
#include <fstream>
#include <stdexcept>

using namespace test;

Program::Program(Desk& desk, const TemporaryHome& home)
    : fHome(home)
    , fDesk(desk) {}

std::string Program::TextIn(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Program::Path() {
    const char* other = getenv("QUILLBAR");
    return other != nullptr ? other : QUILLBAR_BINARY;
}

BMessage Program::Settings() const {
    const std::string text = TextIn(SettingsFile());
    BMessage settings;
    settings.Unflatten(text.data(), text.size());
    return settings;
}

void Program::WriteSettings(const BMessage& settings) const {
    std::string text;
    settings.Flatten(&text);
    std::ofstream(SettingsFile(), std::ios::binary) << text;
}

void Program::Launch(bool asOrdinaryUser, const Variables& environment) {
    if (asOrdinaryUser) {
        const std::string user = std::to_string(ChildProcess::OrdinaryUser());
        ChildProcess({.arguments = {"chown", "-hR", user + ":" + user, fHome.Path()}}).Wait();
    }
    fProcess =
        std::make_unique<ChildProcess>(ChildProcess::Options{.arguments = {Path()},
                                                             .environment = environment,
                                                             .output = "/dev/null",
                                                             .errors = fHome.Path() / "errors",
                                                             .ordinaryUser = asOrdinaryUser});
}

void Program::Start(const Variables& environment) {
    Launch(false, environment);
    if (!WaitForBar())
        throw std::runtime_error("the bar did not come up: " + Errors());
}

bool Program::WaitForBar() {
    return WaitUntil([this] {
               if (!IsRunning())
                   return true;
               if (!Bar().viewable)
                   return false;
               const Box button = Button(9);
               return fDesk.Pixel(button.x + button.width - 2, button.y + 2) != 0;
           }) &&
           IsRunning();
}

bool Program::IsRunning() {
    return fProcess && fProcess->IsRunning();
}

int Program::WaitForEnd(std::chrono::milliseconds deadline) {
    return fProcess->Wait(deadline).value_or(-1);
}

int Program::Stop() {
    fProcess->Signal(SIGTERM);
    return WaitForEnd();
}

int Program::StartAgain() {
    return ChildProcess({.arguments = {Path()}}).Wait().value_or(-1);
}

std::string Program::Errors() const {
    return TextIn(fHome.Path() / "errors");
}

WindowInfo Program::Bar() const {
    const auto bars = fDesk.Windows([this](const WindowInfo& window) {
        return window.pid == Pid() && window.title == "Quillbar";
    });
    return bars.empty() ? WindowInfo{} : bars[0];
}

std::vector<WindowInfo> Program::Titled(const std::string& title) const {
    return fDesk.Windows([&](const WindowInfo& window) {
        return window.viewable && window.pid == Pid() && window.title == title;
    });
}

// The window is its content of 22 by 264 or 233 by 25 units and the border around it. Some window
// managers make it thicker.
Box Program::Content() const {
    const Box frame = Bar().frame;
    const bool horizontal = IsHorizontal();
    const auto units = [this](int count) { return static_cast<int>(count * fDesk.Scale()); };
    const int width = units(horizontal ? 233 : 22);
    const int height = units(horizontal ? 25 : 264);
    const int border = (horizontal ? frame.width - width : frame.height - height) / 2;
    return {frame.x + border, frame.y + border, width, height};
}

bool Program::IsHorizontal() const {
    const Box frame = Bar().frame;
    return frame.width > frame.height;
}

Box Program::InBar(int x, int y, int width, int height) const {
    const Box content = Content();
    const double scale = fDesk.Scale();
    return {content.x + static_cast<int>(x * scale), content.y + static_cast<int>(y * scale),
            static_cast<int>(width * scale), static_cast<int>(height * scale)};
}

Box Program::Button(int digit) const {
    return IsHorizontal() ? InBar(14 + 22 * digit, 0, 21, 21) : InBar(1, 14 + 25 * digit, 21, 21);
}

Box Program::DragBar() const {
    return IsHorizontal() ? InBar(0, 0, 14, 25) : InBar(0, 0, 22, 14);
}

Box Program::CloseBox() const {
    return InBar(2, 2, 9, 9);
}
