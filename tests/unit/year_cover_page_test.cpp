// The year at a glance and the cover on a 700 x 1000 page, worked out by hand.
// Year page: margin 35, inner {35, 35, 665, 965}, gutter 18, title 116 high
// with a shadow of 11, month boxes 210 x 147 with 7 pixels inside and out.
// Cover: padding 35, gutter 20, title 116 high with a shadow of 5.
#include <cstring>

#include "base/dib.h"
#include "config/settings.h"
#include "ops_parse.h"
#include "test_support.h"

namespace {

const Rect kPage{0, 0, 700, 1000};

class YearCoverTest : public QuernalTest {
 protected:
  void SetUp() override {
    QuernalTest::SetUp();
    doc_ = CreateCalendar(2024, 12);
  }
  void TearDown() override {
    FreeCalendar(doc_);
    QuernalTest::TearDown();
  }
  void EditHeader(void (*change)(CalendarHeader*)) {
    CalendarHeader h;
    GetHeader(doc_, &h);
    change(&h);
    PutHeader(doc_, &h);
  }
  CalendarDocument doc_;
};

std::vector<Op> Titled(const std::vector<Op>& ops, const std::string& text) {
  std::vector<Op> out;
  for (const Op& op : OfKind(ops, "text"))
    if (op.text == text) out.push_back(op);
  return out;
}

}  // namespace

TEST_F(YearCoverTest, YearPageUpperHalfWithTitleShadow) {
  auto ops = RenderOps(doc_, 12, kPage, true, true, false);
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

TEST_F(YearCoverTest, YearPageWithoutShadowAndTheLowerHalf) {
  EditHeader([](CalendarHeader* h) {
    h->YagShadow = 0;
    h->YagColour = 0x0000FF;
    h->YagFrameColour = 0x00FF00;
  });
  auto upper = RenderOps(doc_, 12, kPage, true, true, false);
  EXPECT_EQ(upper[1].r, (Rect{35, 35, 665, 151}));
  EXPECT_EQ(upper[2].r.top, 35 + 116 + 18 + 7) << "no shadow: title and gutter only";
  EXPECT_EQ(Titled(upper, "March")[0].colour, "#FF0000");
  EXPECT_EQ(Titled(upper, "31")[0].colour, "#00FF00");
  EXPECT_EQ(Titled(upper, "S")[0].colour, "#00FF00");

  auto lower = RenderOps(doc_, 12, kPage, true, false, true);
  EXPECT_EQ(lower[0].line, "fill 0 500 700 1000 #FFFFFF");
  // July starts at half the inner height plus two gutters and two insets.
  EXPECT_EQ(lower[1].line, "roundrect 42 536 238 669 0 0 pen=#00FF00 brush=#E0E0E0");
  EXPECT_EQ(Titled(lower, "July").size(), 1u);
  EXPECT_EQ(Titled(lower, "December").size(), 1u);
  auto title = Titled(lower, "2024");
  ASSERT_EQ(title.size(), 1u);
  EXPECT_EQ(title[0].r, (Rect{35, 841, 665, 957}));
}

TEST_F(YearCoverTest, YearPageOnScreenWithMondayFirstAndYears) {
  Settings.StartMonday = 1;
  EditHeader([](CalendarHeader* h) { h->ShowYearInPages = 1; });
  auto ops = RenderOps(doc_, 12, kPage, false);
  EXPECT_EQ(ops[0].line, "frame -1 -1 701 1001 #A0A0A0");
  EXPECT_EQ(Titled(ops, "January 2024").size(), 1u);
  auto initials = Titled(ops, "M");
  ASSERT_FALSE(initials.empty());
  EXPECT_EQ(initials[0].r.left, 49) << "Monday heads the first column";
}

TEST_F(YearCoverTest, CoverWithoutPictureShowsBackgroundOnly) {
  EditHeader([](CalendarHeader* h) { std::strcpy(h->CoverTitle, "Our year"); });
  auto ops = RenderOps(doc_, 13, kPage);
  ASSERT_EQ(ops.size(), 2u);
  EXPECT_EQ(ops[0].line, "fill 0 0 700 500 #FFFFFF");
  EXPECT_EQ(ops[1].line, "fill 0 500 700 1000 #FFFFFF");
}

TEST_F(YearCoverTest, CoverWithAFramedPictureAndTitle) {
  EditHeader([](CalendarHeader* h) {
    h->CoverPicture = DibCreate(400, 300, 24);
    h->CoverPictureShowPicture = 1;
    std::strcpy(h->CoverTitle, "Our year");
  });
  auto ops = RenderOps(doc_, 13, kPage);
  // Box {35, 555, 665, 965} less a shadow of 20: 400 x 300 fits at 1.3 as 520 x 390, centred.
  std::vector<std::string> expected = {
      "fill 0 0 700 500 #FFFFFF",
      "fill 0 500 700 1000 #FFFFFF",
      "rect 100 575 620 965 pen=none brush=#7F7F7F",
      "picture 80 555 600 945",
      "rect 80 555 600 945 pen=#000000 brush=none",
      "text 5 525 700 955 flags=2081 color=#7F7F7F font=116,700,0,\"ARIAL\" \"Our year\"",
      "text 0 520 695 950 flags=2081 color=#000000 font=116,700,0,\"ARIAL\" \"Our year\"",
  };
  EXPECT_EQ(Lines(ops), expected);

  // The upper half alone is background only.
  EXPECT_EQ(RenderOps(doc_, 13, kPage, true, true, false).size(), 1u);
  // Without a title only the picture is drawn.
  EditHeader([](CalendarHeader* h) { h->CoverTitle[0] = 0; });
  EXPECT_EQ(OfKind(RenderOps(doc_, 13, kPage), "text").size(), 0u);
}

TEST_F(YearCoverTest, ABleedingCoverFillsTheBoxBelowTheGutter) {
  EditHeader([](CalendarHeader* h) {
    h->CoverPicture = DibCreate(400, 300, 24);
    h->CoverPictureShowPicture = 1;
    h->CoverPictureBleed = 1;
    h->CoverPictureDropShadow = 0;
    std::strcpy(h->CoverTitle, "Bleed");
  });
  auto ops = RenderOps(doc_, 13, kPage);
  // 700 x 480 covered at 1.75: 700 x 525, centred and cropped by the clip.
  std::vector<std::string> expected = {
      "fill 0 0 700 500 #FFFFFF",
      "fill 0 500 700 1000 #FFFFFF",
      "clip 0 520 700 1000",
      "picture 0 498 700 1023",
      "unclip",
      "text 0 520 700 1000 flags=2081 color=#000000 font=116,700,0,\"ARIAL\" \"Bleed\"",
  };
  EXPECT_EQ(Lines(ops), expected);

  // Switched off, the picture leaves the title reaching to the page bottom.
  EditHeader([](CalendarHeader* h) { h->CoverPictureShowPicture = 0; });
  ops = RenderOps(doc_, 13, kPage);
  ASSERT_EQ(ops.size(), 3u);
  EXPECT_EQ(ops[2].r, (Rect{0, 520, 700, 1000}));
}
