#include "tests/host/files/MonitorFixture.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "host/files/KnownPaths.h"
#include "host/files/monitor/NodeMonitor.h"
#include "host/loop/ServiceLoop.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;

namespace test {

bool Recorder::NodeChanged(const host::NodeChange& change) {
    std::lock_guard lock(fMutex);
    fChanges.push_back(change);
    return true;
}

std::vector<host::NodeChange> Recorder::Changes() const {
    std::lock_guard lock(fMutex);
    return fChanges;
}

void Recorder::Clear() {
    std::lock_guard lock(fMutex);
    fChanges.clear();
}

MonitorTest::MonitorTest() {
    for (const char* name : {"a", "b", "away", "flush"})
        MakeFolder(name);
    Watch("flush", host::kWatchEntries);
    fFlushFolder = Know("flush");
    Watch("a", kFolder);
}

MonitorTest::~MonitorTest() {
    host::NodeMonitor::Shared().StopAll(fRecorder);
}

node_ref MonitorTest::Know(const std::string& name) const {
    host::NodeStatus status;
    EXPECT_EQ(host::Stat(In(name), status), B_OK) << name;
    host::KnownPaths::Shared().Remember(status.ref, In(name));
    return status.ref;
}

std::string MonitorTest::NameOf(int64 directory) const {
    for (const char* name : {".", "a", "b", "away"}) {
        host::NodeStatus status;
        if (host::Stat(In(name), status) == B_OK && status.ref.node == directory)
            return name;
    }
    return "?";
}

void MonitorTest::Watch(const std::string& name, uint32 flags) {
    EXPECT_EQ(host::NodeMonitor::Shared().Listen(Know(name), flags, fRecorder), B_OK) << name;
}

void MonitorTest::Stop(node_ref node) {
    EXPECT_EQ(host::NodeMonitor::Shared().Stop(node, fRecorder), B_OK);
}

void MonitorTest::Flush() {
    std::string name = "flush" + std::to_string(fFlushes++);
    MakeFolder("flush/" + name);
    EXPECT_TRUE(WaitUntil([&] {
        auto changes = fRecorder->Changes();
        return std::any_of(changes.begin(), changes.end(),
                           [&](const auto& change) { return change.name == name; });
    }));
    // What else came with it is told by the same call.
    host::ServiceLoop::Shared().InvokeAndWait([] {});
}

std::vector<std::string> MonitorTest::Told() const {
    std::vector<std::string> told;
    for (const host::NodeChange& change : Changes())
        told.push_back(TextOf(change));
    return told;
}

std::vector<host::NodeChange> MonitorTest::Changes() const {
    auto changes = fRecorder->Changes();
    std::erase_if(changes, [this](const host::NodeChange& change) {
        return change.directory == fFlushFolder.node || change.node == fFlushFolder;
    });
    return changes;
}

bool MonitorTest::WaitForTold(size_t count) const {
    return WaitUntil([&] { return Changes().size() >= count; });
}

bool MonitorTest::WaitForLast(const std::string& text) const {
    return WaitUntil([&] {
        auto told = Told();
        return !told.empty() && told.back() == text;
    });
}

std::string MonitorTest::TextOf(const host::NodeChange& change) const {
    std::string place = NameOf(change.directory) + "/" + change.name;
    switch (change.kind) {
    case host::ChangeKind::Created:
        return "created " + place;
    case host::ChangeKind::Removed:
        return "removed " + place;
    case host::ChangeKind::Moved:
        return "moved " + change.name + " from " + NameOf(change.directory) + " to " +
               NameOf(change.toDirectory);
    case host::ChangeKind::StatusChanged:
        return "status";
    default:
        return "attributes";
    }
}

void MonitorTest::MakeFile(const std::string& name) const {
    std::ofstream file(In(name));
    EXPECT_TRUE(file.is_open()) << name;
}

void MonitorTest::MakeFolder(const std::string& name) const {
    EXPECT_TRUE(fs::create_directory(In(name))) << name;
}

void MonitorTest::Rename(const std::string& from, const std::string& to) const {
    EXPECT_EQ(rename(In(from).c_str(), In(to).c_str()), 0) << from << " " << to;
}

void MonitorTest::Exchange(const std::string& one, const std::string& other) const {
    EXPECT_EQ(renameat2(AT_FDCWD, In(one).c_str(), AT_FDCWD, In(other).c_str(), RENAME_EXCHANGE),
              0);
}

void MonitorTest::Remove(const std::string& name) const {
    EXPECT_EQ(remove(In(name).c_str()), 0) << name;
}

void MonitorTest::SetAttribute(const std::string& name, const char* attribute,
                               const std::string& value) {
    std::string full = std::string("user.") + attribute;
    EXPECT_EQ(setxattr(In(name).c_str(), full.c_str(), value.data(), value.size(), 0), 0) << name;
}

size_t CountWatches() {
    size_t count = 0;
    for (const auto& descriptor : fs::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        if (fs::read_symlink(descriptor, ignored).string() != "anon_inode:inotify")
            continue;
        std::ifstream info("/proc/self/fdinfo/" + descriptor.path().filename().string());
        for (std::string line; std::getline(info, line);)
            count += line.starts_with("inotify wd:");
    }
    return count;
}

} // namespace test
