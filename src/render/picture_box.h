// Where a page's picture goes on a printed page, and how sharp it prints
// there: the box is the one the renderer itself fits the picture into, so
// the command line, the crop and the picture tabs agree with the paper.
#pragma once
#include <string>
#include <vector>

#include "base/geometry.h"
#include "base/global_block.h"
#include "calendar/calendar_model.h"

// Below this many pixels of picture per inch of paper a photograph looks
// soft, and the program says so.
constexpr int kBlurryBelowPpi = 150;
// The resolution pages are laid out at when there is no device.
constexpr int kLayoutDpi = 300;

struct Paper {
  const char* name;  // "a4", "letter", "a3"
  double widthInches, heightInches;
};
// The paper of that name, or null.
const Paper* FindPaper(const std::string& name);
// The paper's page, portrait, at `dpi` pixels per inch.
Rect PaperPage(const Paper& paper, int dpi);

// The box the renderer fits the picture of a month page or the cover into on
// `pageRect`: after the padding and the drop shadow, or, for a cover that
// bleeds, the box the picture covers. A picture of the box's shape fills it.
Rect MonthPictureFitBox(const Rect& pageRect, const MonthPage& page);
Rect CoverPictureFitBox(const Rect& pageRect, const CalendarHeader& header);

// A page's picture as the renderer draws it on `pageRect`.
struct PagePicture {
  BlockHandle dib;
  int32_t width, height;  // its pixels
  Rect box;               // the fit box above
  int32_t drawnWidth, drawnHeight;
};
// From a month page's or the cover's record (whether shown or not); false
// without a usable picture.
bool MonthPagePicture(const Rect& pageRect, const MonthPage& page, PagePicture* out);
bool CoverPagePicture(const Rect& pageRect, const CalendarHeader& header, PagePicture* out);
// Pixels of the picture per inch of paper, across, on a device of `dpi`.
int PicturePpi(const PagePicture& picture, int dpi);

struct PrintedPicture {
  int page;  // 0..11 the months, 13 the cover
  int ppi;
};
// The pictures that `pages` show on a page of width x height inches (the
// year page has none).
std::vector<PrintedPicture> PrintedPictures(CalendarDocument document, double widthInches, double heightInches,
                                            const std::vector<int>& pages);
