#include "tests/host/files/MonitorFixture.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/xattr.h>

#include <algorithm>
#include <fstream>

#include "host/files/KnownPaths.h"
#include "host/files/monitor/NodeMonitor.h"
#include "host/loop/ServiceLoop.h"
#include "tests/support/Wait.h"

namespace test {

bool EventLog::NodeChanged(const host::NodeChange& change) {
    std::lock_guard lock(fMutex);
    fChanges.push_back(change);
    return true;
}

std::vector<host::NodeChange> EventLog::Changes() const {
    std::lock_guard lock(fMutex);
    return fChanges;
}

void EventLog::Clear() {
    std::lock_guard lock(fMutex);
    fChanges.clear();
}

MonitorTest::MonitorTest() {
    for (const char* name : {"a", "b", "away", "flush"})
        MakeFolder(name);
    for (const char* name : {"a/one", "a/two", "b/three", "away/stranger"})
        MakeFile(name);
    for (const char* name : {"flush", "a", "b"})
        Watch(name, kFolder);
    for (const char* name : {"a/one", "a/two", "b/three"})
        Watch(name, kFile);
    fFlushFolder = Know("flush");
}

MonitorTest::~MonitorTest() {
    host::NodeMonitor::Shared().StopAll(fLog);
}

node_ref MonitorTest::Know(const std::string& name) const {
    host::NodeStatus status;
    EXPECT_EQ(host::Stat(In(name), status), B_OK) << name;
    host::KnownPaths::Shared().Remember(status.ref, In(name));
    return status.ref;
}

void MonitorTest::Watch(const std::string& name, uint32 flags) const {
    EXPECT_EQ(host::NodeMonitor::Shared().Listen(Know(name), flags, fLog), B_OK) << name;
}

void MonitorTest::Stop(node_ref node) const {
    EXPECT_EQ(host::NodeMonitor::Shared().Stop(node, fLog), B_OK);
}

void MonitorTest::Flush() {
    // Behind an overflow, a folder that is made while everything is read again is not reported.
    AtOnce([] {});
    std::string name = "flush" + std::to_string(fFlushes++);
    MakeFolder("flush/" + name);
    EXPECT_TRUE(WaitUntil([&] {
        auto changes = fLog->Changes();
        return std::any_of(changes.begin(), changes.end(),
                           [&](const auto& change) { return change.name == name; });
    }));
    // The rest of its batch is notified by the same call.
    AtOnce([] {});
}

void MonitorTest::AtOnce(const std::function<void()>& action) const {
    host::ServiceLoop::Shared().InvokeAndWait(action);
}

std::vector<host::NodeChange> MonitorTest::Changes() const {
    auto changes = fLog->Changes();
    std::erase_if(changes, [this](const host::NodeChange& change) {
        return change.directory == fFlushFolder.node || change.node == fFlushFolder;
    });
    return changes;
}

Texts MonitorTest::Log() const {
    Texts log;
    for (const host::NodeChange& change : Changes())
        log.push_back(TextOf(change));
    return log;
}

Texts MonitorTest::TakeLog(size_t count) {
    EXPECT_TRUE(WaitUntil([&] { return Changes().size() >= count; }));
    Flush();
    Texts log = Log();
    fLog->Clear();
    return log;
}

bool MonitorTest::WaitForLast(const std::string& text) const {
    return WaitUntil([&] {
        auto log = Log();
        return !log.empty() && log.back() == text;
    });
}

std::string MonitorTest::NameOf(int64 directory) const {
    for (const char* name : {".", "a", "b", "away"}) {
        host::NodeStatus status;
        if (host::Stat(In(name), status) == B_OK && status.ref.node == directory)
            return name;
    }
    return "?";
}

std::string MonitorTest::TextOf(const host::NodeChange& change) const {
    std::string folder = NameOf(change.directory);
    switch (change.kind) {
    case host::ChangeKind::Created:
        return "created " + folder + "/" + change.name;
    case host::ChangeKind::Removed:
        return "removed " + folder + "/" + change.name;
    case host::ChangeKind::Moved:
        return "moved " + change.name + " from " + folder + " to " + NameOf(change.toDirectory);
    case host::ChangeKind::StatusChanged:
        return "status";
    default:
        return "attributes";
    }
}

void MonitorTest::MakeFile(const std::string& name) const {
    EXPECT_TRUE(std::ofstream(In(name)).is_open()) << name;
}

void MonitorTest::MakeFolder(const std::string& name) const {
    EXPECT_TRUE(std::filesystem::create_directory(In(name))) << name;
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

void MonitorTest::SetAttribute(const std::string& name, const char* attribute) const {
    EXPECT_EQ(setxattr(In(name).c_str(), attribute, "x", 1, 0), 0) << name;
}

} // namespace test
