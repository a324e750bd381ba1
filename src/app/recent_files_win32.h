// The recent-files entries of the File menu (command ids 180 and up).
#pragma once
#include <windows.h>

#include <string>
#include <vector>

// Puts a saved calendar's path on top of the list (see AddRecentPath).
void AddRecentFile(HWND window, const char* path);
// The listed paths, newest first, as the settings file keeps them.
std::vector<std::string> RecentFiles(HWND window);
// The path of recent-file command `id`, or empty when `id` is none.
std::string RecentFileForCommand(HWND window, int id);
