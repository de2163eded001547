#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/files/NodeStatus.h"
#include "host/files/monitor/NodeListener.h"
#include "tests/support/TemporaryHome.h"

namespace test {

// Keeps what it is told.
class Recorder : public host::NodeListener {
public:
    bool NodeChanged(const host::NodeChange& change) override;
    std::vector<host::NodeChange> Changes() const;
    void Clear();

private:
    mutable std::mutex fMutex;
    std::vector<host::NodeChange> fChanges;
};

// Two folders, "a" and "b", of which "a" is watched with its entries, and a folder "away".
class MonitorTest : public testing::Test {
protected:
    MonitorTest();
    ~MonitorTest() override;

    std::string In(const std::string& name) const { return (fHome.Path() / name).string(); }
    // The node at the path, made known as one whose number was handed out.
    node_ref Know(const std::string& name) const;
    int64 NodeOf(const std::string& name) const { return Know(name).node; }
    std::string NameOf(int64 directory) const;

    void Watch(const std::string& name, uint32 flags);
    void Stop(node_ref node);
    // Waits until everything that happened so far has been worked off, without waiting times.
    void Flush();

    // The changes so far, without those of Flush; as text: "created a/x", "moved y from a to b".
    // Folders that are not known are "?".
    std::vector<host::NodeChange> Changes() const;
    std::vector<std::string> Told() const;
    // Waits until so many changes have been told.
    bool WaitForTold(size_t count) const;
    // Whether the last change comes to be told.
    bool WaitForLast(const std::string& text) const;

    void MakeFile(const std::string& name) const;
    void MakeFolder(const std::string& name) const;
    void Rename(const std::string& from, const std::string& to) const;
    void Exchange(const std::string& one, const std::string& other) const;
    void Remove(const std::string& name) const;
    void SetAttribute(const std::string& name, const char* attribute, const std::string& value);

    static constexpr uint32 kFolder = host::kWatchName | host::kWatchEntries;
    static constexpr uint32 kFile = host::kWatchName | host::kWatchStatus | host::kWatchAttributes;

    TemporaryHome fHome;
    std::shared_ptr<Recorder> fRecorder = std::make_shared<Recorder>();

private:
    std::string TextOf(const host::NodeChange& change) const;

    int fFlushes = 0;
    node_ref fFlushFolder;
};

// How many inotify watches this process has, by the system's own account.
size_t CountWatches();

} // namespace test
