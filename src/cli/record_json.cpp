#include "cli/record_json.h"

#include <cstdio>
#include <cstring>

#include "base/dib.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "calendar/event_list.h"

namespace {

enum FieldKind { kMagic, kU32, kI32, kU16, kText, kPicture, kEvents };

struct Field {
  const char* name;
  size_t offset;
  size_t size;
  FieldKind kind;
};

#define FIELD(Record, Name, Kind) Field{#Name, offsetof(Record, Name), sizeof(Record::Name), Kind}

// Every field of the records in file order; the reserved areas are left out.
const Field kHeaderFields[] = {
    FIELD(CalendarHeader, Magic, kMagic),
    FIELD(CalendarHeader, RecordSize, kU32),
    FIELD(CalendarHeader, Version, kU32),
    FIELD(CalendarHeader, Year, kI32),
    FIELD(CalendarHeader, CurrentPage, kI32),
    FIELD(CalendarHeader, UseCurrentYear, kU16),
    FIELD(CalendarHeader, ShowYearInPages, kU16),
    FIELD(CalendarHeader, Changed, kU16),
    FIELD(CalendarHeader, CoverPicture, kPicture),
    FIELD(CalendarHeader, YagFontName, kText),
    FIELD(CalendarHeader, YagColour, kU32),
    FIELD(CalendarHeader, TagFontItal, kI32),
    FIELD(CalendarHeader, YagFontBold, kI32),
    FIELD(CalendarHeader, YagTitleFontName, kText),
    FIELD(CalendarHeader, TagTitleColour, kU32),
    FIELD(CalendarHeader, YagTitleFontSize, kI32),
    FIELD(CalendarHeader, YagTitleFontItal, kI32),
    FIELD(CalendarHeader, YagTitleFontBold, kI32),
    FIELD(CalendarHeader, YagGutter, kI32),
    FIELD(CalendarHeader, YagPageMargin, kI32),
    FIELD(CalendarHeader, YagRound, kI32),
    FIELD(CalendarHeader, YagShadow, kI32),
    FIELD(CalendarHeader, YagShadowOffset, kI32),
    FIELD(CalendarHeader, YagInteriorPadding, kI32),
    FIELD(CalendarHeader, YagExteriorPadding, kI32),
    FIELD(CalendarHeader, YagFrameColour, kU32),
    FIELD(CalendarHeader, YagBackColour, kU32),
    FIELD(CalendarHeader, YagPageColour, kU32),
    FIELD(CalendarHeader, CoverFontName, kText),
    FIELD(CalendarHeader, CoverFontColour, kU32),
    FIELD(CalendarHeader, CoverFontSize, kI32),
    FIELD(CalendarHeader, CoverFontItal, kI32),
    FIELD(CalendarHeader, CoverFontBold, kI32),
    FIELD(CalendarHeader, CoverFontPlacement, kI32),
    FIELD(CalendarHeader, CoverPictureShowFrame, kI32),
    FIELD(CalendarHeader, CoverPictureDropShadow, kI32),
    FIELD(CalendarHeader, CoverPictureShadowOffset, kI32),
    FIELD(CalendarHeader, CoverPictureExteriorPadding, kI32),
    FIELD(CalendarHeader, CoverPictureShowPicture, kI32),
    FIELD(CalendarHeader, CoverPictureGutter, kI32),
    FIELD(CalendarHeader, CoverPicturePlacement, kI32),
    FIELD(CalendarHeader, CoverPictureBleed, kI32),
    FIELD(CalendarHeader, CoverBackgroundColour, kU32),
    FIELD(CalendarHeader, CoverPictureFrameColour, kU32),
    FIELD(CalendarHeader, CoverTitle, kText),
    FIELD(CalendarHeader, LastYearPropertyPage, kI32),
    FIELD(CalendarHeader, YearEdited, kI32),
    FIELD(CalendarHeader, CoverPictureDataSize, kU32),};

const Field kMonthPageFields[] = {
    FIELD(MonthPage, Magic, kMagic),
    FIELD(MonthPage, RecordSize, kU32),
    FIELD(MonthPage, DateFontName, kText),
    FIELD(MonthPage, DateFontColour, kU32),
    FIELD(MonthPage, DateFontSize, kI32),
    FIELD(MonthPage, DateFontItal, kI32),
    FIELD(MonthPage, DateFontBold, kI32),
    FIELD(MonthPage, DateFontPlacement, kI32),
    FIELD(MonthPage, DateFrameColour, kU32),
    FIELD(MonthPage, DateBackColour, kU32),
    FIELD(MonthPage, DateInteriorPadding, kI32),
    FIELD(MonthPage, DateShadow, kI32),
    FIELD(MonthPage, DateRound, kI32),
    FIELD(MonthPage, DateShadowOffset, kI32),
    FIELD(MonthPage, HeadFontName, kText),
    FIELD(MonthPage, HeadFontColour, kU32),
    FIELD(MonthPage, HeadFontSize, kI32),
    FIELD(MonthPage, HeadFontItal, kI32),
    FIELD(MonthPage, HeadFontBold, kI32),
    FIELD(MonthPage, HeadShadow, kI32),
    FIELD(MonthPage, HeadPrevNext, kI32),
    FIELD(MonthPage, HeadFrameColour, kU32),
    FIELD(MonthPage, HeadBackColour, kU32),
    FIELD(MonthPage, HeadPlacement, kI32),
    FIELD(MonthPage, HeadInteriorPadding, kI32),
    FIELD(MonthPage, HeadExteriorPadding, kI32),
    FIELD(MonthPage, DaysShow, kI32),
    FIELD(MonthPage, DaysName, kText),
    FIELD(MonthPage, DaysFontName, kText),
    FIELD(MonthPage, DaysFontColour, kU32),
    FIELD(MonthPage, DaysFontSize, kI32),
    FIELD(MonthPage, DaysFontItal, kI32),
    FIELD(MonthPage, DaysFontBold, kI32),
    FIELD(MonthPage, PicturePlacement, kI32),
    FIELD(MonthPage, PictureFrameColour, kU32),
    FIELD(MonthPage, PictureShowPicture, kI32),
    FIELD(MonthPage, PictureShowFrame, kI32),
    FIELD(MonthPage, PictureDropShadow, kI32),
    FIELD(MonthPage, PictureShadowOffset, kI32),
    FIELD(MonthPage, PictureExteriorPadding, kI32),
    FIELD(MonthPage, CapFontName, kText),
    FIELD(MonthPage, CapFontColour, kU32),
    FIELD(MonthPage, CapFontSize, kI32),
    FIELD(MonthPage, CapFontItal, kI32),
    FIELD(MonthPage, CapFontBold, kI32),
    FIELD(MonthPage, CapPlacement, kI32),
    FIELD(MonthPage, PageBackgroundColour, kU32),
    FIELD(MonthPage, PageMargin, kI32),
    FIELD(MonthPage, Gutter, kI32),
    FIELD(MonthPage, Picture, kPicture),
    FIELD(MonthPage, Events, kEvents),
    FIELD(MonthPage, LastPropertyPage, kI32),
    FIELD(MonthPage, LeftCaption, kText),
    FIELD(MonthPage, RightCaption, kText),
    FIELD(MonthPage, Edited, kI32),
    FIELD(MonthPage, PictureDataSize, kU32),
    FIELD(MonthPage, PictureShadowSoftness, kI32),};
#undef FIELD

void WriteString(std::FILE* out, const std::string& utf8) {
  std::fputc('"', out);
  for (unsigned char c : utf8) {
    switch (c) {
      case '"': std::fputs("\\\"", out); break;
      case '\\': std::fputs("\\\\", out); break;
      case '\n': std::fputs("\\n", out); break;
      case '\r': std::fputs("\\r", out); break;
      case '\t': std::fputs("\\t", out); break;
      default:
        if (c < 0x20)
          std::fprintf(out, "\\u%04x", c);
        else
          std::fputc(c, out);
    }
  }
  std::fputc('"', out);
}

void WritePicture(std::FILE* out, BlockHandle picture) {
  uint32_t bytes = GlobalBlockSize(picture);
  BlockLock lock(picture);
  if (!lock || bytes < sizeof(BitmapInfoHeader)) {
    std::fputs("null", out);
    return;
  }
  BitmapInfoHeader h;
  std::memcpy(&h, lock.bytes(), sizeof h);
  std::fprintf(out, "{\"width\": %d, \"height\": %d, \"bits\": %u, \"bytes\": %u}", h.biWidth, h.biHeight,
               static_cast<unsigned>(h.biBitCount), bytes);
}

// Every day of the page's month that has an event, with the text FindEvent gives.
void WriteEvents(std::FILE* out, BlockHandle events, int year, int month, const char* indent) {
  if (!events) {
    std::fputs("null", out);
    return;
  }
  std::fputs("{\"days\": {", out);
  bool first = true;
  for (int day = 0; day < MonthLength(year, month); ++day) {
    char text[1024];
    if (!FindEvent(text, sizeof text, events, month, day)) continue;
    std::fprintf(out, "%s\n%s  \"%d\": ", first ? "" : ",", indent, day + 1);
    WriteString(out, Cp1252ToUtf8(text));
    first = false;
  }
  std::fprintf(out, first ? "}}" : "\n%s}}", indent);
}

template <size_t N>
void WriteRecord(std::FILE* out, const Field (&fields)[N], const uint8_t* record, int year, int month,
                 const char* indent) {
  std::fputs("{", out);
  for (size_t i = 0; i < N; ++i) {
    const Field& f = fields[i];
    const uint8_t* at = record + f.offset;
    std::fprintf(out, "%s\n%s  \"%s\": ", i ? "," : "", indent, f.name);
    uint32_t u32 = 0;
    if (f.size == 4) std::memcpy(&u32, at, 4);
    switch (f.kind) {
      case kMagic: WriteString(out, std::string(reinterpret_cast<const char*>(at), 4)); break;
      case kU32: std::fprintf(out, "%u", u32); break;
      case kI32: std::fprintf(out, "%d", static_cast<int32_t>(u32)); break;
      case kU16: {
        uint16_t u16;
        std::memcpy(&u16, at, 2);
        std::fprintf(out, "%u", static_cast<unsigned>(u16));
        break;
      }
      case kText: {
        const char* text = reinterpret_cast<const char*>(at);
        WriteString(out, Cp1252ToUtf8(std::string(text, strnlen(text, f.size))));
        break;
      }
      case kPicture: WritePicture(out, u32); break;
      case kEvents: WriteEvents(out, u32, year, month, (std::string(indent) + "  ").c_str()); break;
    }
  }
  std::fprintf(out, "\n%s}", indent);
}

}  // namespace

void WriteCalendarJson(std::FILE* out, CalendarDocument document) {
  CalendarHeader header;
  if (!GetHeader(document, &header)) return;
  int year = CalendarYear(&header);
  std::fputs("{\n  \"header\": ", out);
  WriteRecord(out, kHeaderFields, reinterpret_cast<const uint8_t*>(&header), year, 0, "  ");
  std::fputs(",\n  \"pages\": [", out);
  for (int month = 0; month < 12; ++month) {
    MonthPage page;
    if (!GetMonthPage(document, month, &page)) return;
    std::fputs(month ? ",\n    " : "\n    ", out);
    WriteRecord(out, kMonthPageFields, reinterpret_cast<const uint8_t*>(&page), year, month, "    ");
  }
  std::fputs("\n  ]\n}\n", out);
}
