#pragma once

#include <array>
#include <functional>

#include "kits/support/String.h"

class BEntry;
class BNode;

// The directory that holds the ten folders of bookmarks.
inline constexpr const char* kBookmarkRoot = "/boot/home/config/settings/Quillbar";

// The permission bits of the directories that the program makes.
inline constexpr uint32 kDirectoryMode = 0777;

inline constexpr const char* kBookmarkType = "application/x-vnd.Be-bookmark";
// The names of the attributes; the first is where BNodeInfo keeps the type.
inline constexpr const char* kTypeAttribute = "mime_type";
inline constexpr const char* kUrlAttribute = "META:url";
inline constexpr const char* kKeywordsAttribute = "META:keyw";
inline constexpr const char* kTitleAttribute = "META:title";

// The number of the entry at `path`: its name's leading digit, 0 to 9, if a hyphen follows
// somewhere and no second digit at once; -1 otherwise. A path without "/" is a name.
int GetNumber(const char* path);
int GetNumber(BString& path);

// What the entry at `path` is called: what follows its name's first hyphen and one blank, or the
// empty string.
BString GetName(const char* path);
BString GetName(BString& path);

// What a bookmark with this title can be called on disk: without slashes and control characters,
// and no longer than names are.
BString NameOfTitle(const char* title);

// The URL as a menu label shows it: at most 50 bytes.
BString ParseURL(const char* url);
BString ParseURL(BString& url);

// The name "N -" of the directory that stands for a folder which has none. `number` counts from
// one.
BString EmptyFolderName(int number);

// Sets `root` to the bookmark root, which need not exist. A root that is a symbolic link to a
// directory elsewhere stands for that directory.
status_t FindRoot(BEntry& root);

// What a walk makes of a symbolic link: the link itself, or what it points to.
enum class Links { Left, Followed };

// Calls `visit` with each entry of the directory and its full path, in the directory's own order,
// until it returns false. Entries that are gone meanwhile, or whose path cannot be obtained, are
// left out. The status says whether the directory could be opened.
status_t Walk(const BEntry& directory, Links links,
              const std::function<bool(BEntry& entry, const char* path)>& visit);

// Whether the directory at `path` is what the program makes for a folder that has none: named "N -"
// and empty.
bool IsPlaceholder(const char* path);

// The full paths of the directories that stand for the folders, by digit: the first with the digit
// that is not a placeholder, else the placeholder. The empty string for a folder that has none.
using FolderPaths = std::array<BString, 10>;

// Reads the root once. The status is that of opening it.
status_t FindFolders(FolderPaths& folders);
// Of one folder, which counts from one.
BString FindFolder(int number);

// Whether the node is marked as a bookmark.
bool HasBookmarkType(BNode& node);

// The full path of the folder (`slot` below 1), or of the bookmark file that fills the slot. Both
// count from one. The empty string if there is none.
BString FindItem(int folder, int slot);
