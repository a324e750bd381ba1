#include "cli/record_json.h"

#include "render/picture_box.h"

#include <cstdio>
#include <cstring>

#include "base/dib.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "calendar/event_list.h"
#include "calendar/record_fields.h"

namespace {


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

// The record's fields by name, the reserved areas left out.
void WriteRecord(std::FILE* out, const RecordFieldList& fields, const uint8_t* record, int year, int month,
                 const char* indent) {
  std::fputs("{", out);
  bool first = true;
  for (const RecordField& f : fields) {
    if (f.kind == FieldKind::Reserved) continue;
    const uint8_t* at = record + f.offset;
    std::fprintf(out, "%s\n%s  \"%s\": ", first ? "" : ",", indent, f.name);
    first = false;
    uint32_t u32 = 0;
    if (f.size == 4) std::memcpy(&u32, at, 4);
    switch (f.kind) {
      case FieldKind::Magic: WriteString(out, std::string(reinterpret_cast<const char*>(at), 4)); break;
      case FieldKind::Text: {
        const char* text = reinterpret_cast<const char*>(at);
        WriteString(out, Cp1252ToUtf8(std::string(text, strnlen(text, f.size))));
        break;
      }
      case FieldKind::Picture: WritePicture(out, u32); break;
      case FieldKind::Events: WriteEvents(out, u32, year, month, (std::string(indent) + "  ").c_str()); break;
      default:
        if (f.size == 2) {
          uint16_t u16;
          std::memcpy(&u16, at, 2);
          std::fprintf(out, "%u", static_cast<unsigned>(u16));
        } else if (f.isSigned) {
          std::fprintf(out, "%d", static_cast<int32_t>(u32));
        } else {
          std::fprintf(out, "%u", u32);
        }
    }
  }
  std::fprintf(out, "\n%s}", indent);
}

}  // namespace

void WriteCalendarJson(std::FILE* out, CalendarDocument document, const Paper& paper) {
  CalendarHeader header;
  if (!GetHeader(document, &header)) return;
  int year = CalendarYear(&header);
  std::fputs("{\n  \"header\": ", out);
  WriteRecord(out, HeaderFields(), reinterpret_cast<const uint8_t*>(&header), year, 0, "  ");
  std::fputs(",\n  \"pages\": [", out);
  for (int month = 0; month < 12; ++month) {
    MonthPage page;
    if (!GetMonthPage(document, month, &page)) return;
    std::fputs(month ? ",\n    " : "\n    ", out);
    WriteRecord(out, MonthPageFields(), reinterpret_cast<const uint8_t*>(&page), year, month, "    ");
  }
  // Pages 0..11 the months, 13 the cover; below 150 ppi a picture may print blurry.
  std::fprintf(out, "\n  ],\n  \"printResolution\": {\"paper\": \"%s\", \"pictures\": [", paper.name);
  const std::vector<PrintedPicture> printed =
      PrintedPictures(document, paper.widthInches, paper.heightInches, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13});
  for (size_t i = 0; i < printed.size(); ++i)
    std::fprintf(out, "%s{\"page\": %d, \"ppi\": %d, \"mayPrintBlurry\": %s}", i ? ", " : "", printed[i].page,
                 printed[i].ppi, printed[i].ppi < kBlurryBelowPpi ? "true" : "false");
  std::fputs("]}\n}\n", out);
}
