#pragma once

#include <string>

#include "quillbarctl/formats/Collection.h"

// The HTML that browsers export and import; docs/FORMATS.md tells how it is mapped.

// A group for each of the browser's folders that has links in it itself, in the order of the text.
// Any bytes are read as well as can be: what is no link is left out. Takes memory and time in
// proportion to the text.
Collection ReadHtml(const std::string& text);

std::string WriteHtml(const Collection& collection);
