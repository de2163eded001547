#include "bench/DesktopBench.h"

#include <X11/keysym.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <thread>

#include "bench/Measure.h"

using namespace test;

namespace bench {

namespace {

constexpr uint32_t kRootColour = 0xff00ff;
constexpr int kBarX = 32; // inside the first folder button, and inside the bare windows
constexpr int kBarY = 60;
constexpr int kStripX = 46; // inside the drag strip
constexpr int kStripY = 36;
constexpr int kAwayX = 1000;
constexpr int kAwayY = 700;
constexpr int kLaterMenus = 3;

// The bar is dimmed until it is active.
bool IsBar(uint32_t pixel) {
    return pixel == 0xd8d8d8 || pixel == 0xb8b8b8;
}

std::unique_ptr<ChildProcess> Run(const Subject& subject) {
    ChildProcess::Options options;
    options.arguments = subject.command;
    options.output = "/dev/null";
    return std::make_unique<ChildProcess>(options);
}

// Asks without a pause, so that the time found is the server's.
template <typename Predicate>
void AwaitPainted(Predicate painted) {
    const Stopwatch time;
    while (!painted())
        if (time.Elapsed() > 10'000)
            throw std::runtime_error("nothing was painted");
}

void End(ChildProcess& process) {
    process.Signal(SIGTERM);
    process.Wait();
}

// A line "NAME: VALUE" of a file in /proc; the values of all such files of a folder's entries.
double ValueOf(const std::filesystem::path& file, const std::string& name) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with(name + ":"))
            return std::stod(line.substr(name.size() + 1));
    return 0;
}

double ContextSwitches(pid_t pid) {
    double sum = 0;
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task"))
        sum += ValueOf(task.path() / "status", "voluntary_ctxt_switches");
    return sum;
}

// The last pixel of a text that came up, in the part of the screen right of x = 54.
void FindText(Subject& subject, const Picture& before, const Picture& after) {
    for (int y = 1; y < after.height; ++y)
        for (int x = 8; x < after.width - 1; ++x)
            // Not the menu's border: that has no background beside it.
            if (after.At(x, y) == 0 && before.At(x, y) != 0 && after.At(x + 1, y) != kRootColour &&
                after.At(x - 1, y) != 0 && after.At(x, y - 1) != kRootColour) {
                subject.menuX = 54 + x;
                subject.menuY = y;
            }
}

} // namespace

DesktopBench::DesktopBench(Desk& desktop)
    : fDesktop(desktop) {
    xcb_change_window_attributes(desktop.Connection(), desktop.Root(), XCB_CW_BACK_PIXEL,
                                 &kRootColour);
    xcb_clear_area(desktop.Connection(), 0, desktop.Root(), 0, 0, 0, 0);
    desktop.Sync();
}

void DesktopBench::LearnMenu(Subject& subject) {
    fDesktop.MoveTo(kAwayX, kAwayY);
    const auto process = Run(subject);
    AwaitPainted([&] { return IsBar(fDesktop.Pixel(kBarX, kBarY)); });
    const Picture before = fDesktop.Grab({54, 0, 600, 600});
    fDesktop.Click(subject.x, subject.y);
    WaitUntil([&] { // until the whole of it is there
        const int last = subject.menuY;
        FindText(subject, before, fDesktop.Grab({54, 0, 600, 600}));
        return subject.menuX != 0 && subject.menuY == last;
    });
    End(*process);
    if (subject.menuX == 0)
        throw std::runtime_error("no text was found in the menu of " + subject.name);
}

void DesktopBench::Measure(Subject& subject) {
    fDesktop.MoveTo(kAwayX, kAwayY);
    // The last program's window would be taken for this one's, and its end takes the server and the
    // window manager some time.
    AwaitPainted([&] { return fDesktop.Pixel(kBarX, kBarY) == kRootColour; });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const Stopwatch time;
    const auto process = Run(subject);
    AwaitPainted([&] { return IsBar(fDesktop.Pixel(kBarX, kBarY)); });
    subject.start.push_back(time.Elapsed());

    std::this_thread::sleep_for(std::chrono::milliseconds(700)); // what comes after the first paint
    const std::filesystem::path memory =
        "/proc/" + std::to_string(process->Pid()) + "/smaps_rollup";
    subject.pss.push_back(ValueOf(memory, "Pss"));
    subject.privateDirty.push_back(ValueOf(memory, "Private_Dirty"));

    if (subject.hasMenu) {
        subject.firstMenu.push_back(OpenMenu(subject));
        for (int opening = 0; opening < kLaterMenus; ++opening)
            subject.laterMenus.push_back(OpenMenu(subject));
    }
    End(*process);
}

// Milliseconds from the press to the menu's last text; closes it again.
double DesktopBench::OpenMenu(const Subject& subject) {
    fDesktop.MoveTo(subject.x, subject.y);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const auto menuPixel = [&] { return fDesktop.Pixel(subject.menuX, subject.menuY); };
    const Stopwatch time;
    fDesktop.Press();
    fDesktop.Release();
    AwaitPainted([&] { return menuPixel() == 0; });
    const double result = time.Elapsed();
    if (subject.pressCloses)
        fDesktop.Click(subject.x, subject.y);
    else
        fDesktop.Key(XK_Escape);
    AwaitPainted([&] { return menuPixel() == kRootColour; });
    return result;
}

void DesktopBench::MeasureWakeUps(Subject& subject, int seconds) {
    subject.wakeUps = {WakeUps(subject, kAwayX, kAwayY, seconds)};
    subject.wakeUpsOnButton = {WakeUps(subject, subject.x, subject.y, seconds)};
    subject.wakeUpsBeside = {WakeUps(subject, kStripX, kStripY, seconds)};
}

double DesktopBench::WakeUps(const Subject& subject, int x, int y, int seconds) {
    fDesktop.MoveTo(kAwayX, kAwayY);
    const auto process = Run(subject);
    std::this_thread::sleep_for(std::chrono::seconds(2));
    fDesktop.MoveTo(x, y);
    std::this_thread::sleep_for(std::chrono::seconds(4)); // a help bubble comes and goes
    const double before = ContextSwitches(process->Pid());
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    const double wakeUps = (ContextSwitches(process->Pid()) - before) / seconds;
    End(*process);
    return wakeUps;
}

} // namespace bench
