// The year at a glance and the cover on a 700 x 1000 page, worked out by hand.
// Year page: margin 35, inner {35, 35, 665, 965}, gutter 18, title 116 high
// with a shadow of 11, month boxes 210 x 147 with 7 pixels inside and out.
// Cover: padding 35, gutter 20, title 116 high with a shadow of 5.
#include <cstring>
#include <string>
#include <vector>

#include "base/dib.h"
#include "config/settings.h"
#include "page_render_fixture.h"

namespace {

class YearCoverTest : public PageRenderTest {
 protected:
  void SetUp() override {
    PageRenderTest::SetUp();
    NewCalendar(2024, 12);
  }
};

const char* const kBackground[] = {"fill 0 0 700 500 #FFFFFF", "fill 0 500 700 1000 #FFFFFF"};

void FramedCover(CalendarHeader* h) {
  h->CoverPicture = DibCreate(400, 300, 24);
  h->CoverPictureShowPicture = 1;
  std::strcpy(h->CoverTitle, "Our year");
}

void BleedingCover(CalendarHeader* h) {
  FramedCover(h);
  h->CoverPictureBleed = 1;
  h->CoverPictureDropShadow = 0;
  std::strcpy(h->CoverTitle, "Bleed");
}

}  // namespace

TEST_F(YearCoverTest, YearPageUpperHalfWithTitleShadow) {
  auto ops = Render(12, true, true, false);
  ASSERT_GE(ops.size(), 4u);
  EXPECT_EQ(ops[0].line, "fill 0 0 700 500 #FFFFFF");
  EXPECT_EQ(ops[1].line, "text 46 46 676 162 flags=2081 color=#7F7F7F font=116,400,0,\"ARIAL\" \"2024\"");
  EXPECT_EQ(ops[2].line, "text 35 35 665 151 flags=2081 color=#000000 font=116,400,0,\"ARIAL\" \"2024\"");
  // January's box starts title + shadow + gutter below the inner top.
  EXPECT_EQ(ops[3].line, "roundrect 42 187 238 320 0 0 pen=#000000 brush=#E0E0E0");
  auto boxes = OfKind(ops, "roundrect");
  ASSERT_EQ(boxes.size(), 6u);
  EXPECT_EQ(boxes[5].r, (Rect{462, 334, 658, 467})) << "June: third column, second row";
  // Inside January's box {49, 194, 231, 313}: cells of 26 x 14.
  auto january = Titled(ops, "January");
  ASSERT_EQ(january.size(), 1u);
  EXPECT_EQ(january[0].r, (Rect{49, 194, 231, 208}));
  EXPECT_EQ(january[0].font, "14,400,0,\"ARIAL\"");
  // 2024 is a leap year: February shows 29 dates.
  int februaryDates = 0;
  for (const Op& t : OfKind(ops, "text"))
    if (t.r.left >= 259 && t.r.right <= 441 && t.r.top >= 194 + 28 && t.r.bottom <= 313 && t.text != "February")
      ++februaryDates;
  EXPECT_EQ(februaryDates, 29);
}

TEST_F(YearCoverTest, YearPageWithoutShadowTheLowerHalfAndOnScreen) {
  EditHeader([](CalendarHeader* h) {
    h->YagShadow = 0;
    h->YagColour = 0x0000FF;
    h->YagFrameColour = 0x00FF00;
  });
  auto upper = Render(12, true, true, false);
  EXPECT_EQ(upper[1].r, (Rect{35, 35, 665, 151}));
  EXPECT_EQ(upper[2].r.top, 35 + 116 + 18 + 7) << "no shadow: title and gutter only";
  EXPECT_EQ(Titled(upper, "March")[0].colour, "#FF0000");
  EXPECT_EQ(Titled(upper, "31")[0].colour, "#00FF00");
  EXPECT_EQ(Titled(upper, "S")[0].colour, "#00FF00");

  auto lower = Render(12, true, false, true);
  EXPECT_EQ(lower[0].line, "fill 0 500 700 1000 #FFFFFF");
  // July starts at half the inner height plus two gutters and two insets.
  EXPECT_EQ(lower[1].line, "roundrect 42 536 238 669 0 0 pen=#00FF00 brush=#E0E0E0");
  EXPECT_EQ(Titled(lower, "July").size(), 1u);
  EXPECT_EQ(Titled(lower, "December").size(), 1u);
  auto title = Titled(lower, "2024");
  ASSERT_EQ(title.size(), 1u);
  EXPECT_EQ(title[0].r, (Rect{35, 841, 665, 957}));

  // On screen, with Monday first and the years in the titles.
  Settings.StartMonday = 1;
  EditHeader([](CalendarHeader* h) { h->ShowYearInPages = 1; });
  auto ops = Render(12, false);
  EXPECT_EQ(ops[0].line, "frame -1 -1 701 1001 #A0A0A0");
  EXPECT_EQ(Titled(ops, "January 2024").size(), 1u);
  auto initials = Titled(ops, "M");
  ASSERT_FALSE(initials.empty());
  EXPECT_EQ(initials[0].r.left, 49) << "Monday heads the first column";
}

TEST_F(YearCoverTest, CoverPages) {
  // Framed: box {35, 555, 665, 965} less a shadow of 20: 400 x 300 fits at 1.3 as 520 x 390, centred.
  const std::vector<std::string> framed = {
      "rect 100 575 620 965 pen=none brush=#7F7F7F",
      "picture 80 555 600 945",
      "rect 80 555 600 945 pen=#000000 brush=none",
  };
  const struct {
    const char* name;
    void (*edit)(CalendarHeader*);
    bool lower;  // the lower half drawn as well as the upper
    std::vector<std::string> drawn;  // after the background
  } cases[] = {
      {"title without picture: background only", [](CalendarHeader* h) { std::strcpy(h->CoverTitle, "Our year"); },
       true, {}},
      {"framed picture and title", FramedCover, true,
       {framed[0], framed[1], framed[2],
        "text 5 525 700 955 flags=2081 color=#7F7F7F font=116,700,0,\"ARIAL\" \"Our year\"",
        "text 0 520 695 950 flags=2081 color=#000000 font=116,700,0,\"ARIAL\" \"Our year\""}},
      {"upper half alone: background only", FramedCover, false, {}},
      {"without a title only the picture", [](CalendarHeader* h) { FramedCover(h), h->CoverTitle[0] = 0; }, true,
       framed},
      // 700 x 480 covered at 1.75: 700 x 525, centred and cropped by the clip.
      {"bleeding picture fills the box below the gutter", BleedingCover, true,
       {"clip 0 520 700 1000", "picture 0 498 700 1023", "unclip",
        "text 0 520 700 1000 flags=2081 color=#000000 font=116,700,0,\"ARIAL\" \"Bleed\""}},
      {"switched off, the bleeding picture leaves the title reaching to the page bottom",
       [](CalendarHeader* h) { BleedingCover(h), h->CoverPictureShowPicture = 0; }, true, {"text 0 520 700 1000 flags=2081 color=#000000 font=116,700,0,\"ARIAL\" \"Bleed\""}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    NewCalendar(2024, 12);
    EditHeader(c.edit);
    std::vector<std::string> expected(kBackground, kBackground + (c.lower ? 2 : 1));
    expected.insert(expected.end(), c.drawn.begin(), c.drawn.end());
    EXPECT_EQ(Lines(Render(13, true, true, c.lower)), expected);
  }
}
