#include <cstring>
#include <set>
#include <vector>

#include "calendar/calendar_model.h"
#include "calendar/calendar_dates.h"
#include "calendar/record_fields.h"
#include "config/settings.h"
#include "test_support.h"

namespace {

class CalendarModelTest : public QuernalTest {
 protected:
  MonthPage Page(CalendarDocument doc, int month) {
    MonthPage page;
    EXPECT_TRUE(GetMonthPage(doc, month, &page));
    return page;
  }
  CalendarHeader Header(CalendarDocument doc) {
    CalendarHeader header;
    EXPECT_TRUE(GetHeader(doc, &header));
    return header;
  }
};

}  // namespace

TEST_F(CalendarModelTest, NewCalendarTakesItsDesignFromTheSettings) {
  Settings.DateFontSize = 33;
  std::strcpy(Settings.HeadFontName, "TIMES");
  Settings.YagGutter = 9;
  Settings.TagTitleColour = 0x123456;
  std::strcpy(Settings.CoverFontName, "COURIER");
  Settings.PictureShadowSoftness = 12;
  CalendarDocument doc = CreateCalendar(2031, 11);
  ASSERT_NE(doc, 0u);
  EXPECT_EQ(GlobalBlockSize(doc), 70139u);

  CalendarHeader h = Header(doc);
  EXPECT_EQ(std::memcmp(&h.Magic, "TRWK", 4), 0);
  EXPECT_EQ(h.RecordSize, 1343u);
  EXPECT_EQ(h.Version, 64u);
  EXPECT_EQ(h.Year, 2031);
  EXPECT_EQ(h.CurrentPage, 11);
  EXPECT_EQ(h.UseCurrentYear + h.ShowYearInPages + h.Changed, 0);
  EXPECT_EQ(h.CoverPicture, 0u);
  EXPECT_EQ(h.YagGutter, 9);
  EXPECT_EQ(h.TagTitleColour, 0x123456u);
  EXPECT_STREQ(h.CoverFontName, "COURIER");
  EXPECT_EQ(h.YagBackColour, 0xE0E0E0u);
  EXPECT_EQ(h.CoverFontBold, 700);
  EXPECT_STREQ(h.CoverTitle, "");

  for (int m = 0; m < 12; ++m) {
    MonthPage p = Page(doc, m);
    EXPECT_EQ(std::memcmp(&p.Magic, "PAGE", 4), 0);
    EXPECT_EQ(p.RecordSize, 5733u);
    EXPECT_EQ(p.DateFontSize, 33);
    EXPECT_STREQ(p.HeadFontName, "TIMES");
    EXPECT_STREQ(p.DaysName, "General");
    EXPECT_EQ(p.DateFontPlacement, 10);
    EXPECT_EQ(p.PictureShowPicture, 1);
    EXPECT_EQ(p.PictureShadowSoftness, 12);
    EXPECT_EQ(p.Reserved1, 0u) << "not filled from the settings";
    EXPECT_EQ(p.Events, 0u) << "no General.CDF in the program folder";
  }
  EXPECT_TRUE(FreeCalendar(doc));
}

TEST_F(CalendarModelTest, AnEditedMonthBecomesTheDesignOfEveryNewCalendar) {
  CalendarDocument doc = CreateCalendar(2026, 2);
  MonthPage march = Page(doc, 2);
  std::strcpy(march.DateFontName, "GARAMOND");
  march.DateBackColour = 0x00FF00;
  march.HeadPlacement = 2;
  march.CapFontItal = 1;
  std::strcpy(march.DaysName, "Holidays");
  march.PicturePlacement = 10;
  march.PictureFrameColour = 0x0000FF;
  march.PageMargin = 4;
  march.Gutter = 6;
  march.PictureShadowSoftness = 3;
  std::strcpy(march.LeftCaption, "not a design property");
  StoreMonthPageAsDefaults(&march);
  FreeCalendar(doc);

  EXPECT_STREQ(Settings.DaysName, "Holidays");
  // The frame colour lands in the placement default; the frame colour default stays.
  EXPECT_EQ(Settings.PicturePlacement, 0x0000FFu);
  EXPECT_EQ(Settings.PictureFrameColour, 0u);

  doc = CreateCalendar(2027, 0);
  for (int m = 0; m < 12; ++m) {
    MonthPage p = Page(doc, m);
    EXPECT_STREQ(p.DateFontName, "GARAMOND");
    EXPECT_EQ(p.DateBackColour, 0x00FF00u);
    EXPECT_EQ(p.HeadPlacement, 2);
    EXPECT_EQ(p.CapFontItal, 1);
    EXPECT_STREQ(p.DaysName, "Holidays");
    EXPECT_EQ(p.PicturePlacement, 0x0000FF);
    EXPECT_EQ(p.PictureFrameColour, 0u);
    EXPECT_EQ(p.PageMargin, 4);
    EXPECT_EQ(p.Gutter, 6);
    EXPECT_EQ(p.PictureShadowSoftness, 3);
    EXPECT_STREQ(p.LeftCaption, "");
  }
  FreeCalendar(doc);
}

