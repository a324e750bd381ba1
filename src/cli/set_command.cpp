// quernal-cli set: fields and pictures of a calendar's pages from the command line.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "base/text.h"
#include "calendar/calendar_file.h"
#include "calendar/calendar_model.h"
#include "calendar/record_fields.h"
#include "cli/calendar_lock.h"
#include "cli/commands.h"

namespace {

constexpr int kYearPage = 12, kCoverPage = 13;

// Where a new picture's transparent parts show: the page's background, or
// the cover's.
Colour PageBackground(CalendarDocument document, int page) {
  MonthPage month;
  CalendarHeader header;
  if (page < kYearPage && GetMonthPage(document, page, &month)) return month.PageBackgroundColour;
  return GetHeader(document, &header) ? header.CoverBackgroundColour : 0xFFFFFF;
}

// The record fields that say how the file is put together, or that the
// program keeps for itself, are not for setting.
bool Settable(const RecordField& field) {
  switch (field.kind) {
    case FieldKind::Magic: case FieldKind::Structural: case FieldKind::Kept: case FieldKind::Picture:
    case FieldKind::Events: case FieldKind::Reserved: return false;
    default: return true;
  }
}

bool ParseLong(const std::string& text, long low, long high, long* value) {
  char* end = nullptr;
  errno = 0;
  const long v = std::strtol(text.c_str(), &end, 10);
  if (text.empty() || *end || errno || v < low || v > high) return false;
  *value = v;
  return true;
}

// A colour as #RRGGBB, "r,g,b" or the COLORREF number info shows.
bool ParseColour(const std::string& text, uint32_t* colour) {
  unsigned r, g, b;
  char end;
  long number;
  if (text.size() == 7 && text[0] == '#' && text.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos) {
    const unsigned long rgb = std::strtoul(text.c_str() + 1, nullptr, 16);
    r = rgb >> 16, g = (rgb >> 8) & 0xFF, b = rgb & 0xFF;
  } else if (std::sscanf(text.c_str(), "%u ,%u ,%u%c", &r, &g, &b, &end) == 3 && r < 256 && g < 256 && b < 256 &&
             text.find_first_not_of("0123456789, ") == std::string::npos) {
  } else if (ParseLong(text, 0, 0xFFFFFF, &number)) {
    *colour = static_cast<uint32_t>(number);
    return true;
  } else {
    return false;
  }
  *colour = r | g << 8 | b << 16;
  return true;
}

// Writes `value` into the field of `record`; an empty string, or what is
// wrong with the value.
std::string SetField(uint8_t* record, const RecordField& field, const std::string& value) {
  const std::string name = field.name;
  uint8_t* at = record + field.offset;
  long number = 0;
  if (field.kind == FieldKind::Text) {
    std::string text;
    if (!Utf8ToCp1252(value, &text)) return "has a character Windows-1252 cannot hold (shown as ?): " + Cp1252ToUtf8(text);
    if (text.size() >= field.size) return "is longer than " + std::to_string(field.size - 1) + " characters";
    std::memset(at, 0, field.size);
    std::memcpy(at, text.data(), text.size());
    return "";
  }
  if (field.kind == FieldKind::Colour) {
    uint32_t colour;
    if (!ParseColour(value, &colour)) return "takes a colour: #RRGGBB or r,g,b";
    std::memcpy(at, &colour, 4);
    return "";
  }
  if (field.kind == FieldKind::Flag) {
    if (value != "0" && value != "1") return "takes 0 or 1";
    number = value == "1";
  } else if (field.kind == FieldKind::Weight) {
    if (value != "400" && value != "700") return "takes 400 (normal) or 700 (bold)";
    number = std::atol(value.c_str());
  } else if (name == "Year") {
    if (!ParseLong(value, 1583, 2583, &number)) return "takes a year from 1583 to 2583";
  } else if (name == "CurrentPage") {
    if (!ParseLong(value, 0, 13, &number)) return "takes a page from 0 to 13";
  } else if (!ParseLong(value, 0, 0x7FFFFFFF, &number)) {
    return "takes a whole number from 0 to 2147483647";
  }
  if (field.size == 2) {
    const uint16_t u16 = static_cast<uint16_t>(number);
    std::memcpy(at, &u16, 2);
  } else {
    const int32_t i32 = static_cast<int32_t>(number);
    std::memcpy(at, &i32, 4);
  }
  return "";
}

struct Assignment {
  const RecordField* field;
  std::string value;
};

// The FIELD=VALUE arguments checked against the fields of the page kind;
// an exit code, or -1.
int ReadAssignments(const std::vector<std::string>& args, int page, std::vector<Assignment>* out) {
  const RecordFieldList fields = page < kYearPage ? MonthPageFields() : HeaderFields();
  for (const std::string& arg : args) {
    const size_t equals = arg.find('=');
    if (equals == std::string::npos || equals == 0) return Usage(("set takes FIELD=VALUE, not " + arg).c_str());
    const std::string name = arg.substr(0, equals);
    const RecordField* field = FindField(fields, name.c_str());
    const char* pageKind = page < kYearPage ? "a month page" : page == kYearPage ? "the year page" : "the cover";
    // The header holds both pages: the cover's fields are those named Cover...
    const bool cover = name.compare(0, 5, "Cover") == 0;
    if (!field || field->kind == FieldKind::Reserved || (page == kYearPage && cover) || (page == kCoverPage && !cover))
      return Usage(("no field " + name + " on " + pageKind + " (info lists the fields)").c_str());
    if (!Settable(*field)) return Usage((name + " is kept by the program and cannot be set").c_str());
    uint8_t scratch[kMonthPageSize];
    const std::string problem = SetField(scratch, *field, arg.substr(equals + 1));
    if (!problem.empty()) return Usage((name + " " + problem).c_str());
    out->push_back({field, arg.substr(equals + 1)});
  }
  return -1;
}

// The page set names: a month 0..11, 12 the year page or 13 the cover.
int ChosenPages(const Arguments& args, CalendarDocument document, std::vector<int>* pages) {
  if (args.Has("--page") + args.Has("--months") + args.Has("--year-page") + args.Has("--cover") > 1)
    return Usage("--page, --months, --year-page and --cover exclude each other");
  int page = -1;
  if (args.Has("--months")) {
    for (int month = 0; month < 12; ++month) pages->push_back(month);
    return -1;
  }
  if (args.Has("--year-page")) page = kYearPage;
  if (args.Has("--cover")) page = kCoverPage;
  if (args.Has("--page") && !ParseInt(args.options.at("--page"), 0, 13, &page))
    return Usage(("there is no page " + args.options.at("--page") +
                  ": 0 to 11 are the months, 12 the year page, 13 the cover").c_str());
  if (page < 0) {
    CalendarHeader header;
    GetHeader(document, &header);
    page = header.CurrentPage >= 0 && header.CurrentPage <= 13 ? header.CurrentPage : 0;
  }
  pages->push_back(page);
  return -1;
}

// Gives `page` its new fields and picture (`picture` is used once, then
// copied; `hasPicture` false leaves the picture alone).
bool ApplyToPage(CalendarDocument document, int page, const std::vector<Assignment>& assignments, bool hasPicture,
                 BlockHandle picture) {
  CalendarHeader header;
  MonthPage month;
  if (!GetHeader(document, &header) || (page < kYearPage && !GetMonthPage(document, page, &month))) return false;
  uint8_t* record = page < kYearPage ? reinterpret_cast<uint8_t*>(&month) : reinterpret_cast<uint8_t*>(&header);
  for (const Assignment& a : assignments) SetField(record, *a.field, a.value);
  if (hasPicture) {
    BlockHandle& slot = page < kYearPage ? month.Picture : header.CoverPicture;
    int32_t& shown = page < kYearPage ? month.PictureShowPicture : header.CoverPictureShowPicture;
    if (slot) GlobalBlockFree(slot);
    slot = picture;
    shown = picture ? 1 : 0;
  }
  header.Changed = 1;
  return (page >= kYearPage || PutMonthPage(document, page, &month)) && PutHeader(document, &header);
}

}  // namespace

