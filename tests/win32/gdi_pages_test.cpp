// Pages drawn by GDI, read back pixel by pixel. The rectangles are the ones
// worked out by hand for a 700 x 1000 page in the unit tests of the layout.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "calendar/calendar_file.h"
#include "config/settings.h"
#include "gdi_test_support.h"
#include "render/page_renderer_win32.h"
#include "test_support.h"

namespace {

constexpr COLORREF kOutside = RGB(1, 2, 3), kPage = RGB(250, 240, 200), kDateBack = RGB(200, 230, 255);
constexpr COLORREF kHeadBack = RGB(255, 200, 220), kDateFrame = RGB(0, 0, 160), kHeadFrame = RGB(160, 0, 0);
constexpr COLORREF kDateText = RGB(0, 90, 0), kPicture = RGB(20, 140, 60), kPictureFrame = RGB(90, 0, 90);
constexpr COLORREF kCover = RGB(230, 230, 250), kCoverPicture = RGB(200, 60, 10);
const RECT kPageRect{0, 0, 700, 1000};

// Printer or screen path, and the page moved by a viewport or a window
// origin that the caller set before drawing.
struct Placement {
  bool printing, byWindow;
  int x, y;
};
const Placement kPlacements[] = {
    {true, false, 0, 0}, {false, false, 0, 0}, {true, false, 40, 30}, {false, false, 40, 30}, {false, true, 40, 30}};

struct Expected {
  int x, y;
  COLORREF colour;
};

class GdiPageTest : public QuernalTest {
 protected:
  void SetUp() override {
    QuernalTest::SetUp();
    Settings.PageBackgroundColour = Settings.YagPageColour = kPage;
    Settings.DateBackColour = Settings.YagBackColour = kDateBack;
    Settings.DateFrameColour = Settings.YagFrameColour = kDateFrame;
    Settings.HeadBackColour = kHeadBack;
    Settings.HeadFrameColour = kHeadFrame;
    Settings.DateFontColour = kDateText;
    doc_ = CreateCalendar(2026, 0);
    MonthPage p;  // November, its picture without shadow at the picture box's corner
    GetMonthPage(doc_, 10, &p);
    p.Picture = SolidDib(400, 300, kPicture);
    p.PictureDropShadow = p.PicturePlacement = 0;
    p.PictureFrameColour = kPictureFrame;
    PutMonthPage(doc_, 10, &p);
    CalendarHeader h;
    GetHeader(doc_, &h);
    h.CoverPicture = SolidDib(400, 300, kCoverPicture);
    h.CoverPictureShowPicture = h.CoverPictureBleed = 1;
    h.CoverPictureDropShadow = 0;
    h.CoverBackgroundColour = kCover;
    std::strcpy(h.CoverTitle, "Bleed");
    PutHeader(doc_, &h);
  }
  void TearDown() override {
    FreeCalendar(doc_);
    QuernalTest::TearDown();
  }
  // Draws a page on a surface with room round it; Pixel and Count then
  // take page coordinates.
  void Draw(int pageIndex, const Placement& at) {
    at_ = at;
    surface_ = std::make_unique<DibSurface>(780, 1060, kOutside);
    if (at.byWindow) SetWindowOrgEx(surface_->dc(), -at.x, -at.y, nullptr);
    else SetViewportOrgEx(surface_->dc(), at.x, at.y, nullptr);
    EXPECT_EQ(DrawCalendarPage(nullptr, surface_->dc(), &kPageRect, doc_, pageIndex, at.printing, 1, 1), 1);
  }
  void Check(const std::vector<Expected>& points) {
    for (const Expected& e : points) EXPECT_EQ(Pixel(e.x, e.y), e.colour) << "at " << e.x << "," << e.y;
  }
  COLORREF Pixel(int x, int y) { return surface_->Pixel(at_.x + x, at_.y + y); }
  int Count(int l, int t, int r, int b, COLORREF c) {
    return surface_->Count(at_.x + l, at_.y + t, at_.x + r, at_.y + b, c);
  }

  CalendarDocument doc_;
  Placement at_{};
  std::unique_ptr<DibSurface> surface_;
};

}  // namespace