TEST_F(CalendarModelTest, AnEditedYearPageBecomesTheDefaultOfTheYearAndCover) {
  CalendarDocument doc = CreateCalendar(2026, 12);
  CalendarHeader h = Header(doc);
  h.TagFontItal = 1;
  std::strcpy(h.YagTitleFontName, "VERDANA");
  h.CoverPictureBleed = 1;
  h.CoverPictureFrameColour = 0xABCDEF;
  std::strcpy(h.CoverTitle, "Our year");
  h.Year = 1999;
  StoreHeaderAsDefaults(&h);
  FreeCalendar(doc);
  EXPECT_EQ(Settings.TagFontItal, 1u);
  EXPECT_STREQ(Settings.YagTitleFontName, "VERDANA");
  EXPECT_EQ(Settings.CoverPictureBleed, 1u);
  EXPECT_EQ(Settings.CoverPictureFrameColour, 0xABCDEFu);
  doc = CreateCalendar(2030, 0);
  CalendarHeader fresh = Header(doc);
  EXPECT_EQ(fresh.TagFontItal, 1);
  EXPECT_STREQ(fresh.YagTitleFontName, "VERDANA");
  EXPECT_STREQ(fresh.CoverTitle, "") << "the title is the calendar's own";
  EXPECT_EQ(fresh.Year, 2030);
  FreeCalendar(doc);
}

TEST_F(CalendarModelTest, PagesAndCopiesNeverShareBlocks) {
  WriteFile(dir_.File("General.CDF"), "JAN05 Party\n");
  CalendarDocument doc = CreateCalendar(2026, 0);
  std::set<BlockHandle> lists;
  for (int m = 0; m < 12; ++m) lists.insert(Page(doc, m).Events);
  EXPECT_EQ(lists.size(), 12u) << "each page of a new calendar loads its own list";
  EXPECT_EQ(lists.count(0), 0u);
  FreeCalendar(doc);

  MonthPage src;
  InitMonthPage(&src);
  src.Picture = MakePatternDib(8, 8, 24, 1);
  MonthPage dst;
  ASSERT_TRUE(CopyMonthPage(&dst, &src));
  EXPECT_NE(dst.Picture, src.Picture);
  EXPECT_NE(dst.Events, src.Events);
  EXPECT_EQ(BlockBytes(dst.Picture), BlockBytes(src.Picture));
  EXPECT_EQ(BlockBytes(dst.Events), BlockBytes(src.Events));
  FreeMonthPage(&dst);
  EXPECT_NE(GlobalBlockSize(src.Picture), 0u) << "freeing the copy left the source alone";

  // A picture block of size 0 cannot be duplicated: the copy fails and holds nothing.
  GlobalBlockFree(src.Picture);
  src.Picture = GlobalBlockAlloc(0);
  uint32_t before = GlobalBlockLiveCount();
  EXPECT_FALSE(CopyMonthPage(&dst, &src));
  EXPECT_EQ(GlobalBlockLiveCount(), before);
  MonthPage zero{};
  EXPECT_EQ(std::memcmp(&dst, &zero, sizeof dst), 0);

  // Same when the event list fails after the picture was duplicated.
  GlobalBlockFree(src.Picture);
  src.Picture = MakePatternDib(2, 2, 24, 2);
  GlobalBlockFree(src.Events);
  src.Events = GlobalBlockAlloc(0);
  before = GlobalBlockLiveCount();
  EXPECT_FALSE(CopyMonthPage(&dst, &src));
  EXPECT_EQ(GlobalBlockLiveCount(), before);
  FreeMonthPage(&src);

  // A record without blocks copies without any.
  InitMonthPage(&src);
  GlobalBlockFree(src.Events);
  src.Events = 0;
  before = GlobalBlockLiveCount();
  ASSERT_TRUE(CopyMonthPage(&dst, &src));
  EXPECT_EQ(GlobalBlockLiveCount(), before);
  EXPECT_EQ(std::memcmp(&dst, &src, sizeof dst), 0);

  CalendarHeader h{};
  h.Magic = kHeaderMagic;
  h.CoverPicture = MakePatternDib(4, 4, 8, 3);
  CalendarHeader hc;
  ASSERT_TRUE(CopyHeader(&hc, &h));
  EXPECT_NE(hc.CoverPicture, h.CoverPicture);
  EXPECT_EQ(BlockBytes(hc.CoverPicture), BlockBytes(h.CoverPicture));
  FreeHeader(&hc);
  FreeHeader(&h);
  EXPECT_EQ(h.Magic, 0u);
}

