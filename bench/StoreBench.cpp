// Times of the store, one "name<tab>milliseconds" a line. Wants a home folder and a display of its
// own.

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <semaphore>
#include <thread>

#include "bench/Measure.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/interface/window/Window.h"
#include "kits/storage/NodeMonitor.h"
#include "quillbar/bar/widgets/Menu.h"
#include "quillbar/bar/widgets/MenuItem.h"
#include "quillbar/base/Settings.h"
#include "quillbar/store/Monitor.h"
#include "quillbar/store/Path.h"
#include "tests/support/Bookmarks.h"

namespace fs = std::filesystem;
using bench::Median;
using bench::Stopwatch;

namespace {

constexpr int kRuns = 21;
constexpr int kMostArrivals = 10'000;
constexpr uint32 kClick = 'clik';

// Stands in the bar window's place: the store lives on its thread.
class StoreLooper : public BLooper {
public:
    StoreLooper()
        : BLooper("store") {
        fMonitor = std::make_unique<QBMonitor>(this, BMessenger(this));
    }

    QBMonitor& Monitor() { return *fMonitor; }
    QBItem& Slot(int folder, int slot) { return *fMonitor->fPaths[folder]->Items()[slot]; }

    // Returns when a message that is sent now has been handled.
    void Click() {
        PostMessage(kClick);
        fClicked.acquire();
    }

    void MessageReceived(BMessage* message) override {
        if (message->what == kClick)
            fClicked.release();
        if (message->what != B_NODE_MONITOR)
            return BLooper::MessageReceived(message);
        fMonitor->HandleNodeMessage(message);
        const std::lock_guard lock(fMutex);
        fHandled.notify_all();
    }

