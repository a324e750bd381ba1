#include <cstring>

#include "calendar/event_editing.h"
#include "calendar/replicate.h"
#include "config/settings.h"
#include "test_support.h"

namespace {
class DialogModelTest : public QuernalTest {
 protected:
  void TearDown() override {
    if (doc_) FreeCalendar(doc_);
    QuernalTest::TearDown();
  }
  MonthPage Page(int month) {
    MonthPage p;
    EXPECT_TRUE(GetMonthPage(doc_, month, &p));
    return p;
  }
  CalendarDocument doc_ = 0;
};
}  // namespace

TEST_F(DialogModelTest, ReplicateCopiesTheWholeMonthWithItsOwnBlocks) {
  WriteFile(dir_.File("General.CDF"), "Mar05 Party\n");
  doc_ = CreateCalendar(2026, 2);
  MonthPage march = Page(2);
  march.Picture = MakePatternDib(20, 10, 24, 7);
  std::strcpy(march.LeftCaption, "Spring");
  march.DateBackColour = 0x00FF00;
  PutMonthPage(doc_, 2, &march);
  MonthPage july = Page(6);
  july.Picture = MakePatternDib(5, 5, 8, 1);  // replaced, and freed
  PutMonthPage(doc_, 6, &july);

  bool targets[12] = {};
  targets[0] = targets[2] = targets[6] = targets[11] = true;
  ASSERT_TRUE(ReplicateMonth(doc_, 2, targets));
  CalendarHeader h;
  GetHeader(doc_, &h);
  EXPECT_EQ(h.Changed, 1);
  for (int month : {0, 6, 11}) {
    MonthPage p = Page(month);
    EXPECT_NE(p.Picture, march.Picture);
    EXPECT_EQ(BlockBytes(p.Picture), BlockBytes(march.Picture));
    // Everything else is March's, byte for byte.
    p.Picture = march.Picture;
    p.Events = march.Events;
    EXPECT_EQ(std::memcmp(&p, &march, sizeof p), 0) << month;
  }
  EXPECT_STREQ(Page(1).LeftCaption, "") << "an unchecked month keeps its own design";
  EXPECT_EQ(Page(2).Picture, march.Picture) << "the source is left as it was";
  EXPECT_EQ(GlobalBlockSize(july.Picture), 0u) << "the target's old picture is freed";

  bool none[12] = {};
  EXPECT_FALSE(ReplicateMonth(doc_, 12, none)) << "the year page has no month record";
}

TEST_F(DialogModelTest, EventCodesSortByMonthDayAndTextWithoutRepeats) {
  WriteFile(dir_.File("General.CDF"),
            "Feb02 b\njan05 Party\nJAN05 Party\nDec31 End\nXyz01 unknown month\nJan10 Ten\n  Jan01 indented\nJan05 A first\n");
  BlockHandle list = LoadEventList("General");
  EXPECT_EQ(EventListCodes(list), (std::vector<std::string>{"05A first", "05Party", "0ATen", "12b", "BVEnd"}));
  GlobalBlockFree(list);
  EventEntry e;
  ASSERT_TRUE(EventFromListCode("BVEnd", &e));
  EXPECT_EQ(e.month, 11);
  EXPECT_EQ(e.day, 31);
  EXPECT_EQ(e.text, "End");
  EXPECT_FALSE(EventFromListCode("B", &e));
  EXPECT_FALSE(EventFromListCode("b1x", &e)) << "lower case is no code digit";
  EXPECT_EQ(EventListCode({9, 30, "x"}), "9Ux");
}

TEST_F(DialogModelTest, SavingAListReloadsEveryPageThatShowsIt) {
  WriteFile(dir_.File("General.CDF"), "Jan01 Old\n");
  WriteFile(dir_.File("Other.CDF"), "Jan01 Other\n");
  doc_ = CreateCalendar(2026, 0);
  MonthPage feb = Page(1);
  std::strcpy(feb.DaysName, "Other");
  GlobalBlockFree(feb.Events);
  feb.Events = LoadEventList("Other");
  PutMonthPage(doc_, 1, &feb);

  ASSERT_TRUE(SaveEventList(doc_, "General", {"05Party", "B0Bad day"}));
  EXPECT_EQ(ReadFile(dir_.File("General.CDF")), AsTextFile("Jan05 Party\nDec00 Bad day\n"));
  EXPECT_EQ(ReadFile(dir_.File("General.BAK")), "Jan01 Old\n");
  char text[64];
  EXPECT_EQ(FindEvent(text, sizeof text, Page(0).Events, 0, 4), 1);
  EXPECT_STREQ(text, "Party");
  EXPECT_EQ(FindEvent(text, sizeof text, Page(11).Events, 0, 4), 1) << "every page of the list";
  EXPECT_EQ(Page(1).Events, feb.Events) << "a page of another list keeps its own";
}
