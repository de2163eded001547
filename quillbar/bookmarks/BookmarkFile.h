#pragma once

#include <functional>

#include "kits/support/String.h"

class BEntry;
class BNode;

// The name of the folder or bookmark with this number, which counts from one: "N - NAME".
BString EntryName(int number, const BString& name);

// Calls `visit` with the file that fills each slot, in the directory's own order: its digit, the
// file and its full path. A link stands for the file that it leads to. The status says whether the
// directory could be opened.
status_t FindSlotFiles(const BEntry& folder,
                       const std::function<void(int digit, BEntry& file, const char* path)>& visit);

// Reads what a bookmark stands for. False if the node is no complete bookmark; what was read before
// something was found missing stays.
bool ReadBookmark(BNode& node, BString& url, BString& keywords);

// Writes text as an attribute, with its NUL.
status_t WriteText(BNode& node, const char* attribute, const BString& text);

// Why a bookmark or a text of it could not be saved, for the user.
BString SaveReason(status_t status);
