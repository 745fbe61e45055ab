#include "host/MenuTable.h"

#include <cctype>
#include <iterator>
#include <string_view>

namespace {

constexpr MenuItemEntry kFileItems[] = {
    {100, "&New Stack"},
    {101, "&Open Stack...\tCtrl+O"},
    {102, "&Save Stack\tCtrl+S"},
    {103, "Save Stack &As..."},
    {105, "&Export Screen...\tCtrl+E"},
    {107, "Pa&ge Setup..."},
    {108, "&Print...\tCtrl+P"},
    {109, "Print to &Video..."},
    {651, "Pre&ferences\tCtrl+;"},
    {110, "E&xit"},
};
constexpr MenuItemEntry kEditItems[] = {
    {150, "&Undo\tCtrl+Z"},  {151, "Cu&t\tCtrl+X"}, {152, "&Copy\tCtrl+C"},
    {153, "&Paste\tCtrl+V"}, {154, "C&lear"},
};
constexpr MenuItemEntry kGoItems[] = {
    {200, "&Back\tCtrl+~"},
    {201, "&Home\tCtrl+H"},
    {202, "&First Card\tCtrl+1"},
    {203, "&Previous Card\tCtrl+<"},
    {204, "&Next Card\tCtrl+>"},
    {205, "&Last Card\tCtrl+9"},
    {206, "&Jump To Card...\tCtrl+J"},
    {207, "Find &Text...\tCtrl+F"},
};
constexpr MenuItemEntry kHelpItems[] = {
    {652, "Quillbrook &Help"},
    {650, "&About Quillbrook Player..."},
};
// A locked stack can't be changed or saved from the menus.
constexpr MenuItemEntry kLockedFileItems[] = {
    {101, "&Open Stack...\tCtrl+O"}, {105, "&Export Screen...\tCtrl+E"}, {107, "Pa&ge Setup..."},
    {108, "&Print...\tCtrl+P"},      {651, "Pre&ferences\tCtrl+;"},      {110, "E&xit"},
};

constexpr MenuEntry kStandardMenus[] = {
    {"&File", kFileItems, std::size(kFileItems)},
    {"&Edit", kEditItems, std::size(kEditItems)},
    {"&Go", kGoItems, std::size(kGoItems)},
    {"&Help", kHelpItems, std::size(kHelpItems)},
};
constexpr MenuEntry kLockedMenus[] = {
    {"&File", kLockedFileItems, std::size(kLockedFileItems)},
    {"&Go", kGoItems, std::size(kGoItems)},
    {"&Help", kHelpItems, std::size(kHelpItems)},
};

constexpr MenuBar kStandardBar = {kStandardMenus, std::size(kStandardMenus)};
constexpr MenuBar kLockedBar = {kLockedMenus, std::size(kLockedMenus)};

std::string Trim(const std::string& s) {
    const size_t first = s.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return s.substr(first, s.find_last_not_of(' ') - first + 1);
}

// Case folded and "&" marks dropped, up to `stop` characters (none when empty).
std::string Plain(const std::string& s, const char* stops) {
    std::string out;
    for (const char c : s) {
        if (*stops && std::string_view(stops).find(c) != std::string_view::npos) break;
        if (c == '&') continue;
        out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return out;
}

}  // namespace

const MenuBar& StandardMenu() { return kStandardBar; }
const MenuBar& LockedMenu() { return kLockedBar; }

int32_t FindMenuItemByName(const MenuBar& bar, const std::string& menuTitle,
                           const std::string& itemTitle) {
    const std::string title = Plain(Trim(menuTitle), "");
    std::string item = Trim(itemTitle);
    while (!item.empty() && item.back() == '.') item.pop_back();
    item = Plain(item, "");
    for (size_t m = 0; m < bar.count; ++m) {
        const MenuEntry& menu = bar.menus[m];
        if (Plain(menu.title, "") != title) continue;
        for (size_t i = 0; i < menu.count; ++i) {
            if (Plain(menu.items[i].text, ".\t") == item) return menu.items[i].id;
        }
    }
    return 0;
}
