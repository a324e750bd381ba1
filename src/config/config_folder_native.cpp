// Without a shell to ask, the caller names the configuration folder.
#include <string>

#include "base/text.h"
#include "config/settings_file.h"

namespace {
std::string g_folder;
bool g_known = false;
}  // namespace

void SetConfigFolder(const char* folder) {
  g_folder = folder;
  if (!g_folder.empty() && g_folder.back() != '/') g_folder += '/';
  g_known = true;
}

bool ConfigFolder(char* buffer, size_t size) {
  if (!g_known || g_folder.size() + 1 > size) return false;
  CopyText(buffer, size, g_folder.c_str());
  return true;
}

const char* ConfigFile(const char* name) {
  static std::string path;
  char folder[4096];
  path = ConfigFolder(folder, sizeof folder) ? std::string(folder) + name : std::string();
  return path.c_str();
}
