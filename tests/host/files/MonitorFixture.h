#pragma once

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "host/files/KnownPaths.h"
#include "host/files/monitor/NodeMonitor.h"
#include "tests/support/Recorded.h"
#include "tests/support/TemporaryHome.h"

namespace test {

using Texts = std::vector<std::string>;

class EventLog : public host::NodeListener, public Recorded<host::NodeChange> {
public:
    bool NodeChanged(const host::NodeChange& change) override {
        Add(change);
        return true;
    }
};

// Two watched folders with watched files: "a" with "one" and "two", "b" with "three"; and a folder
// "away", with "stranger", that is not watched.
class MonitorTest : public testing::Test {
protected:
    static constexpr uint32 kFolder = host::kWatchName | host::kWatchEntries;
    static constexpr uint32 kFile = host::kWatchName | host::kWatchStatus | host::kWatchAttributes;

    MonitorTest() {
        Do({"mkdir a", "mkdir b", "mkdir away", "mkdir flush", "touch a/one", "touch a/two",
            "touch b/three", "touch away/stranger"});
        for (const char* name : {"a", "b"})
            Watch(name, kFolder);
        for (const char* name : {"a/one", "a/two", "b/three"})
            Watch(name, kFile);
        fMonitor.Listen(Know("flush"), host::kWatchEntries, fFlushes);
    }
    // The next test counts watches.
    ~MonitorTest() override {
        for (const char* name : {"a", "b", "away"})
            std::filesystem::remove_all(In(name));
        Flush();
        fMonitor.Stop(Know("flush"), fFlushes);
    }

    std::string In(const std::string& name) const { return (fHome.Path() / name).string(); }
    // The node at the path, made known as one whose number was handed out.
    node_ref Know(const std::string& name) const {
        host::NodeStatus status;
        EXPECT_EQ(host::Stat(In(name), status), B_OK) << name;
        host::KnownPaths::Shared().Remember(status.ref, In(name));
        return status.ref;
    }
    void Watch(const std::string& name, uint32 flags) {
        node_ref node = Know(name);
        EXPECT_EQ(fMonitor.Listen(node, flags, fLog), B_OK) << name;
        fNames.try_emplace(node.node, name.substr(name.rfind('/') + 1));
    }

    // Lets everything happen before any event is read.
    static void AtOnce(const std::function<void()>& action) {
        host::ServiceLoop::Shared().InvokeAndWait(action);
    }
    // Each step is a verb and one or two paths: "touch a/x", "mv a/x b/y".
    void Do(const Texts& steps) const {
        for (const std::string& step : steps) {
            std::istringstream words(step);
            std::string verb, one, other;
            words >> verb >> one >> other;
            EXPECT_EQ(Act(verb, In(one).c_str(), In(other).c_str()), 0) << step;
        }
    }
    // Does the steps before any event of them is read, and expects these changes of them.
    void Expect(const Texts& steps, const Texts& changes) {
        AtOnce([&] { Do(steps); });
        EXPECT_EQ(TakeLog(changes.size()), changes) << testing::PrintToString(steps);
    }

    // Renames the file to and fro until the thread is stopped.
    std::jthread KeepRenaming(const std::string& name) const {
        return std::jthread([this, name](std::stop_token stop) {
            for (int i = 0; i % 2 || !stop.stop_requested(); i++) {
                Do({i % 2 ? "mv " + name + "2 " + name : "mv " + name + " " + name + "2"});
                // On a busy machine the queue would overflow, which ends the file's watch.
                if (i % 1000 == 0)
                    AtOnce([] {});
            }
        });
    }

    // Waits until all events so far have been worked off, without waiting times.
    void Flush() {
        // Behind an overflow, a folder that is made while everything is read again is not reported.
        AtOnce([] {});
        fFlushes->Take();
        Do({"mkdir flush/x"});
        EXPECT_TRUE(fFlushes->Reaches(1));
        // The rest of its batch is notified by the same call.
        AtOnce([] {});
        Do({"rm flush/x"});
    }
    // The changes so far, as text: "new created a/x", "one moved a b/y". A node is called as it was
    // when it was first watched, a folder that is not known "?".
    Texts Log() const {
        Texts log;
        for (const host::NodeChange& change : fLog->All())
            log.push_back(TextOf(change));
        return log;
    }
    // The log once it has as many lines; it is cleared.
    Texts TakeLog(size_t count) {
        EXPECT_TRUE(fLog->Reaches(count));
        Flush();
        Texts log = Log();
        fLog->Take();
        return log;
    }

    TemporaryHome fHome;
    host::NodeMonitor& fMonitor = host::NodeMonitor::Shared();
    std::shared_ptr<EventLog> fLog = std::make_shared<EventLog>();

private:
    static int Act(const std::string& verb, const char* one, const char* other) {
        if (verb == "mkdir")
            return mkdir(one, 0700);
        if (verb == "rm")
            return remove(one);
        if (verb == "mv")
            return rename(one, other);
        if (verb == "link")
            return link(one, other);
        if (verb == "edit" || verb == "type")
            return setxattr(one, verb == "edit" ? "user.META:url" : "user.mime_type", "x", 1, 0);
        return verb == "touch" && std::ofstream(one).is_open() ? 0 : -1;
    }

    std::string FolderOf(int64 directory) const {
        for (const char* name : {".", "a", "b", "away"}) {
            host::NodeStatus status;
            if (host::Stat(In(name), status) == B_OK && status.ref.node == directory)
                return name;
        }
        return "?";
    }

    std::string TextOf(const host::NodeChange& change) const {
        static const char* const kKinds[] = {" created ", " removed ", " moved ", " status",
                                             " attributes"};
        auto known = fNames.find(change.node.node);
        std::string text = known == fNames.end() ? "new" : known->second;
        text += kKinds[int(change.kind)];
        if (change.kind == host::ChangeKind::Moved)
            text += FolderOf(change.directory) + " " + FolderOf(change.toDirectory);
        else if (!change.name.empty())
            text += FolderOf(change.directory);
        return change.name.empty() ? text : text + "/" + change.name;
    }

    std::shared_ptr<EventLog> fFlushes = std::make_shared<EventLog>();
    std::map<int64, std::string> fNames;
};

} // namespace test
