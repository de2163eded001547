#include "quillbar/base/Settings.h"

#include <cstdio>
#include <mutex>
#include <string>

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
// The colour in a new message; its alpha marks a colour that was never chosen.
constexpr rgb_color kUnchosenColor{216, 216, 216, 0};

} // namespace

// The choices as text, shared with a thread that saves them while the others may hang.
struct QBSettings::Snapshot {
    explicit Snapshot(std::string path_)
        : path(std::move(path_)) {}

    status_t CanBeSaved();
    void Save();

    const std::string path;
    std::mutex saving; // one writer of the file

    std::mutex lock;
    // Guarded by `lock`.
    std::string text;
    bool isUnread = false; // the file is there but its content is not known
};

status_t QBSettings::Snapshot::CanBeSaved() {
    const std::lock_guard guard(lock);
    if (isUnread && SettingsFile::Exists(path.c_str()))
        return B_NOT_ALLOWED;
    return SettingsFile::CanWrite(path.c_str());
}

void QBSettings::Snapshot::Save() {
    const std::unique_lock writer(saving, std::try_to_lock);
    if (!writer)
        return;
    std::string written;
    bool isForbidden = false;
    {
        const std::lock_guard guard(lock);
        written = text;
        isForbidden = isUnread;
    }
    status_t status = B_NOT_ALLOWED;
    if (!isForbidden || !SettingsFile::Exists(path.c_str()))
        status = SettingsFile::Write(path.c_str(), written);
    if (status != B_OK)
        std::fprintf(stderr, "quillbar: the settings cannot be saved: %s\n", StatusText(status));
}

QBSettings::QBSettings(const BPath& path)
    : fPath(path)
    , fSnapshot(std::make_shared<Snapshot>(path.Path() ? path.Path() : "")) {
    fSettings.AddInt32(kBrowser, kQBNetPositive);
    fSettings.AddPoint(kPos, kDefaultPos);
    fSettings.AddInt32(kAlign, kQBAlignVertical);
    fSettings.AddBool(kShowURL, true);
    fSettings.AddBool(kOnTop, false);
    fSettings.AddInt32(kHotKey, kDefaultHotKey);
    fSettings.AddData(kColor, B_RGB_COLOR_TYPE, &kUnchosenColor, sizeof kUnchosenColor, true, 1);
    Publish();
}

QBSettings::~QBSettings() = default;

bool QBSettings::Load() {
    std::string text;
    const status_t status = SettingsFile::Read(fPath.Path(), text);
    const bool isWhole = status == B_OK && fSettings.Unflatten(text.data(), text.size()) == B_OK;
    const bool isUnread = status != B_OK && status != B_BAD_DATA && status != B_ENTRY_NOT_FOUND;
    if (isWhole)
        Publish();
    else if (status == B_BAD_DATA || (status == B_OK && !text.empty()))
        SettingsFile::PutAside(fPath.Path());
    else if (isUnread)
        std::fprintf(stderr, "quillbar: cannot read the settings (%s); they will not be saved\n",
                     StatusText(status));
    const std::lock_guard guard(fSnapshot->lock);
    fSnapshot->isUnread = isUnread;
    return isWhole;
}

bool QBSettings::Peek() {
    std::string text;
    return SettingsFile::Read(fPath.Path(), text) == B_OK &&
           fSettings.Unflatten(text.data(), text.size()) == B_OK;
}

void QBSettings::Save() {
    fSnapshot->Save();
}

std::function<void()> QBSettings::EmergencySave() const {
    return [snapshot = fSnapshot] { snapshot->Save(); };
}

status_t QBSettings::CanBeSaved() const {
    return fSnapshot->CanBeSaved();
}

void QBSettings::Publish() {
    std::string text;
    if (fSettings.Flatten(&text) != B_OK)
        return;
    const std::lock_guard guard(fSnapshot->lock);
    fSnapshot->text = std::move(text);
}

void QBSettings::Set(const char* name, type_code type, const void* value, ssize_t size) {
    if (fSettings.ReplaceData(name, type, value, size) == B_NAME_NOT_FOUND)
        fSettings.AddData(name, type, value, size);
    Publish();
}

int32 QBSettings::GetHotKey() const {
    return fSettings.GetInt32(kHotKey, kDefaultHotKey);
}

bool QBSettings::GetOnTop() const {
    return fSettings.GetBool(kOnTop, false);
}

rgb_color QBSettings::GetColor() const {
    const void* data = nullptr;
    ssize_t size = 0;
    if (fSettings.FindData(kColor, B_RGB_COLOR_TYPE, &data, &size) != B_OK ||
        size < static_cast<ssize_t>(sizeof(rgb_color)))
        return kDefaultColor;
    return *static_cast<const rgb_color*>(data);
}

bool QBSettings::GetShowURL() const {
    return fSettings.GetBool(kShowURL, true);
}

BPoint QBSettings::GetPos() const {
    return fSettings.GetPoint(kPos, kDefaultPos);
}

QBAlign QBSettings::GetAlign() const {
    return static_cast<QBAlign>(fSettings.GetInt32(kAlign, kQBAlignVertical));
}

QBBrowser QBSettings::GetBrowser() const {
    return static_cast<QBBrowser>(fSettings.GetInt32(kBrowser, kQBNetPositive));
}

void QBSettings::SetHotKey(int32 keys) {
    Set(kHotKey, B_INT32_TYPE, &keys, sizeof keys);
}

void QBSettings::SetOnTop(bool onTop) {
    Set(kOnTop, B_BOOL_TYPE, &onTop, sizeof onTop);
}

void QBSettings::SetColor(rgb_color color) {
    Set(kColor, B_RGB_COLOR_TYPE, &color, sizeof color);
}

void QBSettings::SetShowURL(bool show) {
    Set(kShowURL, B_BOOL_TYPE, &show, sizeof show);
}

void QBSettings::SetPos(BPoint pos) {
    Set(kPos, B_POINT_TYPE, &pos, sizeof pos);
}

void QBSettings::SetAlign(QBAlign align) {
    Set(kAlign, B_INT32_TYPE, &align, sizeof align);
}

void QBSettings::SetBrowser(QBBrowser browser) {
    Set(kBrowser, B_INT32_TYPE, &browser, sizeof browser);
}
