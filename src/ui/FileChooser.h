// Our own file chooser for Open and Save As, drawn in the window with the one renderer, so that it
// looks the same on every desktop and runs headless on scripted input.
//
// It shows the folder's path, then a scrolling list: the parent folder "..", the folders, and the
// files the filter lets through, each group by name. Save As adds a name box. Arrows, Page Up and
// Down, Home and End move the selection; Return opens a folder or takes the file; Escape cancels;
// typing selects the first name that starts with what was typed (in Save As it edits the name);
// a click selects, a double click opens, and a click on the list's bar pages it.
#pragma once

#include <string>
#include <vector>

#include "platform/Host.h"

// Runs the chooser; true with the chosen file's host path, false when cancelled. A Save As name
// without an extension takes the filter's first.
bool RunFileChooser(const FileChoice& choice, std::string* hostPath);

// What the chooser shows and where its selection stands; drawn by FileChooserDraw.cpp.
struct ChooserRow {
    std::string name;  // as the host spells it
    bool folder = false;
};
struct ChooserSession {
    FileChoice choice;
    std::string folder;            // host path, no trailing "/" but for the root
    std::vector<ChooserRow> rows;  // ".." first (but at the root), the folders, the files
    int selected = -1;             // -1: none (Save As before a row is picked)
    int first = 0;                 // the first row in view
    std::string name;              // Save As: the name box
    bool nameFresh = true;         // the name box holds the proposal: typing replaces it
    std::string typed;             // Open: the letters typed to select a row
    uint32_t typedAt = 0;
    int answer = 0;                // 1 chosen, 2 cancelled
    int pressed = 0;               // the button held down: 1 OK, 2 Cancel
    int tracking = 0;
};

// The geometry, relative to the box's corner.
inline constexpr int32_t kChooserWidth = 420;
inline constexpr int32_t kChooserHeight = 330;
inline constexpr int32_t kChooserRowHeight = 16;
inline constexpr int32_t kChooserRowsInView = 13;
inline constexpr int32_t kChooserBarWidth = 14;
Rect ChooserListRect();   // the list, with its frame and bar
Rect ChooserNameRect();   // the name box of Save As
Rect ChooserButtonRect(int button);  // 1 OK (Open or Save), 2 Cancel

void DrawFileChooser(const ChooserSession& session, Surface& window, const Rect& box);
