#include "tests/quillbar/store/Store.h"

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/storage/NodeMonitor.h"
#include "quillbar/bar/widgets/Menu.h"
#include "quillbar/bar/widgets/MenuItem.h"
#include "quillbar/store/StoreNames.h"

namespace {

struct Locked {
    explicit Locked(BLooper* looper)
        : fLooper(looper) {
        fLooper->Lock();
    }
    ~Locked() { fLooper->Unlock(); }
    BLooper* const fLooper;
};

} // namespace

StoreLooper::StoreLooper()
    : BLooper("store")
    , fMonitor(new QBMonitor(this, BMessenger(this))) {}

StoreLooper::~StoreLooper() {
    delete fMonitor;
}

void StoreLooper::MessageReceived(BMessage* message) {
    if (message->what != B_NODE_MONITOR)
        return BLooper::MessageReceived(message);
    if (message->GetInt32("opcode", 0) == 'qbRM')
        ++fRebuilds;
    ++fMessages;
    fMonitor->HandleNodeMessage(message);
}

void StoreTest::SetUp() {
    fs::create_directories(fHome.Config());
    gSettings = new QBSettings(BPath("/boot/home/config/settings/Quillbar.settings"));
    gSettings->SetShowURL(false);
}

void StoreTest::TearDown() {
    Stop();
    delete gSettings;
    gSettings = nullptr;
}

void StoreTest::Start() {
    fStore = new StoreLooper;
    fStore->Run();
}

// The next test's folders may have the numbers of this one's: their removal must not be told to it.
void StoreTest::Stop() {
    if (fStore)
        stop_watching(BMessenger(fStore));
    if (fStore && fStore->Lock())
        fStore->Quit();
    fStore = nullptr;
}

fs::path StoreTest::Folder(int digit) const {
    for (const auto& entry : fs::directory_iterator(Root())) {
        if (GetNumber(entry.path().c_str()) == digit && entry.is_directory())
            return entry.path();
    }
    return {};
}

std::string StoreTest::Label(int folder, int slot) {
    return Labels(folder).at(slot);
}

std::vector<std::string> StoreTest::Labels(int folder) {
    std::vector<std::string> labels;
    const Locked lock(fStore);
    QBMenu* menu = fStore->fMonitor->fPaths[folder]->Menu();
    for (int32 i = 2; i < menu->CountItems(); ++i)
        labels.push_back(menu->ItemAt(i)->Label());
    return labels;
}

std::string StoreTest::Title(int folder) {
    const Locked lock(fStore);
    return fStore->fMonitor->fPaths[folder]->Menu()->ItemAt(0)->Label();
}

std::string StoreTest::Url(int folder, int slot) {
    const Locked lock(fStore);
    return fStore->fMonitor->fPaths[folder]->Items()[slot]->Url().String();
}

std::vector<std::string> StoreTest::Contents() {
    std::vector<std::string> contents;
    for (int folder = 0; folder < 10; ++folder) {
        contents.push_back(Title(folder));
        for (int slot = 0; slot < 10; ++slot)
            contents.push_back(Label(folder, slot) + " " + Url(folder, slot));
    }
    return contents;
}

uint32 StoreTest::Code(int folder, int slot) {
    const Locked lock(fStore);
    return fStore->fMonitor->fPaths[folder]->Items()[slot]->MenuItem()->Message()->what;
}

int StoreTest::Messages() {
    const Locked lock(fStore);
    return fStore->fMessages;
}

int StoreTest::Rebuilds() {
    const Locked lock(fStore);
    return fStore->fRebuilds;
}

testing::AssertionResult StoreTest::Becomes(int folder, int slot, const std::string& label) {
    if (test::WaitUntil([&] { return Label(folder, slot) == label; }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "slot " << slot << " of folder " << folder << " is \"" << Label(folder, slot) << '"';
}
