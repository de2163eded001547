#pragma once

#include <functional>
#include <memory>

#include "base/Color.h"
#include "kits/app/Message.h"
#include "kits/storage/Path.h"
#include "quillbar/base/Commands.h"

inline constexpr const char* kSettingsPath = "/boot/home/config/settings/Quillbar.settings";

// The user's choices, one message that is read from and written to the settings file. One thread at
// a time: the application's before the bar is shown and after it has quit, the bar's in between.
class QBSettings {
public:
    // Starts with the defaults and does not look at the disk.
    explicit QBSettings(const BPath& path);
    // Does not save.
    ~QBSettings();

    QBSettings(const QBSettings&) = delete;

    // Replaces all choices by those in the file. False, and nothing is changed, if there is none or
    // it cannot be read; a getter gives its default for a choice that the file lacks.
    //
    // A file that holds something else is renamed "NAME.bad", one that exists but could not be read
    // is never written over; a line on standard error reports it.
    bool Load();

    // The same for a program that is not the bar: nothing is reported, the file stays as it is.
    bool Peek();

    // Writes the file, so that at any moment the old one or the new one is there, whole; where no
    // file can be made beside it or take its name, the file itself is written. A failure is
    // reported by a line on standard error. Does nothing while another thread saves.
    void Save();

    // A function that saves what was chosen when it is called. Any thread, even after the settings
    // are deleted; it waits for no lock that is held for longer than a copy takes.
    std::function<void()> EmergencySave() const;

    // Whether Save() could write now: B_OK, or the reason why not. A full disk is not noticed.
    status_t CanBeSaved() const;

    int32 GetHotKey() const;
    bool GetOnTop() const;
    rgb_color GetColor() const;
    bool GetShowURL() const;
    BPoint GetPos() const; // the bar's left-top corner, on the screen
    QBAlign GetAlign() const;
    QBBrowser GetBrowser() const;

    // Do nothing where the file had a field of another type under the name.
    void SetHotKey(int32 keys);
    void SetOnTop(bool onTop);
    void SetColor(rgb_color color);
    void SetShowURL(bool show);
    void SetPos(BPoint pos);
    void SetAlign(QBAlign align);
    void SetBrowser(QBBrowser browser);

private:
    struct Snapshot;

    // Adds a field that is not there, and leaves one of another type alone.
    void Set(const char* name, type_code type, const void* value, ssize_t size);
    void Publish();

    BMessage fSettings;
    const BPath fPath;
    const std::shared_ptr<Snapshot> fSnapshot;
};

// The program's settings: there from the start of the application until its end, null before.
extern QBSettings* gSettings;
