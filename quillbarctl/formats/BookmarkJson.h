#pragma once

#include <string>

#include "quillbarctl/Slots.h"
#include "quillbarctl/formats/Collection.h"

// Our own form, with everything that a bookmark has; docs/FORMATS.md fixes it.

// Replaces `collection`; `error` is then empty, or why the text does not have the form.
void ReadJson(const std::string& text, Collection& collection, std::string& error);

std::string WriteJson(const Collection& collection);

// What `list --json` prints; of one folder, or of all.
std::string ListAsJson(const Folders& folders, std::optional<size_t> only);
