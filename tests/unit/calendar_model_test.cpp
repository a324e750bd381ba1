#include <cstdio>
#include <cstring>
#include <map>
#include <string>
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

// A bound field's value in a record, and in the setting `key`, as bytes.
std::string FieldValue(const RecordField& f, const void* record) {
  const char* at = static_cast<const char*>(record) + f.offset;
  return f.kind == FieldKind::Text ? std::string(at) : std::string(at, 4);
}
std::string SettingValue(const RecordField& f, const char* key) {
  const char* at = static_cast<const char*>(FindSettingsRow(key)->variable);
  return f.kind == FieldKind::Text ? std::string(at) : std::string(at, 4);
}
// `value` (or its digits, for a text) into the field of `record` or, with no
// record, into the setting the field is copied from.
void Put(const RecordField& f, void* record, uint32_t value) {
  char* at = record ? static_cast<char*>(record) + f.offset : static_cast<char*>(FindSettingsRow(f.copiedFrom)->variable);
  if (f.kind == FieldKind::Text)
    std::snprintf(at, f.size, "S%u", value);
  else
    std::memcpy(at, &value, 4);
}

}  // namespace

// Every design field of a new calendar comes from its setting, and an edited
// page or year page stores its design back (a page's frame colour into the
// placement's setting, as the records' table says); the captions, the title
// and the year stay the calendar's own.
TEST_F(CalendarModelTest, NewCalendarsTakeTheirDesignFromTheSettingsAndEditedRecordsStoreIt) {
  uint32_t n = 100;
  for (const RecordFieldList& list : {HeaderFields(), MonthPageFields()})
    for (const RecordField& f : list)
      if (f.copiedFrom) Put(f, nullptr, n += 7);
  const auto expectDesign = [&](CalendarDocument doc) {
    CalendarHeader h = Header(doc);
    for (const RecordField& f : HeaderFields()) {
      if (f.copiedFrom) {
        EXPECT_EQ(FieldValue(f, &h), SettingValue(f, f.copiedFrom)) << f.name;
      }
    }
    for (int m = 0; m < 12; ++m) {
      MonthPage p = Page(doc, m);
      for (const RecordField& f : MonthPageFields()) {
        if (f.copiedFrom) {
          EXPECT_EQ(FieldValue(f, &p), SettingValue(f, f.copiedFrom)) << f.name << " in " << m;
        }
      }
      EXPECT_STREQ(p.LeftCaption, "");
      EXPECT_EQ(p.Events, 0u) << "no list of that name in the program folder";
    }
    EXPECT_STREQ(h.CoverTitle, "");
  };
  CalendarDocument doc = CreateCalendar(2031, 11);
  ASSERT_NE(doc, 0u);
  expectDesign(doc);
  CalendarHeader h = Header(doc);
  EXPECT_EQ(h.Version, 64u);
  EXPECT_EQ(h.UseCurrentYear + h.ShowYearInPages + h.Changed, 0);
  MonthPage march = Page(doc, 2);

  // Each record's fields stored in order: a later one stored into the same
  // setting wins.
  const uint32_t frameDefault = Settings.PictureFrameColour;
  for (const RecordField& f : MonthPageFields())
    if (f.storedInto) Put(f, &march, n += 7);
  for (const RecordField& f : HeaderFields())
    if (f.storedInto) Put(f, &h, n += 7);
  std::strcpy(march.LeftCaption, "not a design property");
  std::strcpy(h.CoverTitle, "Our year");
  h.Year = 1999;
  StoreMonthPageAsDefaults(&march);
  StoreHeaderAsDefaults(&h);
  EXPECT_TRUE(FreeCalendar(doc));
  EXPECT_EQ(Settings.PicturePlacement, march.PictureFrameColour);
  EXPECT_EQ(Settings.PictureFrameColour, frameDefault);
  for (const auto& [list, record] : {std::make_pair(MonthPageFields(), static_cast<const void*>(&march)),
                                     std::make_pair(HeaderFields(), static_cast<const void*>(&h))}) {
    std::map<std::string, std::pair<const RecordField*, std::string>> last;
    for (const RecordField& f : list)
      if (f.storedInto) last[f.storedInto] = {&f, FieldValue(f, record)};
    for (const auto& [key, stored] : last) EXPECT_EQ(SettingValue(*stored.first, key.c_str()), stored.second) << key;
  }
  doc = CreateCalendar(2030, 0);
  expectDesign(doc);
  EXPECT_EQ(Header(doc).Year, 2030);
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
  EXPECT_FALSE(GetMonthPage(doc, -1, &p));
  ASSERT_TRUE(GetMonthPage(doc, 4, &p));
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
