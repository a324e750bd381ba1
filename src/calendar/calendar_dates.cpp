#include "calendar/calendar_dates.h"

#include <ctime>

#include "config/settings.h"

namespace {
bool g_todayOverridden = false;
CalendarDate g_today;
}  // namespace

CalendarDate Today() {
  if (g_todayOverridden) return g_today;
  std::time_t now = std::time(nullptr);
  std::tm* t = std::localtime(&now);
  return {t->tm_year + 1900, t->tm_mon + 1, t->tm_mday};
}

void SetTodayForTesting(const CalendarDate* date) {
  g_todayOverridden = date != nullptr;
  if (date) g_today = *date;
}

bool IsLeapYear(int year) { return year % 100 != 0 ? year % 4 == 0 : year % 400 == 0; }

const int MonthLengths[24] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31,
                              31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

int MonthLength(int year, int month) {
  if (month < 0 || month > 11) return 0;
  return MonthLengths[(IsLeapYear(year) ? 12 : 0) + month];
}

int FirstWeekdayColumnFor(int year, int month, bool mondayFirst) {
  // Days after Saturday 1 January 1583, modulo 7. The year loop would add
  // one year at a time; a 400-year cycle is 146,097 days, a whole number of
  // weeks, so only the years past the last full cycle change the result and
  // even an absurd year from a damaged file is answered at once.
  int d = 0;
  if (year >= 1584) {
    int first = 1583 + (year - 1583) / 400 * 400;
    for (int y = first; y < year; ++y) d = (d + (IsLeapYear(y) ? 366 : 365)) % 7;
  }
  for (int m = 0; m < month && m < 12; ++m) d = (d + MonthLength(year, m)) % 7;
  if (!mondayFirst) return (d != 0 ? d : 7) - 1;
  static const int kMondayFirst[7] = {6, 0, 1, 2, 3, 4, 5};
  int t = kMondayFirst[d];
  return (t != 0 ? t : 7) - 1;
}

int FirstWeekdayColumn(int year, int month) { return FirstWeekdayColumnFor(year, month, Settings.StartMonday != 0); }

const char* MonthName(int month) {
  const char* const names[12] = {Settings.MonthJanuary, Settings.MonthFebruary, Settings.MonthMarch,
                                 Settings.MonthApril,   Settings.MonthMay,      Settings.MonthJune,
                                 Settings.MonthJuly,    Settings.MonthAugust,   Settings.MonthSeptember,
                                 Settings.MonthOctober, Settings.MonthNovember, Settings.MonthDecember};
  return month >= 0 && month < 12 ? names[month] : "";
}

const char* DayNameFor(int column, bool mondayFirst) {
  const char* const sundayFirst[7] = {Settings.DaySunday,    Settings.DayMonday, Settings.DayTuesday,
                                      Settings.DayWednesday, Settings.DayThursday, Settings.DayFriday,
                                      Settings.DaySaturday};
  if (column < 0 || column > 6) return "";
  return sundayFirst[mondayFirst ? (column + 1) % 7 : column];
}

const char* DayName(int column) { return DayNameFor(column, Settings.StartMonday != 0); }

const char* PageName(int pageIndex) {
  if (pageIndex == 12) return "Year";
  if (pageIndex == 13) return "Cover";
  return MonthName(pageIndex);
}
