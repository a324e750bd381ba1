#include "colours/colour_table.h"

#include <cstdio>
#include <cstring>

#include "base/regular_file.h"
#include "base/text.h"
#include "config/plain_name.h"
#include "config/settings.h"

namespace {

constexpr size_t kLineChars = 260;

// A decimal number as the C library's atoi reads it: blanks, a sign, digits;
// wrapping instead of overflowing, since only the low 8 bits are kept.
uint32_t ReadNumber(const char* p) {
  while (*p == ' ' || (*p >= '\t' && *p <= '\r')) ++p;
  const bool negative = *p == '-';
  if (*p == '-' || *p == '+') ++p;
  uint32_t value = 0;
  for (; *p >= '0' && *p <= '9'; ++p) value = value * 10u + static_cast<uint32_t>(*p - '0');
  return negative ? 0u - value : value;
}

// The next value's start after the comma that ends this one; null without one.
const char* AfterComma(const char* p) {
  p = std::strchr(p, ',');
  if (!p) return nullptr;
  while (*p == ',') ++p;
  return p;
}

}  // namespace

bool ParseColourLine(const std::string& whole, NamedColour* out) {
  const std::string line = whole.substr(0, whole.find_first_of("\n\r"));
  const size_t equals = line.find('=');
  if (equals == std::string::npos || equals == 0) return false;
  const char* p = line.c_str() + equals;
  while (*p == '=' || *p == ' ' || *p == '\b') ++p;
  const uint32_t red = ReadNumber(p);
  const char* green = AfterComma(p);
  const char* blue = green ? AfterComma(green) : nullptr;
  if (!blue) return false;
  out->name = line.substr(0, equals);
  out->colour = (red & 0xFF) | (ReadNumber(green) & 0xFF) << 8 | (ReadNumber(blue) & 0xFF) << 16;
  return true;
}

bool ReadColourTable(const std::string& path, std::vector<NamedColour>* out) {
  out->clear();
  FILE* file = OpenRegularFile(path.c_str(), true);
  if (!file) return false;
  char line[kLineChars + 1];
  NamedColour colour;
  while (std::fgets(line, sizeof line, file))
    if (ParseColourLine(line, &colour)) out->push_back(colour);
  std::fclose(file);
  return true;
}

std::string ColourTablePath() {
  static const SettingsValues defaults{};
  const char* name = IsPlainFileName(Settings.ColourTableFile) ? Settings.ColourTableFile : defaults.ColourTableFile;
  return JoinPath(Settings.ApplicationPath, name);
}

std::string ColourLine(const NamedColour& c) {
  return c.name + "=" + std::to_string(c.colour & 0xFF) + "," + std::to_string(c.colour >> 8 & 0xFF) + "," +
         std::to_string(c.colour >> 16 & 0xFF) + "\n";
}

bool WriteColourTable(const std::string& path, const std::vector<NamedColour>* colours) {
  const std::string backup = path + ".bak";
  std::remove(backup.c_str());
  FILE* file = std::fopen(path.c_str(), "w");
  if (!file) return false;
  if (!colours) {
    std::fclose(file);
    std::remove(path.c_str());
    std::rename(backup.c_str(), path.c_str());
    return false;
  }
  bool written = true;
  for (const NamedColour& c : *colours) written = std::fputs(ColourLine(c).c_str(), file) >= 0 && written;
  return std::fclose(file) == 0 && written;
}
