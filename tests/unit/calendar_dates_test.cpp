#include <climits>
#include <cstring>

#include "calendar/calendar_dates.h"
#include "config/settings.h"
#include "test_support.h"

namespace {

// An independent oracle: weekday (0 = Sunday) of a proleptic Gregorian date
// from the days-from-civil count.
int Weekday(int y, int m, int d) {
  y -= m <= 2;
  long era = (y >= 0 ? y : y - 399) / 400;
  long yoe = y - era * 400;
  long doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  long days = era * 146097 + doe - 719468;  // days since 1970-01-01, a Thursday
  return static_cast<int>(((days + 4) % 7 + 7) % 7);
}

}  // namespace

// The first weekdays follow the leap years (1900 and 2100 are none, 2000 and
// 2400 are), so the oracle over five centuries checks the month lengths too.
TEST(CalendarDates, FirstColumnAgreesWithTheRealCalendarFrom1583On) {
  for (int year = 1583; year <= 2600; ++year) {
    for (int month = 0; month < 12; ++month) {
      int sunday = Weekday(year, month + 1, 1);
      ASSERT_EQ(FirstWeekdayColumnFor(year, month, false), sunday) << year << "-" << month + 1;
      ASSERT_EQ(FirstWeekdayColumnFor(year, month, true), (sunday + 6) % 7) << year << "-" << month + 1;
    }
  }
  EXPECT_EQ(MonthLength(1900, 1), 28);
  EXPECT_EQ(MonthLength(2026, 12), 0);
  EXPECT_EQ(MonthLength(2026, -1), 0);
  // Years before 1584 start like 1583 but keep their own month lengths.
  EXPECT_EQ(FirstWeekdayColumnFor(1200, 0, false), 6);
  EXPECT_EQ(FirstWeekdayColumnFor(-5, 0, false), 6);
  EXPECT_EQ(FirstWeekdayColumnFor(1200, 2, false), 3);  // 1200 is a leap year
  EXPECT_EQ(FirstWeekdayColumnFor(1201, 2, false), 2);
  // A year out of a damaged file is answered at once, in the 400-year cycle.
  EXPECT_EQ(FirstWeekdayColumnFor(INT_MAX, 5, false), FirstWeekdayColumnFor(2000 + (INT_MAX - 2000) % 400, 5, false));
}

TEST_F(QuernalTest, DayAndMonthNamesComeFromTheSettingsAndStartMonday) {
  std::strcpy(Settings.MonthMarch, "M\xE4rz");
  std::strcpy(Settings.DaySunday, "Sonntag");
  EXPECT_STREQ(DayName(0), "Sonntag");
  EXPECT_STREQ(DayName(6), "Saturday");
  Settings.StartMonday = 1;
  EXPECT_STREQ(DayName(0), "Monday");
  EXPECT_STREQ(DayName(6), "Sonntag");
  EXPECT_STREQ(DayName(7), "");
  EXPECT_STREQ(DayNameFor(-1, false), "");
  EXPECT_STREQ(PageName(2), "M\xE4rz");
  EXPECT_STREQ(PageName(11), "December");
  EXPECT_STREQ(PageName(12), "Year");
  EXPECT_STREQ(PageName(13), "Cover");
  EXPECT_STREQ(PageName(14), "");
  EXPECT_STREQ(MonthName(-1), "");
}