    // Waits, asking after each notification. False after 30 seconds.
    bool WaitFor(const std::function<bool()>& holds) {
        std::unique_lock lock(fMutex);
        return fHandled.wait_for(lock, std::chrono::seconds(30), [&] {
            lock.unlock(); // the looper takes its own lock first
            Lock();
            const bool result = holds();
            Unlock();
            lock.lock();
            return result;
        });
    }

private:
    std::unique_ptr<QBMonitor> fMonitor;
    std::mutex fMutex;
    std::condition_variable fHandled;
    std::binary_semaphore fClicked{0};
};

void Print(const std::string& name, double milliseconds) {
    printf("%s\t%.3f\n", name.c_str(), milliseconds);
    fflush(stdout);
}

fs::path Root() {
    return fs::path(getenv("XDG_CONFIG_HOME")) / "Quillbar";
}

fs::path BookmarkPath(int folder, int slot, const std::string& name) {
    return Root() / (std::to_string(folder) + " - Folder") / (std::to_string(slot) + " - " + name);
}

void MakeHundredBookmarks() {
    for (int folder = 0; folder < 10; ++folder)
        for (int slot = 0; slot < 10; ++slot)
            test::MakeBookmark(BookmarkPath(folder, slot, "Site"),
                               "http://www.example.org/" + std::to_string(slot), "some words");
}

void TimeRebuild(StoreLooper& looper) {
    BMessage rebuild(B_NODE_MONITOR);
    rebuild.AddInt32("opcode", 'qbRM');
    std::vector<double> times;
    for (int run = 0; run < kRuns; ++run) {
        looper.Lock();
        const Stopwatch time;
        looper.Monitor().HandleNodeMessage(&rebuild);
        times.push_back(time.Elapsed());
        looper.Unlock();
    }
    Print("rebuild", Median(times));
}

void TimeRename(StoreLooper& looper) {
    std::vector<double> times;
    std::string name = "Site";
    for (int run = 0; run < kRuns; ++run) {
        const std::string next = "Name " + std::to_string(run);
        const std::string label = "4 - " + next + " [";
        const Stopwatch time;
        fs::rename(BookmarkPath(3, 4, name), BookmarkPath(3, 4, next));
        if (looper.WaitFor([&] {
                return std::string(looper.Slot(3, 4).MenuItem()->Label()).starts_with(label);
            }))
            times.push_back(time.Elapsed());
        name = next;
    }
    Print("rename", Median(times));
}

void TimeAttribute(StoreLooper& looper) {
    std::vector<double> times;
    for (int run = 0; run < kRuns; ++run) {
        const std::string url = "http://changed.example/" + std::to_string(run);
        const Stopwatch time;
        test::SetUrl(BookmarkPath(5, 6, "Site"), url);
        if (looper.WaitFor([&] {
                return std::string(looper.Slot(5, 6).MenuItem()->Label()).ends_with(url + "]");
            }))
            times.push_back(time.Elapsed());
    }
    Print("attribute", Median(times));
}

// Whether the folder's slots are what lies on the disk.
bool IsLikeDisk(StoreLooper& looper, int folder) {
    for (int slot = 0; slot < 10; ++slot) {
        const bool exists = fs::exists(BookmarkPath(folder, slot, "Burst")) ||
                            fs::exists(BookmarkPath(folder, slot, "Renamed"));
        if (looper.Slot(folder, slot).IsValid() != exists)
            return false;
    }
    return true;
}

void TimeBurst(StoreLooper& looper) {
    constexpr int kRounds = 1000; // of ten bookmarks: made, given attributes, renamed, removed
    for (int slot = 0; slot < 10; ++slot)
        fs::remove(BookmarkPath(7, slot, "Site"));
    looper.WaitFor([&] { return IsLikeDisk(looper, 7); });
    for (int event = 0; event < kRounds; ++event) {
        for (int slot = 0; slot < 10; ++slot) {
            const fs::path path = BookmarkPath(7, slot, "Burst");
            if (event % 4 == 0)
                test::MakeBookmark(path, "http://burst.example/");
            else if (event % 4 == 1)
                test::SetUrl(path, "http://burst.example/" + std::to_string(event));
            else if (event % 4 == 2)
                fs::rename(path, BookmarkPath(7, slot, "Renamed"));
            else
                fs::remove(BookmarkPath(7, slot, "Renamed"));
        }
    }
    for (const int slot : {1, 4, 8})
        test::MakeBookmark(BookmarkPath(7, slot, "Burst"), "http://burst.example/");
    const Stopwatch time;
    if (looper.WaitFor([&] { return IsLikeDisk(looper, 7); }))
        Print("burst", time.Elapsed());
}

// How long the store's thread lets a message wait, as a click would, until it is asked.
class ClickTimer {
public:
    explicit ClickTimer(StoreLooper& looper)
        : fThread([this, &looper] {
            while (!fHasEnded) {
                const Stopwatch time;
                looper.Click();
                fLongest = std::max(fLongest, time.Elapsed());
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        }) {}
    double Longest() {
        fHasEnded = true;
        fThread.join();
        return fLongest;
    }

private:
    std::atomic<bool> fHasEnded = false;
    double fLongest = 0; // the thread's, until it has ended
    std::thread fThread;
};

// Bookmarks moved into a folder one by one.
void TimeArrivals(StoreLooper& looper, int count) {
    const auto name = [](int file) {
        return std::to_string(file % 9) + " - Arrival " + std::to_string(file);
    };
    const fs::path outside = Root().parent_path() / "outside";
    const fs::path folder = BookmarkPath(8, 0, "").parent_path();
    const fs::path last = folder / "9 - Last";
    for (int slot = 0; slot < 10; ++slot)
        fs::remove(BookmarkPath(8, slot, "Site"));
    for (int file = 0; file < count; ++file)
        test::MakeBookmark(outside / name(file), "http://arrival.example/");
    test::MakeBookmark(outside / "last", "http://arrival.example/");
    looper.WaitFor([&] { return !looper.Slot(8, 9).IsValid(); });

    ClickTimer clicks(looper);
    for (int file = 0; file < count; ++file)
        fs::rename(outside / name(file), folder / name(file));
    fs::rename(outside / "last", last);
    const Stopwatch time;
    if (looper.WaitFor([&] { return looper.Slot(8, 9).IsValid(); }))
        Print("arrivals " + std::to_string(count), time.Elapsed());
    if (const double longest = clicks.Longest(); count == kMostArrivals)
        Print("click during arrivals", longest);
    for (int file = 0; file < count; ++file)
        fs::remove(folder / name(file));
    fs::remove(last);
    looper.WaitFor([&] { return !looper.Slot(8, 9).IsValid(); });
}

void TimeScan(StoreLooper& looper, int count) {
    const fs::path folder = Root().parent_path() / ("scanned " + std::to_string(count));
    fs::create_directory(folder);
    for (int file = 0; file < count; ++file)
        std::ofstream{folder / ("file " + std::to_string(file) + ".txt")};
    std::vector<double> times;
    looper.Lock();
    QBPath path(10, &looper);
    for (int run = 0; run < 5; ++run) {
        const Stopwatch time;
        path.SetPath(folder.c_str());
        times.push_back(time.Elapsed());
    }
    looper.Unlock();
    Print("scan " + std::to_string(count), Median(times));
    fs::remove_all(folder);
}

} // namespace

int main() {
    if (connect_display() != B_OK)
        return 1;
    BApplication application("application/x-Orvel.Quillbar-bench");
    gSettings = new QBSettings(BPath("/boot/home/config/settings/Quillbar.settings"));
    MakeHundredBookmarks();
    auto* looper = new StoreLooper;
    looper->Run();
    TimeRebuild(*looper);
    TimeRename(*looper);
    TimeAttribute(*looper);
    for (const int count : {1'000, 10'000, 100'000})
        TimeScan(*looper, count);
    TimeBurst(*looper);
    for (const int count : {1'000, 3'000, kMostArrivals})
        TimeArrivals(*looper, count);
    _exit(0); // the looper is left as it is: its end is not measured
}
