// The month page's geometry, pinned on the operations canvas. The numbers are
// worked out by hand from a 700 x 1000 page with the default design:
// margin 14, inner {14, 14, 686, 986}, gutter 19, grid top 519, columns of 96,
// rows of 66 (heading band 44, day-name band 22), paddings of 3.
#include <algorithm>
#include <cstring>
#include <set>

#include "base/dib.h"
#include "calendar/calendar_dates.h"
#include "config/settings.h"
#include "page_render_fixture.h"
#include "render/ops_canvas.h"
#include "render/page_renderer.h"

namespace {

const std::string kDateColour = "#332211";  // distinct from every other text colour

class MonthPageTest : public PageRenderTest {
 protected:
  void SetUp() override {
    PageRenderTest::SetUp();
    Settings.DateFontColour = 0x112233;
    Settings.DateBackColour = 0xF0F0F0;
    NewCalendar(2026);  // made again by the tests that change the settings it copies
  }
  // The date numbers, in the order drawn (the unshadowed ones when DateShadow is 0).
  static std::vector<Op> Dates(const std::vector<Op>& ops) {
    std::vector<Op> dates;
    for (const Op& op : Texts(ops, kDateColour))
      if (op.flags == (10 | kDtSingleLine | kDtNoPrefix)) dates.push_back(op);
    return dates;
  }
};

int Rows(const std::vector<Op>& dates) {
  std::set<int> tops;
  for (const Op& d : dates) tops.insert(d.r.top);
  return static_cast<int>(tops.size());
}

}  // namespace

TEST_F(MonthPageTest, CalendarHalfByHand) {
  auto ops = Render(10);  // November 2026 starts on a Sunday
  ASSERT_GT(ops.size(), 25u);
  EXPECT_EQ(ops[0].line, "fill 0 0 700 500 #FFFFFF");
  EXPECT_EQ(ops[1].line, "fill 0 500 700 1000 #FFFFFF");
  // The heading box over the middle three columns, its text shadowed without vertical centring.
  EXPECT_EQ(ops[2].line, "roundrect 209 522 491 560 0 0 pen=#000000 brush=#E0E0E0");
  EXPECT_EQ(ops[3].line, "text 212 525 488 557 flags=2081 color=#707070 font=32,700,0,\"ARIAL\" \"November\"");
  EXPECT_EQ(ops[4].line, "text 210 523 486 555 flags=2081 color=#000000 font=32,700,0,\"ARIAL\" \"November\"");
  // Seven day names, Sunday first, vertically centred and never shadowed.
  EXPECT_EQ(ops[5].line, "roundrect 17 566 107 582 0 0 pen=#000000 brush=#E0E0E0");
  EXPECT_EQ(ops[6].line, "text 20 569 104 579 flags=2085 color=#000000 font=10,700,0,\"ARIAL\" \"Sunday\"");
  EXPECT_EQ(ops[18].line, "text 596 569 680 579 flags=2085 color=#000000 font=10,700,0,\"ARIAL\" \"Saturday\"");
  // The right caption box comes before the left one.
  EXPECT_EQ(ops[19].line, "roundrect 497 522 683 560 0 0 pen=#000000 brush=#E0E0E0");
  EXPECT_EQ(ops[20].line, "text 500 525 680 557 flags=2065 color=#000000 font=8,400,0,\"ARIAL\" \"\"");
  EXPECT_EQ(ops[21].line, "roundrect 17 522 203 560 0 0 pen=#000000 brush=#E0E0E0");
  // The first date cell: its box, the shadow, the number moved up and left.
  EXPECT_EQ(ops[23].line, "roundrect 17 588 107 648 0 0 pen=#000000 brush=#F0F0F0");
  EXPECT_EQ(ops[24].line, "text 20 591 104 645 flags=2090 color=#918980 font=33,700,0,\"ARIAL\" \"1\"");
  EXPECT_EQ(ops[25].line, "text 18 589 102 643 flags=2090 color=#332211 font=33,700,0,\"ARIAL\" \"1\"");

  auto dates = Dates(ops);
  ASSERT_EQ(dates.size(), 30u);
  EXPECT_EQ(dates[29].r, (Rect{114, 853, 198, 907})) << "30 November: second column of the fifth row";
  // October and December follow in columns 2 and 3 of that row.
  auto october = Titled(ops, "October"), december = Titled(ops, "December");
  ASSERT_FALSE(october.empty());
  ASSERT_FALSE(december.empty());
  EXPECT_EQ(october.back().r, (Rect{212, 855, 296, 861}));
  EXPECT_EQ(october.back().flags, 2081);
  EXPECT_EQ(december.back().r, (Rect{308, 855, 392, 861}));
  // Each half draws alone: the upper one without a picture is its background only.
  auto upper = Render(10, true, true, false), lower = Render(10, true, false, true);
  EXPECT_EQ(Lines(upper), (std::vector<std::string>{"fill 0 0 700 500 #FFFFFF"}));
  EXPECT_EQ(lower[0].line, "fill 0 500 700 1000 #FFFFFF");
  EXPECT_EQ(ops.size(), upper.size() + lower.size());
}

