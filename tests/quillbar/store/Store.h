#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "kits/app/Looper.h"
#include "quillbar/base/Settings.h"
#include "quillbar/store/Monitor.h"
#include "quillbar/store/Path.h"
#include "tests/support/Bookmarks.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;

inline constexpr const char* kEmptyLabel = "Add Bookmark Here";

// Stands for the bar window: owns the store and hands it what the node monitor says.
class StoreLooper : public BLooper {
public:
    StoreLooper();
    ~StoreLooper() override;
    void MessageReceived(BMessage* message) override;

    QBMonitor* fMonitor;
    int fRebuilds = 0;
    int fMessages = 0;
};

// A fresh home with the program's settings, and the store when a test wants it.
class StoreTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    fs::path Root() const { return fHome.Config() / "Quillbar"; }
    // The directory that starts with this digit.
    fs::path Folder(int digit) const;

    void Start();
    void Stop();

    // Of the slot with these digits, as the store has it now.
    std::string Label(int folder, int slot);
    std::string Title(int folder);
    std::string Url(int folder, int slot);
    std::vector<std::string> Labels(int folder);
    uint32 Code(int folder, int slot);
    // The titles, labels and URLs of all folders.
    std::vector<std::string> Contents();
    int Rebuilds();
    // Of the node monitor, handled so far.
    int Messages();

    testing::AssertionResult Becomes(int folder, int slot, const std::string& label);

    test::TemporaryHome fHome;
    StoreLooper* fStore = nullptr;
};
