#include "quillbar/base/Settings.h"

#include <cstdio>

#include "quillbar/base/SettingsFile.h"

QBSettings* gSettings = nullptr;

namespace {

constexpr const char* kHotKey = "hotkey";
constexpr const char* kOnTop = "ontop";
constexpr const char* kColor = "color";
constexpr const char* kShowURL = "url";
constexpr const char* kPos = "pos";
constexpr const char* kAlign = "align";
constexpr const char* kBrowser = "browser";

constexpr int32 kDefaultHotKey = 8;
const BPoint kDefaultPos{30, 30};
constexpr rgb_color kDefaultColor{216, 216, 216, 255};
// What a new message holds; the alpha tells a colour that was never chosen.
constexpr rgb_color kUnchosenColor{216, 216, 216, 0};

// The emergency save must not wait for a thread that hangs.
constexpr bigtime_t kSaveTimeout = 300'000;

class Locked {
public:
    explicit Locked(BLocker& lock)
        : fLock(lock) {
        fLock.Lock();
    }
    ~Locked() { fLock.Unlock(); }
    Locked(const Locked&) = delete;

private:
    BLocker& fLock;
};

status_t AddColor(BMessage& message, rgb_color color) {
    return message.AddData(kColor, B_RGB_COLOR_TYPE, &color, sizeof color, true, 1);
}

} // namespace

QBSettings::QBSettings(BPath path)
    : fSettings(new BMessage)
    , fPath(path)
    , fLock("settings")
    , fSaving("settings file") {
    fSettings->AddInt32(kBrowser, kQBNetPositive);
    fSettings->AddPoint(kPos, kDefaultPos);
    fSettings->AddInt32(kAlign, kQBAlignVertical);
    fSettings->AddBool(kShowURL, true);
    fSettings->AddBool(kOnTop, false);
    fSettings->AddInt32(kHotKey, kDefaultHotKey);
    AddColor(*fSettings, kUnchosenColor);
}

QBSettings::~QBSettings() {
    delete fSettings;
}

bool QBSettings::Load() {
    std::string text;
    const status_t status = SettingsFile::Read(fPath.Path(), text);
    BMessage loaded;
    const bool isWhole = status == B_OK && loaded.Unflatten(text.data(), text.size()) == B_OK;

    Locked locked(fLock);
    fUnread = false;
    if (isWhole) {
        *fSettings = std::move(loaded);
        return true;
    }
    if (status == B_BAD_DATA || (status == B_OK && !text.empty())) {
        SettingsFile::PutAside(fPath.Path());
    } else if (status != B_OK && status != B_ENTRY_NOT_FOUND) {
        fUnread = true;
        std::fprintf(stderr, "quillbar: cannot read the settings (%s); they will not be saved\n",
                     StatusText(status));
    }
    return false;
}

void QBSettings::Save() {
    std::string text;
    if (fLock.LockWithTimeout(kSaveTimeout) != B_OK)
        return;
    const bool isWritable =
        (!fUnread || !SettingsFile::Exists(fPath.Path())) && fSettings->Flatten(&text) == B_OK;
    fLock.Unlock();
    if (!isWritable || fSaving.LockWithTimeout(0) != B_OK)
        return;
    SettingsFile::Write(fPath.Path(), text);
    fSaving.Unlock();
}

int32 QBSettings::GetInt32(const char* name, int32 otherwise) const {
    Locked locked(fLock);
    int32 value = 0;
    return fSettings->FindInt32(name, &value) == B_OK ? value : otherwise;
}

void QBSettings::SetInt32(const char* name, int32 value) {
    Locked locked(fLock);
    if (fSettings->ReplaceInt32(name, value) == B_NAME_NOT_FOUND)
        fSettings->AddInt32(name, value);
}

bool QBSettings::GetBool(const char* name, bool otherwise) const {
    Locked locked(fLock);
    bool value = false;
    return fSettings->FindBool(name, &value) == B_OK ? value : otherwise;
}

void QBSettings::SetBool(const char* name, bool value) {
    Locked locked(fLock);
    if (fSettings->ReplaceBool(name, value) == B_NAME_NOT_FOUND)
        fSettings->AddBool(name, value);
}

int32 QBSettings::GetHotKey() const {
    return GetInt32(kHotKey, kDefaultHotKey);
}

bool QBSettings::GetOnTop() const {
    return GetBool(kOnTop, false);
}

rgb_color QBSettings::GetColor() const {
    Locked locked(fLock);
    const void* data = nullptr;
    ssize_t size = 0;
    if (fSettings->FindData(kColor, B_RGB_COLOR_TYPE, &data, &size) != B_OK ||
        size < static_cast<ssize_t>(sizeof(rgb_color)))
        return kDefaultColor;
    return *static_cast<const rgb_color*>(data);
}

bool QBSettings::GetShowURL() const {
    return GetBool(kShowURL, true);
}

BPoint QBSettings::GetPos() const {
    Locked locked(fLock);
    BPoint pos;
    return fSettings->FindPoint(kPos, &pos) == B_OK ? pos : kDefaultPos;
}

QBAlign QBSettings::GetAlign() const {
    return static_cast<QBAlign>(GetInt32(kAlign, kQBAlignVertical));
}

QBBrowser QBSettings::GetBrowser() const {
    return static_cast<QBBrowser>(GetInt32(kBrowser, kQBNetPositive));
}

void QBSettings::SetHotKey(int32 keys) {
    SetInt32(kHotKey, keys);
}

void QBSettings::SetOnTop(bool onTop) {
    SetBool(kOnTop, onTop);
}

void QBSettings::SetColor(rgb_color color) {
    Locked locked(fLock);
    const status_t status = fSettings->ReplaceData(kColor, B_RGB_COLOR_TYPE, &color, sizeof color);
    if (status == B_NAME_NOT_FOUND)
        AddColor(*fSettings, color);
}

void QBSettings::SetShowURL(bool show) {
    SetBool(kShowURL, show);
}

void QBSettings::SetPos(BPoint pos) {
    Locked locked(fLock);
    if (fSettings->ReplacePoint(kPos, pos) == B_NAME_NOT_FOUND)
        fSettings->AddPoint(kPos, pos);
}

void QBSettings::SetAlign(QBAlign align) {
    SetInt32(kAlign, align);
}

void QBSettings::SetBrowser(QBBrowser browser) {
    SetInt32(kBrowser, browser);
}
