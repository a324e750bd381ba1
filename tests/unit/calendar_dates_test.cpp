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

// Rows of the month grid the dates fill.
int Rows(int year, int month, bool mondayFirst) {
  return (FirstWeekdayColumnFor(year, month, mondayFirst) + MonthLength(year, month) + 6) / 7;
}

class CalendarDatesTest : public QuernalTest {};

}  // namespace

TEST(CalendarDates, LeapYearsAndMonthLengths) {
  EXPECT_FALSE(IsLeapYear(1900));
  EXPECT_FALSE(IsLeapYear(2100));
  EXPECT_TRUE(IsLeapYear(2000));
  EXPECT_TRUE(IsLeapYear(2400));
  EXPECT_TRUE(IsLeapYear(2024));
  EXPECT_FALSE(IsLeapYear(2026));
  EXPECT_EQ(MonthLength(2024, 1), 29);
  EXPECT_EQ(MonthLength(2026, 1), 28);
  EXPECT_EQ(MonthLength(1900, 1), 28);
  int total = 0;
  for (int m = 0; m < 12; ++m) total += MonthLength(2026, m);
  EXPECT_EQ(total, 365);
  EXPECT_EQ(MonthLength(2026, 12), 0);
}

TEST(CalendarDates, FirstColumnAgreesWithTheRealCalendarFrom1583On) {
  for (int year = 1583; year <= 2600; ++year) {
    for (int month = 0; month < 12; ++month) {
      int sunday = Weekday(year, month + 1, 1);
      ASSERT_EQ(FirstWeekdayColumnFor(year, month, false), sunday) << year << "-" << month + 1;
      ASSERT_EQ(FirstWeekdayColumnFor(year, month, true), (sunday + 6) % 7) << year << "-" << month + 1;
    }
  }
}

TEST(CalendarDates, KnownMonthsAndTheirRows) {
  EXPECT_EQ(FirstWeekdayColumnFor(1583, 0, false), 6);
  EXPECT_EQ(FirstWeekdayColumnFor(1583, 0, true), 5);
  EXPECT_EQ(FirstWeekdayColumnFor(2000, 0, false), 6);
  EXPECT_EQ(FirstWeekdayColumnFor(2000, 0, true), 5);
  // February 2015 starts on a Sunday.
  EXPECT_EQ(Rows(2015, 1, false), 4);
  EXPECT_EQ(Rows(2015, 1, true), 5);
  // A 31-day month starting on Saturday needs six rows.
  EXPECT_EQ(Rows(2026, 7, false), 6);
  EXPECT_EQ(Rows(2024, 1, false), 5);
}

TEST(CalendarDates, EarlyAndAbsurdYears) {
  // Years before 1584 start like 1583 but keep their own month lengths.
  EXPECT_EQ(FirstWeekdayColumnFor(1200, 0, false), 6);
  EXPECT_EQ(FirstWeekdayColumnFor(-5, 0, false), 6);
  EXPECT_EQ(FirstWeekdayColumnFor(1200, 2, false), 3);  // 1200 is a leap year
  EXPECT_EQ(FirstWeekdayColumnFor(1201, 2, false), 2);
  // A year out of a damaged file is answered at once, in the 400-year cycle.
  EXPECT_EQ(FirstWeekdayColumnFor(INT_MAX, 5, false),
            FirstWeekdayColumnFor(2000 + (INT_MAX - 2000) % 400, 5, false));
}

TEST_F(CalendarDatesTest, StartMondayChangesEveryColumn) {
  EXPECT_EQ(FirstWeekdayColumn(2026, 10), 0);  // 1 November 2026 is a Sunday
  EXPECT_STREQ(DayName(0), "Sunday");
  EXPECT_STREQ(DayName(6), "Saturday");
  Settings.StartMonday = 1;
  EXPECT_EQ(FirstWeekdayColumn(2026, 10), 6);
  EXPECT_STREQ(DayName(0), "Monday");
  EXPECT_STREQ(DayName(6), "Sunday");
  EXPECT_STREQ(DayName(7), "");
}

TEST_F(CalendarDatesTest, NamesComeFromTheSettings) {
  std::strcpy(Settings.MonthMarch, "M\xE4rz");
  std::strcpy(Settings.DaySunday, "Sonntag");
  EXPECT_STREQ(MonthName(2), "M\xE4rz");
  EXPECT_STREQ(PageName(2), "M\xE4rz");
  EXPECT_STREQ(PageName(11), "December");
  EXPECT_STREQ(PageName(12), "Year");
  EXPECT_STREQ(PageName(13), "Cover");
  EXPECT_STREQ(PageName(14), "");
  EXPECT_STREQ(MonthName(-1), "");
  EXPECT_STREQ(DayNameFor(0, false), "Sonntag");
  EXPECT_STREQ(DayNameFor(6, true), "Sonntag");
}
