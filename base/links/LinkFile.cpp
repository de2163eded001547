#include "base/links/LinkText.h"

namespace {

constexpr std::string_view kDesktop = ".desktop";
constexpr std::string_view kShortcut = ".url";

bool EndsWith(std::string_view name, std::string_view ending) {
    return name.size() > ending.size() && IsWord(name.substr(name.size() - ending.size()), ending);
}

} // namespace

bool IsLinkFile(std::string_view name) {
    return EndsWith(name, kDesktop) || EndsWith(name, kShortcut);
}

std::optional<Link> LinkOfFile(std::string_view name, std::string_view content) {
    const bool isDesktop = EndsWith(name, kDesktop);
    const std::string_view wanted = isDesktop ? "[desktop entry]" : "[internetshortcut]";
    const std::string text = TextOf(content.substr(0, kMaxLinkFile));
    std::string_view url, title;
    bool isWanted = false, isLink = true;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view line = TakeLine(rest);
        if (line.starts_with('['))
            isWanted = IsWord(line, wanted);
        const size_t equals = line.find('=');
        if (!isWanted || equals == std::string_view::npos)
            continue;
        const std::string_view key = WithoutBlanks(line.substr(0, equals));
        const std::string_view value = WithoutBlanks(line.substr(equals + 1));
        if (IsWord(key, "url"))
            url = value;
        else if (isDesktop && key == "Name")
            title = value;
        else if (isDesktop && key == "Type")
            isLink = value == "Link";
    }
    if (title.empty())
        title = name.substr(0, name.rfind('.'));
    return isLink ? MakeLink(url, title) : std::nullopt;
}
