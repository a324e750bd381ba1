#include "base/text.h"

#include <cstring>

void CopyText(char* to, size_t size, const char* from) {
  if (size == 0) return;
  size_t n = 0;
  while (n + 1 < size && from[n]) {
    to[n] = from[n];
    ++n;
  }
  to[n] = 0;
}

static unsigned char Upper(unsigned char c) { return c >= 'a' && c <= 'z' ? c - 32 : c; }

int CompareNoCase(const char* a, const char* b, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    unsigned char ca = Upper(static_cast<unsigned char>(a[i]));
    unsigned char cb = Upper(static_cast<unsigned char>(b[i]));
    if (ca != cb) return ca < cb ? -1 : 1;
    if (ca == 0) return 0;
  }
  return 0;
}

namespace {
// 0x80..0x9F differ from Latin-1; 0 marks the five bytes Windows leaves unassigned.
const unsigned short k80[32] = {
    0x20AC, 0, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0, 0x017D, 0, 0, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0, 0x017E, 0x0178};

// The Windows-1252 byte of a code point, or -1.
int Cp1252Byte(unsigned code) {
  if (code < 0x80 || (code >= 0xA0 && code < 0x100)) return static_cast<int>(code);
  for (int i = 0; i < 32; ++i)
    if (k80[i] == code) return 0x80 + i;
  return -1;
}

// Reads one UTF-8 sequence at text[*at]; -1 for a malformed, overlong or
// surrogate one (one byte is consumed then).
long NextCodePoint(const std::string& text, size_t* at) {
  const unsigned char lead = static_cast<unsigned char>(text[(*at)++]);
  if (lead < 0x80) return lead;
  const int extra = lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 ? (lead < 0xF0 ? 2 : -1) : lead >= 0xC2 ? 1 : -1;
  if (extra < 0 || *at + extra > text.size()) return -1;
  unsigned long code = lead & (0x3F >> extra);
  for (int i = 0; i < extra; ++i) {
    const unsigned char c = static_cast<unsigned char>(text[*at + i]);
    if ((c & 0xC0) != 0x80) return -1;
    code = code << 6 | (c & 0x3F);
  }
  static const unsigned long kLeast[4] = {0, 0x80, 0x800, 0x10000};
  if (code < kLeast[extra] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return -1;
  *at += extra;
  return static_cast<long>(code);
}
}  // namespace

bool Utf8ToCp1252(const std::string& utf8, std::string* out) {
  out->clear();
  bool whole = true;
  for (size_t at = 0; at < utf8.size();) {
    const long code = NextCodePoint(utf8, &at);
    const int byte = code < 0 ? -1 : Cp1252Byte(static_cast<unsigned>(code));
    whole = whole && byte >= 0;
    *out += static_cast<char>(byte >= 0 ? byte : '?');
  }
  return whole;
}

std::string Cp1252ToUtf8(const std::string& text) {
  bool ascii = true;
  for (unsigned char c : text) ascii = ascii && c < 0x80;
  if (ascii) return text;
  std::string out;
  out.reserve(text.size() + 8);
  for (unsigned char c : text) {
    unsigned code = c;
    if (c >= 0x80 && c < 0xA0) code = k80[c - 0x80] ? k80[c - 0x80] : 0xFFFD;
    if (code < 0x80) {
      out += static_cast<char>(code);
    } else if (code < 0x800) {
      out += static_cast<char>(0xC0 | (code >> 6));
      out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
      out += static_cast<char>(0xE0 | (code >> 12));
      out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return out;
}

const char* FileNamePart(const char* path) {
  const char* name = path;
  for (const char* p = path; *p; ++p)
    if (*p == '\\' || *p == '/' || *p == ':') name = p + 1;
  return name;
}

std::string JoinPath(const std::string& folder, const std::string& name) {
#ifdef _WIN32
  const char separator = '\\';
#else
  const char separator = '/';
#endif
  // No folder is the current one, not the root.
  if (folder.empty()) return name;
  std::string path = folder;
  if (path.back() != '\\' && path.back() != '/') path += separator;
  return path + name;
}

std::string FolderOfFile(const std::string& path) {
  const size_t end = path.find_last_of("\\/:");
  if (end == std::string::npos) return "";
  std::string folder = path.substr(0, end + 1);
  if (folder.back() != '\\' && folder.back() != '/') folder += '\\';
  return folder;
}

std::string DialogStartFolder(const std::string& openPath, const std::string& programFolder,
                              const std::string& documents) {
  const bool unused = openPath.empty() || (openPath.size() == programFolder.size() &&
                                           CompareNoCase(openPath.c_str(), programFolder.c_str(), openPath.size()) == 0);
  return unused ? documents : openPath;
}
