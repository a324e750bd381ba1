// The events of an iCalendar file on the days of one year: the file is
// checked line by line, parsed by libical, and its repeating events are
// expanded within that year only, so a rule without an end costs no more
// than one with one.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

// The characters of an event's text that a line of an events file holds:
// the program reads lines of at most 1,023 characters, end of line included.
constexpr size_t kMaxIcalText = 1023 - 7;

// One day of one event within the year.
struct IcalDay {
  int month;         // 0..11
  int day;           // 1..31
  std::string text;  // the event's SUMMARY in UTF-8 on one line, cut to kMaxIcalText; empty when none
  int line;          // the line of the event's BEGIN:VEVENT
};

struct IcalProblem {
  int line = 0;  // 0 when no single line is to blame
  std::string message;
};

// The days of `year` on which the events of the iCalendar text `ics` fall:
// event by event in file order, each event's days in date order and each
// day once per event. An event is on the date written in its DTSTART,
// whatever zone the time is in, and on every further day its DTEND or
// DURATION reaches (an end at midnight does not reach the next day). False
// with the problem when the text is not iCalendar, a rule repeats too
// often to expand before the end of the year, or the days are far more
// than an events file holds.
bool IcalendarDaysOfYear(const std::string& ics, int year, std::vector<IcalDay>* days, IcalProblem* problem);