int SetCommand(const Arguments& args) {
  if (args.positional.empty()) return Usage("set needs FILE.CLN and FIELD=VALUE");
  const std::string path = args.positional[0];
  const std::vector<std::string> values(args.positional.begin() + 1, args.positional.end());
  if (values.empty() && !args.Has("--picture") && !args.Has("--no-picture") && !args.Has("--fill-box"))
    return Usage("set needs a FIELD=VALUE, --picture, --no-picture or --fill-box");
  FillBox fill;
  const int fillStatus = FillBoxOption(args, &fill);
  if (fillStatus >= 0) return fillStatus;
  if (args.Has("--picture") && args.Has("--no-picture")) return Usage("--picture and --no-picture exclude each other");
  SetApplicationPath(args);
  const CalendarLock lock(path);
  if (!lock.ok()) return 1;
  int damaged = 0;
  CalendarDocument document = Load(path, &damaged);
  if (!document) return 1;
  // Saving would drop the damaged pictures' bytes for good: that is resave's
  // choice to make, not a side effect of changing a field.
  if (damaged) {
    std::fprintf(stderr, "quernal-cli: %s: nothing changed; `quernal-cli resave` repairs the calendar without its "
                 "damaged pictures\n", path.c_str());
    FreeCalendar(document);
    return 1;
  }
  std::vector<int> pages;
  std::vector<Assignment> assignments;
  int status = ChosenPages(args, document, &pages);
  const bool hasPicture = args.Has("--picture") || args.Has("--no-picture");
  if (status < 0) status = ReadAssignments(values, pages[0], &assignments);
  if (status < 0 && (hasPicture || args.Has("--fill-box")) && pages[0] == kYearPage)
    status = Usage("the year page has no picture");
  BlockHandle picture = 0;
  if (status < 0 && args.Has("--picture") &&
      !(picture = ReadPictureOption(args.options.at("--picture"), PageBackground(document, pages[0]), args)))
    status = 1;
  for (size_t i = 0; status < 0 && i < pages.size(); ++i) {
    // Every page gets a picture of its own; the last one takes the one read.
    const bool last = i + 1 == pages.size();
    BlockHandle own = picture && !last ? DuplicateBlock(picture) : picture;
    if (last) picture = 0;
    if ((own || !picture) && ApplyToPage(document, pages[i], assignments, hasPicture, own)) continue;
    std::fprintf(stderr, "quernal-cli: %s\n", kMemoryFailedMessage);
    status = 1;
  }
  if (picture) GlobalBlockFree(picture);
  // The box is the one the page's new fields make.
  if (status < 0 && !FillBoxes(document, pages, fill)) {
    std::fprintf(stderr, "quernal-cli: %s\n", kMemoryFailedMessage);
    status = 1;
  }
  if (status < 0) status = Save(path, document);
  FreeCalendar(document);
  return status;
}
