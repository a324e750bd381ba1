// quernal-cli summary: a few lines about a calendar for people.
#include "cli/commands.h"

#include <cstdio>
#include <string>
#include <vector>

#include "base/dib.h"
#include "calendar/calendar_dates.h"
#include "calendar/calendar_model.h"
#include "calendar/event_list.h"
#include "cli/cli_common.h"
#include "render/picture_box.h"

namespace {

// ", prints at N ppi" for the page's picture, with a warning below the
// resolution that prints sharp.
std::string Sharpness(const std::vector<PrintedPicture>& printed, int page) {
  for (const PrintedPicture& p : printed)
    if (p.page == page)
      return ", prints at " + std::to_string(p.ppi) + " ppi" + (p.ppi < kBlurryBelowPpi ? " (may print blurry)" : "");
  return "";
}

}  // namespace

// A few lines for people: the year, the page it opens on, pictures and events.
int SummaryCommand(const Arguments& args) {
  if (args.positional.size() != 1) return Usage("summary needs one FILE.CLN");
  const Paper* paper = PaperOption(args);
  if (!paper) return 2;
  SetApplicationPath(args);
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  CalendarHeader header;
  GetHeader(document, &header);
  int year = CalendarYear(&header);
  const std::vector<PrintedPicture> printed =
      PrintedPictures(document, paper->widthInches, paper->heightInches, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13});
  std::printf("%s: a Quernal calendar for %d, opening on the page \"%s\"\n", args.positional[0].c_str(), year,
              PageName(header.CurrentPage));
  std::printf("  cover: %s%s\n", header.CoverPicture ? "with a picture" : "no picture", Sharpness(printed, 13).c_str());
  for (int month = 0; month < 12; ++month) {
    MonthPage page;
    GetMonthPage(document, month, &page);
    int events = 0;
    for (int day = 0; day < MonthLength(year, month); ++day) {
      char text[1024];
      events += FindEvent(text, sizeof text, page.Events, month, day);
    }
    std::string picture = "no picture";
    if (BlockLock lock{page.Picture}) {
      const BitmapInfoHeader* h = lock.as<BitmapInfoHeader>();
      picture = std::to_string(h->biWidth) + " x " + std::to_string(h->biHeight) + " picture";
    }
    picture += Sharpness(printed, month);
    std::printf("  %-10s %s, events \"%s\": %s\n", MonthName(month), picture.c_str(), page.DaysName,
                page.Events ? (std::to_string(events) + " this month").c_str() : "list not found");
  }
  FreeCalendar(document);
  return 0;
}
