// Reading and writing the settings file QUERNL.INI.
#pragma once
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

// The per-user configuration folder with a trailing separator. Win32: the
// shell's application-data folder plus "Tarnwick"; elsewhere the folder set
// with SetConfigFolder. False when it cannot be determined. Never created.
bool ConfigFolder(char* buffer, size_t size);
// The configuration folder followed by `name`, in a static buffer; empty when
// the folder is unknown.
const char* ConfigFile(const char* name);
#ifndef _WIN32
// Names the configuration folder for builds without a shell to ask.
void SetConfigFolder(const char* folder);
#endif

constexpr const char* kSettingsFileName = "QUERNL.INI";

// Reads QUERNL.INI from the configuration folder into the bound variables;
// any failure leaves them as they were.
void LoadSettings();
void LoadSettingsFile(const char* path);

// Hands the value of every MenuItem line of the settings file, in file
// order, to `add` (the recent-files list decides what to keep).
using RecentFileSink = void (*)(const char* value, void* context);
void LoadRecentFiles(RecentFileSink add, void* context);
void LoadRecentFilesFromFile(const char* path, RecentFileSink add, void* context);

// Writes every row and the recent files (menu order: newest first) to the
// settings file, replacing it. Failures are silent, as the program wants.
void SaveSettings(const std::vector<std::string>& recentFiles);
void WriteSettings(std::FILE* out, const std::vector<std::string>& recentFiles, std::time_t now);
