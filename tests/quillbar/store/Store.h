#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "kits/app/AppDefs.h"
#include "kits/app/Looper.h"
#include "kits/app/Message.h"
#include "kits/storage/NodeMonitor.h"
#include "quillbar/bar/widgets/Menu.h"
#include "quillbar/bar/widgets/MenuItem.h"
#include "quillbar/base/Settings.h"
#include "quillbar/bookmarks/StoreNames.h"
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
    StoreLooper()
        : BLooper("store")
        , fMonitor(std::make_unique<QBMonitor>(this, BMessenger(this))) {}

    void MessageReceived(BMessage* message) override {
        if (message->what != B_NODE_MONITOR)
            return BLooper::MessageReceived(message);
        if (message->GetInt32("opcode", 0) == 'qbRM')
            ++fRebuilds;
        ++fMessages;
        fMonitor->HandleNodeMessage(message);
    }

    // What `look` returns with the store locked.
    template <typename Look>
    auto Locked(Look look) {
        Lock();
        auto result = look();
        Unlock();
        return result;
    }

    std::unique_ptr<QBMonitor> fMonitor;
    int fRebuilds = 0;
    int fMessages = 0;
};

// A fresh home with the program's settings, and the store when a test wants it. Folders and slots
// are named by their digits.
class StoreTest : public testing::Test {
protected:
    void SetUp() override {
        gSettings = new QBSettings(BPath("/boot/home/config/settings/Quillbar.settings"));
        gSettings->SetShowURL(false);
    }
    void TearDown() override {
        Stop();
        delete std::exchange(gSettings, nullptr);
    }

    fs::path Root() const { return fHome.Config() / "Quillbar"; }
    fs::path Folder(int digit) const {
        for (const auto& entry : fs::directory_iterator(Root())) {
            if (GetNumber(entry.path().c_str()) == digit && entry.is_directory())
                return entry.path();
        }
        return {};
    }

    void Start() {
        fStore = new StoreLooper;
        fStore->Run();
    }
    // The removal of this test's folders must not be told to the next one's.
    void Stop() {
        if (!fStore)
            return;
        fStore->Lock();
        std::exchange(fStore, nullptr)->Quit();
    }

    // As the store has them now.
    std::string Title(int folder) { return ItemLabel(folder, 0); }
    std::string Label(int folder, int slot) { return ItemLabel(folder, slot + 2); }
    std::string Url(int folder, int slot) {
        return fStore->Locked(
            [&] { return std::string(PathOf(folder)->Items()[slot]->Url().String()); });
    }
    // The titles, labels and URLs of all folders.
    std::vector<std::string> Contents() {
        std::vector<std::string> contents;
        for (int folder = 0; folder < 10; ++folder) {
            contents.push_back(Title(folder));
            for (int slot = 0; slot < 10; ++slot)
                contents.push_back(Label(folder, slot) + " " + Url(folder, slot));
        }
        return contents;
    }
    int Rebuilds() {
        return fStore->Locked([&] { return fStore->fRebuilds; });
    }
    // Of the node monitor, handled so far.
    int Messages() {
        return fStore->Locked([&] { return fStore->fMessages; });
    }

    testing::AssertionResult Becomes(int folder, int slot, const std::string& label) {
        return Await([&] { return Label(folder, slot); }, label);
    }
    testing::AssertionResult TitleBecomes(int folder, const std::string& title) {
        return Await([&] { return Title(folder); }, title);
    }
    testing::AssertionResult UrlBecomes(int folder, int slot, const std::string& url) {
        return Await([&] { return Url(folder, slot); }, url);
    }

    test::TemporaryHome fHome;
    StoreLooper* fStore = nullptr;

private:
    QBPath* PathOf(int folder) { return fStore->fMonitor->fPaths[folder]; }
    std::string ItemLabel(int folder, int item) {
        return fStore->Locked(
            [&] { return std::string(PathOf(folder)->Menu()->ItemAt(item)->Label()); });
    }
    template <typename Look>
    testing::AssertionResult Await(Look look, const std::string& expected) {
        if (test::WaitUntil([&] { return look() == expected; }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << '"' << look() << '"';
    }
};
