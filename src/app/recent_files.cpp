#include "app/recent_files.h"

#include <cstring>

#include "res/main_ids.h"
#include "base/text.h"

bool IsDrivePath(const std::string& path) { return path.size() >= 3 && path[1] == ':' && path[2] == '\\'; }

std::string StripTrailingBlanks(const std::string& path) {
  size_t end = path.size();
  while (end > 0 && static_cast<unsigned char>(path[end - 1]) <= 32) --end;
  return path.substr(0, end);
}

uint32_t RecentFilesLimit(uint32_t fileMenuRange) {
  const uint32_t most = IDM_CUT - IDM_RECENT_FIRST;
  return fileMenuRange < most ? fileMenuRange : most;
}

namespace {

bool SamePath(const std::string& a, const std::string& b) {
  return a.size() == b.size() && CompareNoCase(a.c_str(), b.c_str(), a.size()) == 0;
}

}  // namespace

bool AddRecentPath(std::vector<std::string>* list, const std::string& path, uint32_t range,
                   bool (*fileExists)(const char* path)) {
  if (range == 0 || path.empty() || !IsDrivePath(path)) return false;
  const std::string entry = StripTrailingBlanks(path);
  if (!fileExists(entry.c_str())) return false;
  std::vector<std::string> old;
  for (const std::string& e : *list) old.push_back(StripTrailingBlanks(e));
  for (const std::string& e : old)
    if (SamePath(e, entry)) return false;

  std::vector<std::string> renewed{entry};
  // The walk stops at the first entry that is not a local path: the count
  // no longer keeps up with the index, so nothing after it is taken.
  for (size_t k = 0; k < renewed.size() && k < old.size(); ++k) {
    if (renewed.size() >= range) break;
    if (IsDrivePath(old[k])) renewed.push_back(old[k]);
  }
  *list = renewed;
  return true;
}
