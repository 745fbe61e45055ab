// Folders of the player's own on the host: the private folder a streamed stack lives in, so that
// what the stack may reach beside itself is nothing but itself.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Makes a new folder inside `parent`, named `prefix` and a unique tail, that only this user can
// enter; returns its host path, or "" when it can't be made. Honours the file layer's locked folder.
std::string MakePrivateHostFolder(const std::string& parent, const std::string& prefix);
// Makes a folder and the folders above it that are missing: 0, or -1. Honours the file layer's
// locked folder.
int32_t MakeHostFolders(const std::string& hostPath);
// Removes an empty folder: 0, or -1 (not empty, missing, or not a folder).
int32_t RemoveHostFolder(const std::string& hostPath);
// The user's own folder of the player's settings, extension modules and stack sandboxes:
// $XDG_CONFIG_HOME/quillbrook, else ~/.config/quillbrook; "" when neither is known. It may not
// exist yet.
std::string HostConfigFolder();

struct HostFolderEntry {
    std::string name;  // as the host spells it (UTF-8)
    bool folder = false;
};
// What a folder holds, in no order, without "." and ".."; false when it cannot be read.
bool ListHostFolder(const std::string& hostPath, std::vector<HostFolderEntry>* entries);
// The folder the program was started in.
std::string HostCurrentFolder();