TEST_F(MonthPageTest, MonthsStartInTheirWeekdayColumnAndFillTheirRows) {
  Settings.DateShadow = 0;
  const struct {
    int year, month;
    bool mondayFirst;
    int column, rows;
  } cases[] = {
      // 2026: February starts on Sunday, June Monday, September Tuesday, April
      // Wednesday, January Thursday, May Friday, August Saturday.
      {2026, 1, false, 0, 4}, {2026, 5, false, 1, 5}, {2026, 8, false, 2, 5}, {2026, 3, false, 3, 5},
      {2026, 0, false, 4, 5}, {2026, 4, false, 5, 6}, {2026, 7, false, 6, 6},
      // A leap February; February 2015 starts on a Sunday: four rows, or five with Monday first.
      {2024, 1, false, 4, 5}, {2015, 1, false, 0, 4}, {2015, 1, true, 6, 5}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.year << "-" << c.month + 1 << (c.mondayFirst ? " Monday first" : ""));
    Settings.StartMonday = c.mondayFirst;
    NewCalendar(c.year);
    const auto ops = Render(c.month);
    const auto dates = Dates(ops);
    ASSERT_FALSE(dates.empty());
    EXPECT_EQ(dates[0].text, "1");
    EXPECT_EQ(dates[0].r.left, 20 + 96 * c.column);
    EXPECT_EQ(dates[0].r.top, 591);
    EXPECT_EQ(static_cast<int>(dates.size()), MonthLength(c.year, c.month));
    EXPECT_EQ(Rows(dates), c.rows);
    EXPECT_EQ(ops[6].text, c.mondayFirst ? "Monday" : "Sunday");
  }
  // August 2026: 31 days from the last column fill all six rows; the small
  // months take columns 2 and 3 of the sixth.
  Settings.StartMonday = 0;
  NewCalendar(2026);
  auto august = Render(7);
  EXPECT_EQ(Dates(august).back().r, (Rect{116, 921, 200, 975}));
  auto july = Titled(august, "July"), september = Titled(august, "September");
  ASSERT_FALSE(july.empty());
  ASSERT_FALSE(september.empty());
  EXPECT_EQ(july.back().r.left, 14 + 2 * 96 + 6);
  EXPECT_EQ(september.back().r.left, 14 + 3 * 96 + 6);
}

