// The recent-files list at the end of the File menu, apart from the menu:
// which paths it takes and in what order. Newest first.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

// Paths listed must be local: a drive letter, ':' and '\'.
bool IsDrivePath(const std::string& path);
// The path without trailing blanks and control characters.
std::string StripTrailingBlanks(const std::string& path);

// The most entries the menu takes for a `FileMenuRange` setting: the ids
// run from 180, and from 202 on they are Cut, Copy and Paste.
uint32_t RecentFilesLimit(uint32_t fileMenuRange);

// Puts `path` on top of `list`, keeping at most `range` entries. Returns
// false and leaves the list exactly as it was when the list is off (range
// 0), the path is not a local one, names no file, or is listed already in
// any letter case (it is not moved up). Old entries follow in their order
// until one that is not a local path: that one and all after it drop off.
bool AddRecentPath(std::vector<std::string>* list, const std::string& path, uint32_t range,
                   bool (*fileExists)(const char* path));