// Month, year and cover pages, each placed every way: their boxes and
// pictures, a bleeding cover's picture cropped to its box.
TEST_F(GdiPageTest, MonthYearAndCoverPagesShowTheirBoxesAndPictures) {
  for (const Placement& at : kPlacements) {
    SCOPED_TRACE(testing::Message() << at.printing << at.byWindow << " " << at.x << "," << at.y);
    Draw(10, at);
    Check({{20, 20, kPage}, {699, 999, kPage}, {701, 500, kOutside},
           // 400 x 300 fitted into {47, 47, 653, 443} is 528 x 396, framed.
           {47, 47, kPictureFrame}, {574, 442, kPictureFrame}, {575, 300, kPage}, {300, 443, kPage},
           // The heading box {209, 522, 491, 560} and the first date cell {17, 588, 107, 648}.
           {208, 540, kPage}, {209, 540, kHeadFrame}, {211, 557, kHeadBack},
           {17, 600, kDateFrame}, {20, 591, kDateBack}});
    EXPECT_EQ(Count(48, 48, 574, 442, kPicture), 526 * 394);
    // The screen frames the page one pixel outside it.
    if (at.x > 0) Check({{-1, 500, at.printing ? kOutside : GetSysColor(COLOR_BTNSHADOW)}});
    // The date number is drawn in its colour on a transparent background.
    EXPECT_GT(Count(18, 589, 106, 647, kDateText), 20);
    EXPECT_EQ(Count(18, 589, 106, 647, RGB(255, 255, 255)), 0);

    Draw(12, at);  // January's box on the year page: {42, 187, 238, 320}
    Check({{41, 250, kPage}, {42, 250, kDateFrame}, {45, 317, kDateBack}});

    Draw(13, at);
    // The picture covers {0, 498, 700, 1023}; the clip keeps {0, 520, 700, 1000}.
    EXPECT_EQ(Count(0, 498, 700, 520, kCover), 700 * 22);
    EXPECT_EQ(Count(0, 900, 700, 1000, kCoverPicture), 700 * 100);
    EXPECT_EQ(Count(0, 1000, 700, 1030, kCoverPicture), 0);
    Check({{350, 300, kCover}, {2, 520, kCoverPicture}, {697, 520, kCoverPicture}});
  }
}

TEST_F(GdiPageTest, AThousandPaintsLeaveNoGdiObjectBehind) {
  MonthPage p;  // April with a soft shadow: a brush for every ring
  GetMonthPage(doc_, 3, &p);
  p.Picture = SolidDib(300, 400, kPicture);
  PutMonthPage(doc_, 3, &p);
  DibSurface surface(700, 1000, kOutside);
  auto paint = [&](int i) {
    const int page = i % 3 == 0 ? 12 : i % 3 == 1 ? 13 : (i / 3) % 12;
    DrawCalendarPage(nullptr, surface.dc(), &kPageRect, doc_, page, i % 2, 1, 1);
  };
  for (int i = 0; i < 72; ++i) paint(i);  // GDI sets up objects of its own for new fonts
  const int before = LiveGdiObjects();
  ASSERT_GT(before, 0);
  for (int i = 0; i < 1000; ++i) paint(i);
  EXPECT_EQ(LiveGdiObjects(), before);
}

// A calendar of numbers no editor makes (huge fonts, shadows and paddings,
// negative softness) opened from its file: every page repaints on the screen
// within a second, a generous margin over the few milliseconds it takes.
TEST_F(GdiPageTest, AHostileCalendarRepaintsWithinASecond) {
  const std::string path = dir_.File("hostile.CLN");
  for (uint32_t value : {0x80000000u, 0x7FFFFFFFu, 100000u, 0xFFFFFF00u}) {
    CalendarDocument made = HostileCalendar(value, static_cast<int32_t>(value));
    SilentProgress progress;
    ASSERT_EQ(SaveCalendar(&progress, path.c_str(), made), 1);
    FreeCalendar(made);
    CalendarDocument hostile = LoadCalendar(&progress, path.c_str());
    ASSERT_NE(hostile, 0u);
    DibSurface surface(780, 1060, kOutside);
    for (int page = 0; page < 14; ++page) {
      const DWORD start = GetTickCount();
      DrawCalendarPage(nullptr, surface.dc(), &kPageRect, hostile, page, false, 1, 1);
      EXPECT_LT(GetTickCount() - start, 1000u) << std::hex << value << std::dec << " page " << page;
    }
    FreeCalendar(hostile);
  }
}