TEST_F(MonthPageTest, DatePlacementsAndEvents) {
  WriteFile(dir_.File("General.CDF"), "Mar05 Party\nMar06 Two words\n");
  Settings.DateShadow = 0;
  Settings.DaysFontColour = 0x00AA00;
  const std::string eventColour = "#00AA00";
  struct {
    int32_t placement;
    int eventFlags;  // -1: no events at all
    bool atBottom;
  } cases[] = {{10, 0x810, false}, {8, 0x812, false}, {0, 0x812, true}, {2, 0x810, true}, {1, -1, false},
               {5, 0x810, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.placement);
    Settings.DateFontPlacement = static_cast<uint32_t>(c.placement);
    NewCalendar(2026);
    auto ops = Render(2);  // March 2026: the 5th is a Thursday
    std::vector<Op> numbers;
    for (const Op& t : Texts(ops, kDateColour))
      if (t.font == "33,700,0,\"ARIAL\"") numbers.push_back(t);
    ASSERT_EQ(numbers.size(), 31u);
    EXPECT_EQ(numbers[4].flags, c.placement | 0x820);
    auto events = Texts(ops, eventColour);
    if (c.eventFlags < 0) {
      EXPECT_TRUE(events.empty());
    } else {
      ASSERT_EQ(events.size(), 2u);
      EXPECT_EQ(events[0].text, "Party");
      EXPECT_EQ(events[0].flags, c.eventFlags);
      EXPECT_EQ(events[0].font, "6,700,0,\"ARIAL\"");
      // The cell of the 5th: column 4 of the first row.
      const Rect inside{14 + 4 * 96 + 6, 585 + 6, 14 + 5 * 96 - 6, 651 - 6};
      Rect expected = inside;
      if (c.atBottom) expected.top = inside.bottom - 6;  // one line of a 6-pixel font
      EXPECT_EQ(events[0].r, expected);
    }
  }
}

TEST_F(MonthPageTest, SmallMonthsAndTheYearInTitles) {
  CalendarHeader h;
  GetHeader(doc_, &h);
  h.ShowYearInPages = 1;
  PutHeader(doc_, &h);
  auto ops = Render(11);
  std::vector<std::string> titles;
  for (const Op& t : OfKind(ops, "text"))
    if (t.text.find(' ') != std::string::npos) titles.push_back(t.text);
  EXPECT_EQ(titles, (std::vector<std::string>{"December 2026", "December 2026", "November 2026", "January 2027"}));
  // January 2027 starts on a Friday: its "1" sits in the sixth small column.
  auto january = Titled(ops, "January 2027");
  ASSERT_FALSE(january.empty());
  const Rect at = january.back().r;
  const int smallW = Width(at) / 7, smallH = 6;
  const auto ones = Titled(ops, "1");
  EXPECT_TRUE(std::any_of(ones.begin(), ones.end(), [&](const Op& t) {
    return t.r.left == at.left + 5 * smallW && t.r.top == at.top + 2 * smallH;
  }));

  // Without HeadPrevNext the cells after the last day stay empty.
  EditMonth(11, [](MonthPage* p) { p->HeadPrevNext = 0; });
  ops = Render(11);
  EXPECT_EQ(OfKind(ops, "roundrect").size(), 1u + 7 + 2 + 31);
}

TEST_F(MonthPageTest, CaptionsWrapInTheirBoxes) {
  EditMonth(0, [](MonthPage* p) {
    std::strcpy(p->LeftCaption, "Left words");
    std::strcpy(p->RightCaption, "Right \"quoted\"\r\nline");
    p->CapPlacement = 2;
    p->CapFontSize = 50;
    p->CapFontItal = 1;
  });
  auto ops = Render(0);
  EXPECT_EQ(ops[20].text, "Right \"quoted\"\r\nline");
  EXPECT_EQ(ops[20].flags, 2 | kDtWordBreak | kDtNoPrefix);
  EXPECT_EQ(ops[20].font, "22,400,1,\"ARIAL\"");
  EXPECT_EQ(ops[22].text, "Left words");
  EXPECT_EQ(ops[22].r, (Rect{20, 525, 200, 557}));
}

