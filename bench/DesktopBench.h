#pragma once

#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/Desk.h"

namespace bench {

// One of the programs that are compared.
struct Subject {
    std::string name;
    std::vector<std::string> command;
    // Somewhere in its window, and a press there.
    int x;
    int y;
    bool hasMenu;
    bool pressCloses; // the menu; otherwise Escape does
    // The last of its menu's black pixels on the screen; learnt by a start that is not measured.
    int menuX = 0;
    int menuY = 0;

    std::vector<double> start = {};     // process start to painted, ms
    std::vector<double> firstMenu = {}; // press to painted menu, ms
    std::vector<double> laterMenus = {};
    std::vector<double> pss = {};          // KiB
    std::vector<double> privateDirty = {}; // KiB
    // A second, while nothing happens, with the pointer elsewhere, on the button, beside the
    // buttons.
    std::vector<double> wakeUps = {};
    std::vector<double> wakeUpsOnButton = {};
    std::vector<double> wakeUpsBeside = {};
};

// Measures programs on a desktop of its own, whose root is filled with a colour that no program
// shows.
class DesktopBench {
public:
    explicit DesktopBench(test::Desk& desktop);

    void LearnMenu(Subject& subject);
    // One start, the memory after it, and the menu's first and later openings.
    void Measure(Subject& subject);
    void MeasureWakeUps(Subject& subject, int seconds);

private:
    double OpenMenu(const Subject& subject);
    double WakeUps(const Subject& subject, int x, int y, int seconds);

    test::Desk& fDesktop;
};

} // namespace bench