TEST_F(CalendarModelTest, RecordAccessChecksIndexAndMagic) {
  CalendarDocument doc = CreateCalendar(2026, 0);
  MonthPage p;
  CalendarHeader h;
  EXPECT_FALSE(GetMonthPage(doc, 12, &p));
  EXPECT_FALSE(GetMonthPage(doc, 13, &p));
  EXPECT_FALSE(GetMonthPage(doc, -1, &p));
  ASSERT_TRUE(GetMonthPage(doc, 4, &p));
  p.DateFontSize = 99;
  EXPECT_TRUE(PutMonthPage(doc, 4, &p));
  EXPECT_EQ(Page(doc, 4).DateFontSize, 99);
  EXPECT_EQ(Page(doc, 5).DateFontSize, 50);
  EXPECT_FALSE(PutMonthPage(doc, 12, &p));

  ASSERT_TRUE(GetHeader(doc, &h));
  // A block that is not a calendar is refused by every access.
  BlockHandle other = GlobalBlockAlloc(70139);
  EXPECT_FALSE(GetHeader(other, &h));
  EXPECT_FALSE(PutHeader(other, &h));
  EXPECT_FALSE(GetMonthPage(other, 0, &p));
  EXPECT_FALSE(FreeCalendar(other));
  EXPECT_EQ(GlobalBlockLockCount(other), 0u);
  GlobalBlockFree(other);
  EXPECT_TRUE(FreeCalendar(doc));
  EXPECT_FALSE(GetHeader(doc, &h)) << "a freed calendar is gone";
}

TEST_F(CalendarModelTest, CurrentYearFlagFollowsTodaysYear) {
  CalendarHeader h{};
  h.Year = 2026;
  EXPECT_EQ(CalendarYear(&h), 2026);
  h.UseCurrentYear = 1;
  CalendarDate later{2027, 3, 1};
  SetTodayForTesting(&later);
  EXPECT_EQ(CalendarYear(&h), 2027);
  EXPECT_EQ(h.Year, 2026);
}

// Each record's field list covers every byte of the record exactly once, and
// a field bound to the design defaults names a setting of its own type.
TEST(RecordFields, CoverEveryByteOnceAndBindToSettingsOfTheirType) {
  const struct {
    RecordFieldList fields;
    size_t size;
  } records[] = {{HeaderFields(), sizeof(CalendarHeader)}, {MonthPageFields(), sizeof(MonthPage)}};
  for (const auto& record : records) {
    std::vector<int> covered(record.size, 0);
    for (const RecordField& field : record.fields) {
      ASSERT_LE(field.offset + field.size, record.size) << field.name;
      for (uint32_t i = 0; i < field.size; ++i) ++covered[field.offset + i];
      for (const char* key : {field.copiedFrom, field.storedInto}) {
        if (!key) continue;
        const SettingsRow* row = FindSettingsRow(key);
        ASSERT_NE(row, nullptr) << field.name << " is bound to no setting " << key;
        EXPECT_EQ((row->type & kSettingText) != 0, field.kind == FieldKind::Text) << field.name << " and " << key;
      }
    }
    for (size_t i = 0; i < record.size; ++i) EXPECT_EQ(covered[i], 1) << "byte " << i << " of " << record.size;
  }
}