TEST_F(MonthPageTest, PictureFitsItsBoxAtEveryPlacement) {
  BlockHandle picture = DibCreate(400, 300, 24);
  // Box {47, 47, 653, 443} less a shadow of 19: 587 x 377; 400 x 300 at 1.256 is 502 x 376.
  struct {
    int32_t placement;
    int x, y;
  } cases[] = {{0, 47, 47}, {2, 47 + 85, 47}, {8, 47, 48}, {10, 132, 48}, {147, 47 + 42, 47}, {1, 89, 47}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.placement);
    MonthPage p;
    GetMonthPage(doc_, 0, &p);
    p.Picture = picture;
    p.PicturePlacement = c.placement;
    PutMonthPage(doc_, 0, &p);
    auto ops = Render(0, true, true, false);
    auto pictures = OfKind(ops, "picture");
    ASSERT_EQ(pictures.size(), 1u);
    EXPECT_EQ(pictures[0].r, (Rect{c.x, c.y, c.x + 502, c.y + 376}));
    // A soft shadow of 25 rings fading to the page colour, then the frame.
    auto rings = OfKind(ops, "roundrect");
    ASSERT_EQ(rings.size(), 25u);
    EXPECT_EQ(rings[0].r, (Rect{c.x + 12, c.y + 12, c.x + 502 + 25, c.y + 376 + 25}));
    EXPECT_EQ(rings[0].brush, "#FFFFFF");
    EXPECT_EQ(rings[24].brush, "#848484");
    EXPECT_EQ(rings[0].pen, "none");
    EXPECT_EQ(ops.back().line, "rect " + std::to_string(c.x) + " " + std::to_string(c.y) + " " +
                                   std::to_string(c.x + 502) + " " + std::to_string(c.y + 376) +
                                   " pen=#000000 brush=none");
  }
  // A hard shadow without softness, in the mixed colour.
  EditMonth(0, [](MonthPage* p) {
    p->PictureShadowSoftness = 0;
    p->PicturePlacement = 0;
    p->PictureShowFrame = 0;
  });
  auto ops = Render(0, true, true, false);
  ASSERT_EQ(ops.size(), 3u);
  EXPECT_EQ(ops[1].line, "rect 66 66 568 442 pen=none brush=#7F7F7F");
  EXPECT_EQ(ops[2].kind, "picture");
  // A picture that is switched off or has no width is not drawn.
  EditMonth(0, [](MonthPage* p) { p->PictureShowPicture = 0; });
  EXPECT_EQ(Render(0, true, true, false).size(), 1u);
  EditMonth(0, [](MonthPage* p) { p->PictureShowPicture = 1; });
  BlockLock(picture).as<BitmapInfoHeader>()->biWidth = 0;
  EXPECT_EQ(Render(0, true, true, false).size(), 1u);
  // The document owns the picture now and frees it.
}

TEST_F(MonthPageTest, APageAwayFromTheOriginKeepsTheBottomRules) {
  EditMonth(0, [](MonthPage* p) {
    p->Picture = DibCreate(400, 300, 24);
    p->PictureDropShadow = 0;
    p->PicturePlacement = 0;
  });
  const Rect page{100, 200, 800, 1200};
  auto ops = RenderOps(doc_, 0, page, false);
  EXPECT_EQ(ops[0].line, "frame 99 199 801 1201 #A0A0A0");
  EXPECT_EQ(ops[1].line, "fill 100 200 800 600 #FFFFFF") << "half the bottom coordinate, not the middle";
  // Inner {114, 214, 786, 1186}: the box ends at (972 - 19) / 2 = 476 less the
  // padding of 33, far above the page's middle.
  auto picture = OfKind(ops, "picture");
  ASSERT_EQ(picture.size(), 1u);
  EXPECT_EQ(picture[0].r.bottom, 247 + 195) << "fitted to the 196 pixels left above 443";
  EXPECT_EQ(picture[0].r.top, 247);
  EXPECT_EQ(OfKind(ops, "fill")[1].line, "fill 100 600 800 1200 #FFFFFF");
}

TEST_F(MonthPageTest, RefusesWhatIsNotAPageAndChangesNothing) {
  EditMonth(4, [](MonthPage* p) { p->Picture = DibCreate(40, 30, 8); });
  std::vector<uint8_t> before = BlockBytes(doc_);
  OpsCanvas canvas;
  for (int page = 0; page < 14; ++page) EXPECT_EQ(DrawCalendarPage(canvas, kPage, doc_, page, false, true, true), 1);
  EXPECT_EQ(BlockBytes(doc_), before);
  EXPECT_EQ(DrawCalendarPage(canvas, kPage, doc_, 14, true, true, true), 0);
  EXPECT_EQ(DrawCalendarPage(canvas, kPage, doc_, -1, true, true, true), 0);
  BlockHandle other = GlobalBlockAlloc(70139);
  size_t drawn = canvas.ops().size();
  for (int page : {0, 12, 13}) EXPECT_EQ(DrawCalendarPage(canvas, kPage, other, page, true, true, true), 0);
  EXPECT_EQ(canvas.ops().size(), drawn);
  GlobalBlockFree(other);
}
