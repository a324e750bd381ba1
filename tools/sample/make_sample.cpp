// Writes Sample.CLN, the finished calendar shipped beside the program: a
// landscape for each month with its name as the caption, and a cover. It
// uses the current year wherever it is opened.
#include <cstdio>

#include "base/text.h"
#include "calendar/calendar_file.h"
#include "calendar/calendar_model.h"
#include "tools/sample/sample_art.h"

namespace {
constexpr int kWidth = 1500, kHeight = 1000;  // enough for A4 at 150 dpi, small enough to ship
}

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: quernal-make-sample OUT.CLN\n");
    return 2;
  }
  CalendarDocument document = CreateCalendar(2027, 0);
  for (int month = 0; document && month < 12; ++month) {
    MonthPage page;
    GetMonthPage(document, month, &page);
    page.Picture = SampleScene(month, kWidth, kHeight);
    page.PictureShowPicture = 1;
    page.PictureDropShadow = 1;
    CopyText(page.LeftCaption, sizeof page.LeftCaption, SampleSceneTitle(month));
    PutMonthPage(document, month, &page);
    if (!page.Picture) document = 0;
  }
  CalendarHeader header;
  if (!document || !GetHeader(document, &header)) {
    std::fprintf(stderr, "quernal-make-sample: out of memory\n");
    return 1;
  }
  header.UseCurrentYear = 1;
  header.ShowYearInPages = 1;
  header.CurrentPage = 13;  // it opens on its cover
  header.CoverPicture = SampleScene(12, kWidth, kHeight);
  header.CoverPictureShowPicture = 1;
  header.CoverFontSize = 12;  // the long title fits the page's width
  CopyText(header.CoverTitle, sizeof header.CoverTitle, SampleSceneTitle(12));
  PutHeader(document, &header);
  SilentProgress progress;
  const bool saved = SaveCalendar(&progress, argv[1], document);
  FreeCalendar(document);
  if (!saved) std::fprintf(stderr, "quernal-make-sample: %s: %s\n", argv[1], kSaveFailedMessage);
  return saved ? 0 : 1;
}
