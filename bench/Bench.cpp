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

// A panel in use, at the bar's place and of its size, with a launcher and a clock.
std::vector<std::string> PanelCommand(const test::TemporaryHome& home) {
    const std::filesystem::path config = home.Path() / "panel";
    std::ofstream(config) << "background_color = #d8d8d8 100\n"
                             "panel_items = LC\n"
                             "panel_size = 266 24\n"
                             "panel_position = top left vertical\n"
                             "panel_margin = 29 29\n"
                             "panel_background_id = 1\n"
                             "launcher_item_app = browser.desktop\n"
                             "time1_format = 0\n";
    return {"tint2", "-c", config};
}

struct Subjects {
    Subject quillbar;
    Subject cairo;
    Subject xcb;
    Subject panel;

    std::vector<Subject*> All() { return {&xcb, &cairo, &panel, &quillbar}; }
};

// One row: the median of each subject that has the figure, divided by `divisor`.
void PrintRow(const char* what, const char* unit, std::vector<double> Subject::*figure,
              const Subjects& subjects, const char* budget, double divisor = 1) {
    printf("| %s |", what);
    for (const Subject* subject :
         {&subjects.quillbar, &subjects.cairo, &subjects.xcb, &subjects.panel}) {
        const std::vector<double>& values = subject->*figure;
        if (values.empty())
            printf(" |");
        else
            printf(" %.2f%s |", Median(values) / divisor, unit);
    }
    const double bare = Median(subjects.cairo.*figure);
    if (bare > 0)
        printf(" %.2f | %s |\n", Median(subjects.quillbar.*figure) / bare, budget);
    else
        printf(" | %s |\n", budget);
}

void PrintPrograms(const Subjects& subjects) {
    printf("Medians of %d interleaved runs.\n\n", kRuns);
    printf("| measured | Quillbar | bare Cairo and Pango | bare xcb | tint2 | ratio to Cairo and "
           "Pango | budget |\n| --- | ---: | ---: | ---: | ---: | ---: | --- |\n");
    PrintRow("process start to painted, 100 bookmarks", " ms", &Subject::start, subjects,
             "ratio 1.25");
    PrintRow("press to painted folder menu, first", " ms", &Subject::firstMenu, subjects,
             "ratio 1.6");
    PrintRow("press to painted folder menu, later", " ms", &Subject::laterMenus, subjects,
             "ratio 1.3");
    PrintRow("PSS", " MiB", &Subject::pss, subjects, "6.5 MiB", 1024);
    PrintRow("private dirty", " MiB", &Subject::privateDirty, subjects, "2.6 MiB", 1024);
    PrintRow("wake-ups a second, idle", "", &Subject::wakeUps, subjects, "0");
    PrintRow("the same, the pointer rests on a button", "", &Subject::wakeUpsOnButton, subjects,
             "");
    PrintRow("the same, the pointer rests on the drag strip", "", &Subject::wakeUpsBeside, subjects,
             "");
}

void PrintStore(std::map<std::string, double>& store) {
    printf("\n| the store | time | budget |\n| --- | ---: | --- |\n");
    const std::pair<const char*, const char*> rows[] = {
        {"rebuild", "3 ms"},
        {"rename", "1 ms"},
        {"attribute", "1 ms"},
        {"scan 1000", "linear"},
        {"scan 10000", "linear"},
        {"scan 100000", "linear"},
        {"burst", "1000 ms after the last event"},
        {"arrivals 1000", "1000 ms after the last"},
        {"arrivals 3000", "1000 ms after the last"},
        {"arrivals 10000", "1000 ms after the last"},
        {"click during arrivals", "100 ms"},
    };
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
    // The bar's third button; anywhere in the others.
    Subjects subjects{.quillbar = {"Quillbar", {QUILLBAR}, 40, 105, true, false},
                      .cairo = {"bare Cairo and Pango", {BARE_CAIRO}, 40, 105, true, true},
                      .xcb = {"bare xcb", {BARE_XCB}, 40, 105, false, false},
                      .panel = {"tint2", PanelCommand(home), 40, 105, false, false}};
    for (Subject* subject : subjects.All())
        if (subject->hasMenu)
            bench.LearnMenu(*subject);
    for (int run = 0; run < kRuns; ++run)
        for (Subject* subject : subjects.All())
            bench.Measure(*subject);
    for (Subject* subject : subjects.All())
        bench.MeasureWakeUps(*subject, kIdleSeconds);
    PrintPrograms(subjects);
    PrintStore(store);
}
