#include "config/settings_file.h"

#include <cstdint>
#include <cstring>

#include "base/regular_file.h"
#include "base/replace_file.h"
#include "base/text.h"
#include "config/settings.h"

namespace {

constexpr int kLineSize = 260;  // lines are read in pieces of at most 259 characters

// One line of the settings file, split the way every reader here splits it.
struct SettingsLine {
  const char* key;
  size_t keyLength;
  const char* value;
};

// Cuts `line` at its first control character and splits it into key and
// value. False for a comment line.
bool SplitLine(char* line, SettingsLine* out) {
  if (line[0] == ';') return false;
  char* p = line;
  while (static_cast<unsigned char>(*p) >= 32) ++p;
  *p = 0;
  // The key runs over characters above the blank that are not "=".
  size_t k = 0;
  while (static_cast<unsigned char>(line[k]) > 32 && line[k] != '=') ++k;
  // Every blank and "=" between key and value is skipped.
  const char* v = line + k;
  while (*v == ' ' || *v == '=') ++v;
  *out = {line, k, v};
  return true;
}

// Signed decimal with optional leading white space and one sign, wrapping
// modulo 2^32 without an overflow check; no digits give 0.
uint32_t ParseNumber(const char* s) {
  while (*s == ' ' || (*s >= 9 && *s <= 13)) ++s;
  bool negative = false;
  if (*s == '+' || *s == '-') negative = *s++ == '-';
  uint32_t value = 0;
  while (*s >= '0' && *s <= '9') value = value * 10u + static_cast<uint32_t>(*s++ - '0');
  return negative ? 0u - value : value;
}

const SettingsRow* MatchRow(const char* key, size_t length) {
  for (int i = 0; i < SettingsTableRows; ++i) {
    const SettingsRow& row = SettingsTable[i];
    if (row.type & kSettingWriteOnly) continue;
    if (std::strncmp(row.key, key, length) == 0) return &row;
  }
  return nullptr;
}

void StoreValue(const SettingsRow& row, const char* value) {
  if (row.type & kSettingText) {
    char* text = static_cast<char*>(row.variable);
    std::memset(text, 0, kSettingTextSize);
    CopyText(text, kSettingTextSize, value);
  } else if (row.type & (kSettingFlag | kSettingNumber)) {
    *static_cast<uint32_t*>(row.variable) = ParseNumber(value);
  }
}

}  // namespace

void LoadSettingsFile(const char* path) {
  std::FILE* f = OpenRegularFile(path, true);
  if (!f) return;
  char line[kLineSize];
  SettingsLine parts;
  while (std::fgets(line, sizeof line, f)) {
    if (!SplitLine(line, &parts)) continue;
    if (const SettingsRow* row = MatchRow(parts.key, parts.keyLength)) StoreValue(*row, parts.value);
  }
  std::fclose(f);
}

void LoadSettings() {
  const char* path = ConfigFile(kSettingsFileName);
  if (*path) LoadSettingsFile(path);
}

void LoadRecentFilesFromFile(const char* path, RecentFileSink add, void* context) {
  std::FILE* f = OpenRegularFile(path, true);
  if (!f) return;
  static const char kMenuItem[] = "MenuItem";
  char line[kLineSize];
  SettingsLine parts;
  while (std::fgets(line, sizeof line, f)) {
    if (!SplitLine(line, &parts)) continue;
    // Any prefix of "MenuItem" counts, the empty key included.
    if (parts.keyLength <= sizeof kMenuItem - 1 && std::strncmp(kMenuItem, parts.key, parts.keyLength) == 0)
      add(parts.value, context);
  }
  std::fclose(f);
}

void LoadRecentFiles(RecentFileSink add, void* context) {
  const char* path = ConfigFile(kSettingsFileName);
  if (*path) LoadRecentFilesFromFile(path, add, context);
}

void WriteSettings(std::FILE* out, const std::vector<std::string>& recentFiles, std::time_t now) {
  std::fprintf(out, ";Quernal configuration file\n;Edit this at your own risk\n;%s\n", "Quernal");
  const char* stamp = std::ctime(&now);
  std::fprintf(out, ";Last updated %24.24s\n;\n[Quernal]\n", stamp ? stamp : "");
  for (int i = 0; i < SettingsTableRows; ++i) {
    const SettingsRow& row = SettingsTable[i];
    if (row.type & kSettingText)
      std::fprintf(out, "%s = %s\n", row.key, static_cast<const char*>(row.variable));
    else
      std::fprintf(out, "%s = %u\n", row.key, static_cast<unsigned>(*static_cast<const uint32_t*>(row.variable)));
  }
  std::fprintf(out, ";----- Menu items ------\n[QuernalMenuItems]\n");
  // Oldest first: reading the file back puts each entry on top of the list.
  for (auto it = recentFiles.rbegin(); it != recentFiles.rend(); ++it) {
    const std::string& text = *it;
    if (text.size() >= 3 && text[1] == ':' && text[2] == '\\') std::fprintf(out, "%s = %s\n", "MenuItem", text.c_str());
  }
}

void SaveSettings(const std::vector<std::string>& recentFiles) {
  const char* path = ConfigFile(kSettingsFileName);
  if (!*path) return;
  // A write that fails half-way keeps the previous settings.
  ReplacingFile out(path, true);
  if (!out.file()) return;
  WriteSettings(out.file(), recentFiles, std::time(nullptr));
  if (!std::ferror(out.file())) out.Commit();
}
