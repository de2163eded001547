#pragma once

#include <string>

#include "quillbarctl/formats/Collection.h"

// The HTML that browsers export and import; docs/FORMATS.md tells how it is mapped.

// Replaces `collection` by a group for each of the browser's folders that has links in it itself,
// in the order of the text. Any bytes are read as well as can be: what is no link is left out.
// `error` is empty, or why the text is not taken: it has too many links or folders.
void ReadHtml(const std::string& text, Collection& collection, std::string& error);

std::string WriteHtml(const Collection& collection);
