// The player's menus as data: the commands and their texts. The player shows no menu bar; the
// table serves a stack's actions that name a menu item by its text, and the keyboard's commands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

struct MenuItemEntry {
    int32_t id;
    const char* text;  // with "&" before the access key and "\t" before the shortcut
};

struct MenuEntry {
    const char* title;
    const MenuItemEntry* items;
    size_t count;
};

struct MenuBar {
    const MenuEntry* menus;
    size_t count;
};

// `QB`, the menu of every stack, and `QuillbrookLock`, the one of a locked stack.
const MenuBar& StandardMenu();
const MenuBar& LockedMenu();

// The id of the item `itemTitle` in the menu `menuTitle` of `bar`, 0 when there is none. Blanks
// around both names, "&" marks, case, and dots ending the item's name don't count; a menu item's
// text is compared as far as its first "." or tab.
int32_t FindMenuItemByName(const MenuBar& bar, const std::string& menuTitle,
                           const std::string& itemTitle);
