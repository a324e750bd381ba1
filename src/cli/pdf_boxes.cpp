#include "cli/pdf_boxes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

bool IsWhite(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\f' || c == '\0'; }
bool IsDelimiter(char c) { return IsWhite(c) || std::strchr("()<>[]{}/%", c) != nullptr; }

size_t SkipWhite(const std::string& pdf, size_t at) {
  while (at < pdf.size() && IsWhite(pdf[at])) ++at;
  return at;
}

// The end of the literal string "(...)" that starts at `at`: parentheses
// nest, and a backslash escapes the next byte.
size_t SkipLiteralString(const std::string& pdf, size_t at) {
  int depth = 0;
  for (; at < pdf.size(); ++at) {
    if (pdf[at] == '\\') ++at;
    else if (pdf[at] == '(') ++depth;
    else if (pdf[at] == ')' && --depth == 0) return at + 1;
  }
  return std::string::npos;
}

// Whether the dictionary "<<...>>" starting at `at` is a page's: its own
// /Type, not one of a dictionary inside it, is /Page. `end` receives where it
// ends, npos when it does not.
bool IsPageDictionary(const std::string& pdf, size_t at, size_t* end) {
  int depth = 0;
  bool page = false;
  while (at < pdf.size()) {
    const char c = pdf[at];
    if (pdf.compare(at, 2, "<<") == 0) {
      ++depth, at += 2;
    } else if (pdf.compare(at, 2, ">>") == 0) {
      at += 2;
      if (--depth == 0) return *end = at, page;
    } else if (c == '(') {
      at = SkipLiteralString(pdf, at);
    } else if (c == '<') {
      at = pdf.find('>', at);  // a hex string
      if (at != std::string::npos) ++at;
    } else if (c == '%') {
      at = pdf.find_first_of("\r\n", at);
    } else if (c == '/') {
      size_t name = at++;
      while (at < pdf.size() && !IsDelimiter(pdf[at])) ++at;
      if (depth == 1 && pdf.compare(name, at - name, "/Type") == 0) {
        size_t value = SkipWhite(pdf, at), valueEnd = value + 5;
        page = pdf.compare(value, 5, "/Page") == 0 && (valueEnd == pdf.size() || IsDelimiter(pdf[valueEnd]));
      }
    } else {
      ++at;
    }
  }
  *end = std::string::npos;
  return false;
}

std::string Number(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4f", v);
  std::string s = text;
  s.erase(s.find_last_not_of('0') + 1);
  if (s.back() == '.') s.pop_back();
  return s == "-0" ? "0" : s;
}

std::string BoxEntry(const char* key, const PdfBox& b) {
  return std::string(" /") + key + " [ " + Number(b.left) + " " + Number(b.bottom) + " " + Number(b.right) + " " +
         Number(b.top) + " ]";
}

// One entry of the cross-reference table: "oooooooooo ggggg n" and an end of
// line, 20 bytes in all.
struct XrefEntry {
  size_t at;      // where the entry's text is in the file
  size_t offset;  // of its object, for an object in use
  bool inUse;
};

bool Fail(std::string* problem, const char* why) { return *problem = why, false; }

// The entries of the single cross-reference table at `xref`; `trailer`
// receives where its trailer starts.
bool ReadXref(const std::string& pdf, size_t xref, std::vector<XrefEntry>* entries, size_t* trailer,
              std::string* problem) {
  if (pdf.compare(xref, 4, "xref") != 0) return Fail(problem, "its cross-references are not a table");
  size_t at = SkipWhite(pdf, xref + 4);
  while (at < pdf.size() && pdf.compare(at, 7, "trailer") != 0) {
    char* end;
    std::strtoul(pdf.c_str() + at, &end, 10);
    const unsigned long count = std::strtoul(end, &end, 10);
    at = SkipWhite(pdf, size_t(end - pdf.c_str()));
    for (unsigned long i = 0; i < count; ++i, at += 20) {
      if (at + 20 > pdf.size() || (pdf[at + 17] != 'n' && pdf[at + 17] != 'f'))
        return Fail(problem, "its cross-reference table is damaged");
      entries->push_back({at, std::strtoul(pdf.c_str() + at, nullptr, 10), pdf[at + 17] == 'n'});
    }
    at = SkipWhite(pdf, at);
  }
  if (at >= pdf.size()) return Fail(problem, "its cross-reference table has no trailer");
  *trailer = at;
  return true;
}

}  // namespace

