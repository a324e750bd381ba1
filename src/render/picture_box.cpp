#include "render/picture_box.h"

#include <cmath>

#include "render/layout.h"
#include "render/page_parts.h"

namespace {

const Paper kPapers[] = {{"a4", 210 / 25.4, 297 / 25.4}, {"letter", 8.5, 11}, {"a3", 297 / 25.4, 420 / 25.4}};

bool Measured(BlockHandle dib, const Rect& box, bool cover, PagePicture* out) {
  if (!PictureSize(dib, &out->width, &out->height)) return false;
  const PictureFit fit = FitPicture(ToBox(box), out->width, out->height, cover);
  *out = {dib, out->width, out->height, box, Device(fit.width), Device(fit.height)};
  return true;
}

}  // namespace

const Paper* FindPaper(const std::string& name) {
  for (const Paper& p : kPapers)
    if (name == p.name) return &p;
  return nullptr;
}

Rect PaperPage(const Paper& paper, int dpi) {
  return {0, 0, static_cast<int32_t>(std::lround(paper.widthInches * dpi)),
          static_cast<int32_t>(std::lround(paper.heightInches * dpi))};
}

bool MonthPagePicture(const Rect& pageRect, const MonthPage& page, PagePicture* out) {
  return Measured(page.Picture, MonthPictureFitBox(pageRect, page), false, out);
}

bool CoverPagePicture(const Rect& pageRect, const CalendarHeader& header, PagePicture* out) {
  return Measured(header.CoverPicture, CoverPictureFitBox(pageRect, header), header.CoverPictureBleed != 0, out);
}

int PicturePpi(const PagePicture& picture, int dpi) {
  if (picture.drawnWidth <= 0) return 0;
  return static_cast<int>(static_cast<int64_t>(picture.width) * dpi / picture.drawnWidth);
}

std::vector<PrintedPicture> PrintedPictures(CalendarDocument document, double widthInches, double heightInches,
                                            const std::vector<int>& pages) {
  std::vector<PrintedPicture> printed;
  const Rect page = PaperPage({"", widthInches, heightInches}, kLayoutDpi);
  CalendarHeader header;
  if (!GetHeader(document, &header)) return printed;
  for (int index : pages) {
    PagePicture picture;
    MonthPage month;
    // As the renderer: a picture switched off, or a cover without one, is not drawn.
    const bool drawn = index == kCoverPageIndex
                           ? header.CoverPictureShowPicture && CoverPagePicture(page, header, &picture)
                           : index >= 0 && index < 12 && GetMonthPage(document, index, &month) &&
                                 month.PictureShowPicture && MonthPagePicture(page, month, &picture);
    if (drawn && picture.drawnWidth > 0) printed.push_back({index, PicturePpi(picture, kLayoutDpi)});
  }
  return printed;
}
