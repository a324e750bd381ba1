#include "base/manual.h"

#include <cstdio>

std::string ManualUrl(const std::string& programFolder, const std::string& anchor) {
  std::string url = "file:///";
  for (char c : programFolder + kManualFile) {
    const unsigned char u = static_cast<unsigned char>(c);
    if (c == '\\') {
      url += '/';
    } else if (u <= 32 || u >= 127 || c == '%' || c == '#' || c == '?') {
      // Blanks and the characters a URL gives a meaning are escaped.
      char escaped[4];
      std::snprintf(escaped, sizeof escaped, "%%%02X", u);
      url += escaped;
    } else {
      url += c;
    }
  }
  return anchor.empty() ? url : url + "#" + anchor;
}
