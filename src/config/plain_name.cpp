#include "config/plain_name.h"

#include <cstring>
#include <string>

#include "base/text.h"

bool IsPlainFileName(const char* name) {
  const std::string text = name;
  if (text.empty() || text.back() == '.' || text.back() == ' ') return false;  // also "." and ".."
  for (unsigned char c : text)
    if (c < 32 || std::strchr("\\/:*?\"<>|", c)) return false;
  // Windows opens a device for these names whatever extension follows.
  static const char* const kDevices[] = {"CON", "PRN", "AUX", "NUL"};
  std::string stem = text.substr(0, text.find('.'));
  stem.erase(stem.find_last_not_of(' ') + 1);  // "CON .x" is the device too
  for (const char* device : kDevices)
    if (stem.size() == 3 && CompareNoCase(stem.c_str(), device, 3) == 0) return false;
  // COM and LPT take a digit, superscript 1, 2 and 3 included.
  const bool numbered = stem.size() == 4 && std::strchr("123456789\xB9\xB2\xB3", stem[3]);
  return !(numbered && (CompareNoCase(stem.c_str(), "COM", 3) == 0 || CompareNoCase(stem.c_str(), "LPT", 3) == 0));
}
