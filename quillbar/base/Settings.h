#pragma once

#include "base/Color.h"
#include "kits/app/Message.h"
#include "kits/kernel/Locker.h"
#include "kits/storage/Path.h"
#include "quillbar/base/Commands.h"

// The user's choices, one message that is read from and written to the settings file.
// Any thread.
class QBSettings {
public:
    // Starts with the defaults and does not look at the disk.
    explicit QBSettings(BPath path);
    // Does not save.
    ~QBSettings();

    QBSettings(const QBSettings&) = delete;

    // Replaces all choices by those in the file. False, and nothing is changed, if there is none or
    // it cannot be read; a getter gives its default for a choice that the file lacks.
    //
    // A file that holds something else is put aside as "NAME.bad", one that exists but could not be
    // read is never written over; a line on standard error says so.
    bool Load();

    // Writes the file, so that at any moment the old one or the new one is there, whole. Does
    // nothing if that cannot be done, or if another thread does it just now.
    void Save();

    int32 GetHotKey() const;
    bool GetOnTop() const;
    rgb_color GetColor() const;
    bool GetShowURL() const;
    BPoint GetPos() const; // the bar's left-top corner, on the screen
    QBAlign GetAlign() const;
    QBBrowser GetBrowser() const;

    // Do nothing where the file had something of another type under the name.
    void SetHotKey(int32 keys);
    void SetOnTop(bool onTop);
    void SetColor(rgb_color color);
    void SetShowURL(bool show);
    void SetPos(BPoint pos);
    void SetAlign(QBAlign align);
    void SetBrowser(QBBrowser browser);

private:
    int32 GetInt32(const char* name, int32 otherwise) const;
    void SetInt32(const char* name, int32 value);
    bool GetBool(const char* name, bool otherwise) const;
    void SetBool(const char* name, bool value);

    BMessage* fSettings;
    BPath fPath;
    // The file is there but its content is not known.
    bool fUnread = false;
    mutable BLocker fLock; // for fSettings and fUnread
    BLocker fSaving;       // one writer of the file
};

// The program's settings: there from the start of the application until its end, null before.
extern QBSettings* gSettings;
