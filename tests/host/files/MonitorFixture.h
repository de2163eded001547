#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/files/monitor/NodeListener.h"
#include "tests/support/TemporaryHome.h"

namespace test {

using Texts = std::vector<std::string>;

class EventLog : public host::NodeListener {
public:
    bool NodeChanged(const host::NodeChange& change) override;
    std::vector<host::NodeChange> Changes() const;
    void Clear();

private:
    mutable std::mutex fMutex;
    std::vector<host::NodeChange> fChanges;
};

// Two watched folders with watched files: "a" with "one" and "two", "b" with "three"; and a folder
// "away", with "stranger", that is not watched.
class MonitorTest : public testing::Test {
protected:
    MonitorTest();
    ~MonitorTest() override;

    std::string In(const std::string& name) const { return (fHome.Path() / name).string(); }
    // The node at the path, made known as one whose number was handed out.
    node_ref Know(const std::string& name) const;
    int64 NodeOf(const std::string& name) const { return Know(name).node; }

    void Watch(const std::string& name, uint32 flags) const;
    void Stop(node_ref node) const;
    // Waits until all events so far have been worked off, without waiting times.
    void Flush();
    // Lets everything happen before any event is read.
    void AtOnce(const std::function<void()>& action) const;

    // The changes so far, without those of Flush; as text: "created a/x", "moved y from a to b".
    // Folders that are not known are "?".
    std::vector<host::NodeChange> Changes() const;
    Texts Log() const;
    // The log once it has as many lines; it is cleared.
    Texts TakeLog(size_t count);
    bool WaitForLast(const std::string& text) const;

    void MakeFile(const std::string& name) const;
    void MakeFolder(const std::string& name) const;
    void Rename(const std::string& from, const std::string& to) const;
    void Exchange(const std::string& one, const std::string& other) const;
    void Remove(const std::string& name) const;
    void SetAttribute(const std::string& name, const char* attribute) const;

    static constexpr uint32 kFolder = host::kWatchName | host::kWatchEntries;
    static constexpr uint32 kFile = host::kWatchName | host::kWatchStatus | host::kWatchAttributes;

    TemporaryHome fHome;
    std::shared_ptr<EventLog> fLog = std::make_shared<EventLog>();

private:
    std::string NameOf(int64 directory) const;
    std::string TextOf(const host::NodeChange& change) const;

    int fFlushes = 0;
    node_ref fFlushFolder;
};

} // namespace test