bool ReadPdfWithXref(const std::string& path, std::string* pdf, size_t* xref, size_t* startxref,
                     std::string* problem) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return Fail(problem, "cannot be read back");
  pdf->assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  *startxref = pdf->rfind("startxref");
  if (*startxref == std::string::npos) return Fail(problem, "has no cross-references");
  *xref = std::strtoul(pdf->c_str() + *startxref + 9, nullptr, 10);
  return true;
}

bool SetPageBoxes(const std::string& path, const PdfBox& trim, const PdfBox& bleed, std::string* problem) {
  std::string pdf;
  size_t xref, startxref;
  if (!ReadPdfWithXref(path, &pdf, &xref, &startxref, problem)) return false;
  std::vector<XrefEntry> entries;
  size_t trailer;
  if (xref >= startxref || !ReadXref(pdf, xref, &entries, &trailer, problem)) return false;
  if (pdf.find("/Prev", trailer) < startxref) return Fail(problem, "has been updated since it was written");

  // Where each page's dictionary opens, in file order.
  const std::string boxes = BoxEntry("TrimBox", trim) + BoxEntry("BleedBox", bleed);
  std::vector<size_t> insertions;
  for (const XrefEntry& entry : entries) {
    if (!entry.inUse) continue;
    const size_t obj = pdf.find("obj", entry.offset);
    if (entry.offset >= xref || obj == std::string::npos || obj > entry.offset + 24)
      return Fail(problem, "has an object that is not where its table says");
    const size_t open = SkipWhite(pdf, obj + 3);
    size_t end;
    if (pdf.compare(open, 2, "<<") == 0 && IsPageDictionary(pdf, open, &end)) {
      if (pdf.find("/TrimBox", open) < end || pdf.find("/BleedBox", open) < end)
        return Fail(problem, "already has page boxes");
      insertions.push_back(open + 2);
    }
  }
  if (insertions.empty()) return Fail(problem, "has no pages");
  std::sort(insertions.begin(), insertions.end());

  // Every offset moves by the boxes inserted before it.
  auto moved = [&](size_t offset) {
    return offset + boxes.size() * size_t(std::lower_bound(insertions.begin(), insertions.end(), offset + 1) -
                                          insertions.begin());
  };
  std::string out;
  out.reserve(pdf.size() + boxes.size() * insertions.size());
  size_t from = 0;
  for (size_t at : insertions) {
    out.append(pdf, from, at - from).append(boxes);
    from = at;
  }
  out.append(pdf, from, xref - from);
  std::string table = pdf.substr(xref, startxref - xref);
  for (const XrefEntry& entry : entries) {
    if (!entry.inUse) continue;
    char field[11];
    std::snprintf(field, sizeof field, "%010zu", moved(entry.offset));
    table.replace(entry.at - xref, 10, field);
  }
  out += table;
  out += "startxref\n" + std::to_string(moved(xref)) + "\n%%EOF\n";

  const std::string temporary = path + ".boxes";
  {
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file.write(out.data(), std::streamsize(out.size()));
    if (!file.flush()) {
      std::remove(temporary.c_str());
      return Fail(problem, "cannot be written");
    }
  }
  if (std::rename(temporary.c_str(), path.c_str()) != 0) {
    std::remove(temporary.c_str());
    return Fail(problem, "cannot be written");
  }
  return true;
}
