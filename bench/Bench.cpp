// Compares the bar with bare programs, in one interleaved run, and times the store. Prints the
// table of docs/PERFORMANCE.md.

#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>

#include "bench/DesktopBench.h"
#include "bench/Measure.h"
#include "tests/support/Bookmarks.h"
#include "tests/support/RecordedApps.h"
#include "tests/support/TemporaryHome.h"

using namespace bench;

namespace {

constexpr int kRuns = 21;
constexpr int kIdleSeconds = 10;

void MakeBookmarks(const test::TemporaryHome& home) {
    for (int folder = 0; folder < 10; ++folder)
        for (int slot = 0; slot < 10; ++slot)
            test::MakeBookmark(home.Config() / "Quillbar" / (std::to_string(folder) + " - Folder") /
                                   (std::to_string(slot) + " - Site"),
                               "http://www.example.org/a/path", "some words");
}

std::map<std::string, double> TimeStore() {
    const test::TemporaryHome home;
    test::ChildProcess process({.arguments = {BENCH_STORE},
                                .environment = {},
                                .output = home.Path() / "times",
                                .errors = ""});
    process.Wait(std::chrono::minutes(5));
    std::map<std::string, double> times;
    std::ifstream lines(home.Path() / "times");
    for (std::string line; std::getline(lines, line);)
        // The program's traces go to the same output.
        if (const size_t tab = line.find('\t'); tab != std::string::npos && tab > 0)
            times[line.substr(0, tab)] = std::stod(line.substr(tab + 1));
    return times;
}

void PrintComparison(const char* what, const char* unit, double bar, double xcb, double cairo,
                     const char* budget) {
    printf("| %s | %.2f %s | %.2f %s | %.2f %s | %.2f | %s |\n", what, bar, unit, cairo, unit, xcb,
           unit, cairo > 0 ? bar / cairo : 0, budget);
}

void PrintTables(const std::vector<Subject>& subjects, std::map<std::string, double>& store) {
    const Subject& xcb = subjects[0];
    const Subject& cairo = subjects[1];
    const Subject& bar = subjects[2];
    printf("Medians of %d interleaved runs.\n\n", kRuns);
    printf("| measured | Quillbar | bare Cairo and Pango | bare xcb | ratio to Cairo and Pango | "
           "budget |\n| --- | ---: | ---: | ---: | ---: | --- |\n");
    PrintComparison("process start to painted, 100 bookmarks", "ms", Median(bar.start),
                    Median(xcb.start), Median(cairo.start), "ratio 1.25");
    printf("| press to painted folder menu, first | %.2f ms | %.2f ms | | %.2f | ratio 2 |\n",
           Median(bar.firstMenu), Median(cairo.firstMenu),
           Median(bar.firstMenu) / Median(cairo.firstMenu));
    printf("| press to painted folder menu, later | %.2f ms | %.2f ms | | %.2f | ratio 2 |\n",
           Median(bar.laterMenus), Median(cairo.laterMenus),
           Median(bar.laterMenus) / Median(cairo.laterMenus));
    PrintComparison("PSS", "MiB", Median(bar.pss) / 1024, Median(xcb.pss) / 1024,
                    Median(cairo.pss) / 1024, "ratio 1.5");
    PrintComparison("private dirty", "MiB", Median(bar.privateDirty) / 1024,
                    Median(xcb.privateDirty) / 1024, Median(cairo.privateDirty) / 1024, "ratio 2");
    printf("| wake-ups a second, idle | %.2f | %.2f | %.2f | | 0 |\n", bar.wakeUps, cairo.wakeUps,
           xcb.wakeUps);
    printf("| the same, the pointer rests on a button | %.2f | %.2f | %.2f | | |\n",
           bar.wakeUpsOnButton, cairo.wakeUpsOnButton, xcb.wakeUpsOnButton);
    printf("| the same, the pointer rests on the drag strip | %.2f | %.2f | %.2f | | |\n\n",
           bar.wakeUpsBeside, cairo.wakeUpsBeside, xcb.wakeUpsBeside);
    printf("| the store | time | budget |\n| --- | ---: | --- |\n");
    const std::pair<const char*, const char*> rows[] = {{"rebuild", "10 ms"},
                                                        {"rename", "3 ms"},
                                                        {"attribute", "3 ms"},
                                                        {"scan 1000", "linear"},
                                                        {"scan 10000", "linear"},
                                                        {"scan 100000", "linear"},
                                                        {"burst", "1000 ms after the last event"}};
    for (const auto& [name, budget] : rows) {
        if (store.contains(name))
            printf("| %s | %.2f ms | %s |\n", name, store[name], budget);
        else
            printf("| %s | failed | %s |\n", name, budget);
    }
}

} // namespace

int main() {
    test::Desk desktop({});
    std::map<std::string, double> store = TimeStore();

    const test::TemporaryHome home;
    test::RecordedApps apps(home);
    apps.InstallBrowser();
    MakeBookmarks(home);
    DesktopBench bench(desktop);
    // The bar's third button; anywhere in the bare windows.
    std::vector<Subject> subjects(3);
    subjects[0] = {"bare xcb", BARE_XCB, 40, 105, false, false};
    subjects[1] = {"bare Cairo and Pango", BARE_CAIRO, 40, 105, true, true};
    subjects[2] = {"Quillbar", QUILLBAR, 40, 105, true, false};
    for (Subject& subject : subjects)
        if (subject.hasMenu)
            bench.LearnMenu(subject);
    for (int run = 0; run < kRuns; ++run)
        for (Subject& subject : subjects)
            bench.Measure(subject);
    bench.MeasureWakeUps(subjects, kIdleSeconds);
    PrintTables(subjects, store);
}
