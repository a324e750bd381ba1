// Date rules every page lays out its month by. Only today's date comes from
// the operating system.
#pragma once

struct CalendarDate {
  int year;
  int month;  // 1..12
  int day;
};

// Today's local date (or the date set for tests).
CalendarDate Today();
// Makes Today() answer `date` until called with nullptr; for tests.
void SetTodayForTesting(const CalendarDate* date);

bool IsLeapYear(int year);
// The twelve month lengths of a common year, then the twelve of a leap year.
extern const int MonthLengths[24];
int MonthLength(int year, int month);  // month 0..11

// Column 0..6 of the first day of `month` (0..11) in the week ordering that
// StartMonday selects. Years before 1584 are laid out like 1583.
int FirstWeekdayColumn(int year, int month);
int FirstWeekdayColumnFor(int year, int month, bool mondayFirst);

// Names from the settings: month 0..11; the day heading of grid column
// 0..6 in the ordering StartMonday selects; the page PageIndex 0..13
// (months, then "Year" and "Cover"). Out-of-range indexes give "".
const char* MonthName(int month);
const char* DayName(int column);
const char* DayNameFor(int column, bool mondayFirst);
const char* PageName(int pageIndex);
