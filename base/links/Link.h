#pragma once

#include <optional>
#include <string>
#include <string_view>

// A link as other programs give it. Any thread; the functions take any bytes, in time that grows
// with their number.
struct Link {
    std::string url; // one for which IsBookmarkUrl() is true
    std::string
        title; // one line of UTF-8, without blanks at its ends; or what is telling of the URL
};

inline constexpr size_t kMaxUrl = 4096;   // bytes; as much as a text field holds
inline constexpr size_t kMaxTitle = 1000; // bytes; a longer one is cut

// Whether it is the address of something that a browser opens: absolute, of a scheme that does not
// run what it holds (not "javascript:" or "data:"), in UTF-8 without blanks and control characters.
bool IsBookmarkUrl(std::string_view url);

// The forms in which a link is dragged: the first one in it that may become a bookmark. Text is
// UTF-8, or UTF-16 if it begins with a byte order mark or with half of a character, and ends before
// its first NUL.
std::optional<Link> LinkOfMozUrl(std::string_view bytes);  // "text/x-moz-url": URL, title by lines
std::optional<Link> LinkOfUriList(std::string_view bytes); // "text/uri-list"
std::optional<Link> LinkOfHtml(std::string_view bytes);    // "text/html"
std::optional<Link> LinkOfText(std::string_view bytes);    // a URL and nothing else

// Whether the name is that of a file that keeps a link: "*.desktop" or "*.url".
bool IsLinkFile(std::string_view name);

// The link in such a file; what is behind kMaxLinkFile bytes of it does not count. Without a title
// of its own it has the file's name.
inline constexpr size_t kMaxLinkFile = size_t{1} << 16;
std::optional<Link> LinkOfFile(std::string_view name, std::string_view content);
