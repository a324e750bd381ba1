#include "cli/pdf_output_intent.h"

#include "cli/pdf_boxes.h"

#include <lcms2.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <vector>

namespace {

bool Fail(std::string* problem, const char* why) { return *problem = why, false; }

bool IsWhite(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\f' || c == '\0'; }

// Little CMS's sRGB profile as the bytes of an ICC file.
std::string SrgbProfile() {
  cmsHPROFILE srgb = cmsCreate_sRGBProfile();
  std::string bytes;
  cmsUInt32Number size = 0;
  if (srgb && cmsSaveProfileToMem(srgb, nullptr, &size) && size > 0 && size < (1u << 20)) {
    bytes.resize(size);
    if (!cmsSaveProfileToMem(srgb, &bytes[0], &size)) bytes.clear();
  }
  if (srgb) cmsCloseProfile(srgb);
  return bytes;
}

// The value after `key` in the trailer dictionary [from, to): the text up to
// the next key or the dictionary's end ("3 0 R", "[<..> <..>]").
std::string TrailerValue(const std::string& pdf, size_t from, size_t to, const char* key) {
  const size_t at = pdf.find(key, from);
  if (at >= to) return "";
  size_t begin = at + std::strlen(key), end = begin;
  if (pdf.compare(begin, 1, "[") != 0 && !IsWhite(pdf[begin])) return "";  // a longer name
  end = pdf[begin] == '[' ? pdf.find(']', begin) : pdf.find_first_of("/>", begin);
  if (end == std::string::npos || end > to) return "";
  if (pdf[end] == ']') ++end;
  while (end > begin && IsWhite(pdf[end - 1])) --end;
  while (begin < end && IsWhite(pdf[begin])) ++begin;
  return pdf.substr(begin, end - begin);
}

// Where object `number` starts, by the classic table at `xref` (subsections
// of "first count" and 20-byte entries); npos when it is not in use there.
size_t ObjectOffset(const std::string& pdf, size_t xref, size_t trailer, unsigned long number) {
  size_t at = xref + 4;
  while (at < trailer) {
    char* end;
    const unsigned long first = std::strtoul(pdf.c_str() + at, &end, 10);
    const unsigned long count = std::strtoul(end, &end, 10);
    at = size_t(end - pdf.c_str());
    while (at < trailer && IsWhite(pdf[at])) ++at;
    if (count > (trailer - at) / 20) return std::string::npos;
    if (number >= first && number - first < count) {
      const size_t entry = at + (number - first) * 20;
      return pdf[entry + 17] == 'n' ? std::strtoul(pdf.c_str() + entry, nullptr, 10) : std::string::npos;
    }
    at += count * 20;
    while (at < trailer && IsWhite(pdf[at])) ++at;
    if (count == 0 && first == 0) break;
  }
  return std::string::npos;
}

std::string Entry(size_t offset) {
  char text[24];
  std::snprintf(text, sizeof text, "%010zu 00000 n \n", offset);
  return text;
}

}  // namespace

bool AddSrgbOutputIntent(const std::string& path, std::string* problem) {
  std::string pdf;
  size_t xref, startxref;
  if (!ReadPdfWithXref(path, &pdf, &xref, &startxref, problem)) return false;
  if (xref >= startxref || pdf.compare(xref, 4, "xref") != 0) return Fail(problem, "has no cross-reference table");
  const size_t trailer = pdf.find("trailer", xref), open = pdf.find("<<", trailer), close = pdf.rfind(">>", startxref);
  if (trailer >= startxref || open >= startxref || close < open) return Fail(problem, "has no trailer");
  const std::string root = TrailerValue(pdf, open, close, "/Root"), info = TrailerValue(pdf, open, close, "/Info");
  const std::string id = TrailerValue(pdf, open, close, "/ID");
  const unsigned long size = std::strtoul(TrailerValue(pdf, open, close, "/Size").c_str(), nullptr, 10);
  char* rest;
  const unsigned long rootNumber = std::strtoul(root.c_str(), &rest, 10);
  if (root.empty() || size == 0 || size > 10000000 || rootNumber >= size) return Fail(problem, "has a damaged trailer");
  const unsigned long rootGeneration = std::strtoul(rest, nullptr, 10);

  // The catalog's dictionary, given the intent.
  const size_t catalog = ObjectOffset(pdf, xref, trailer, rootNumber);
  const size_t dictionary = catalog < xref ? pdf.find("<<", catalog) : std::string::npos;
  const size_t endobj = dictionary < xref ? pdf.find("endobj", dictionary) : std::string::npos;
  const size_t last = endobj < xref ? pdf.rfind(">>", endobj) : std::string::npos;
  if (last == std::string::npos || last < dictionary || pdf.compare(catalog, root.size() - 2, root, 0, root.size() - 2) != 0)
    return Fail(problem, "has no catalog where its table says");
  const std::string body = pdf.substr(dictionary, last - dictionary);
  if (body.find("/Type /Catalog") == std::string::npos && body.find("/Type/Catalog") == std::string::npos)
    return Fail(problem, "has no catalog where its table says");
  if (body.find("/OutputIntents") != std::string::npos) return Fail(problem, "already has an output intent");
  const std::string icc = SrgbProfile();
  if (icc.empty()) return Fail(problem, "cannot be given a colour profile");

  const unsigned long profile = size, intent = size + 1;
  const size_t base = pdf.size();
  std::string update = pdf.back() == '\n' ? "" : "\n";
  const size_t profileAt = base + update.size();
  update += std::to_string(profile) + " 0 obj\n<< /N 3 /Length " + std::to_string(icc.size()) + " >>\nstream\n" + icc +
            "\nendstream\nendobj\n";
  const size_t intentAt = base + update.size();
  update += std::to_string(intent) +
            " 0 obj\n<< /Type /OutputIntent /S /GTS_PDFA1 /OutputConditionIdentifier (sRGB IEC61966-2.1)"
            " /Info (sRGB IEC61966-2.1) /RegistryName (http://www.color.org) /DestOutputProfile " +
            std::to_string(profile) + " 0 R >>\nendobj\n";
  const size_t catalogAt = base + update.size();
  update += std::to_string(rootNumber) + " " + std::to_string(rootGeneration) + " obj\n" + body +
            " /OutputIntents [ " + std::to_string(intent) + " 0 R ]\n>>\nendobj\n";
  const size_t xrefAt = base + update.size();
  char generation[8];
  std::snprintf(generation, sizeof generation, "%05lu", rootGeneration);
  std::string rootEntry = Entry(catalogAt);
  rootEntry.replace(11, 5, generation);
  update += "xref\n0 1\n0000000000 65535 f \n" + std::to_string(rootNumber) + " 1\n" + rootEntry +
            std::to_string(profile) + " 2\n" + Entry(profileAt) + Entry(intentAt) + "trailer\n<< /Size " +
            std::to_string(size + 2) + " /Root " + root + (info.empty() ? "" : " /Info " + info) +
            (id.empty() ? "" : " /ID " + id) + " /Prev " + std::to_string(xref) + " >>\nstartxref\n" +
            std::to_string(xrefAt) + "\n%%EOF\n";

  std::ofstream out(path, std::ios::binary | std::ios::app);
  out.write(update.data(), std::streamsize(update.size()));
  if (!out.flush()) return Fail(problem, "cannot be written");
  return true;
}
