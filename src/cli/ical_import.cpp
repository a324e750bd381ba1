#include "cli/ical_import.h"

#include <libical/ical.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <memory>
#include <set>
#include <utility>

#include "calendar/calendar_dates.h"
#include "calendar/event_list.h"

namespace {

// Steps of libical's rule iterator one rule may take before the end of the
// year: daily from 1800 fits; a rule repeating every second does not.
constexpr long kMaxRuleSteps = 100000;
// All rules of a file together, so that many rules cannot add up either.
constexpr long kMaxFileSteps = 2000000;
// libical searches for the next match of a rule that never matches (the
// 31st of April) on its own for a fraction of a second; many such rules are
// stopped by the clock.
constexpr auto kMaxExpansionTime = std::chrono::seconds(20);

// The days' texts are kept in UTF-8 until the end; an events file holds
// 1 MiB of Windows-1252, which takes at most three times as much.
constexpr size_t kMaxDaysBytes = 3 * kMaxEventFileBytes;

// Each property carries the number of its line through libical as a
// parameter of ours, so that a value found wrong after parsing is reported
// where it was written.
constexpr char kLineParameter[] = "X-QUERNAL-LINE";

struct Line {
  std::string text;  // unfolded
  int number;        // where it starts in the file
};

bool Fail(IcalProblem* problem, int line, const std::string& message) {
  problem->line = line;
  problem->message = message;
  return false;
}

std::string Upper(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

// The file's content lines with their continuations joined, blank lines
// left out.
bool Unfold(const std::string& ics, std::vector<Line>* lines, IcalProblem* problem) {
  size_t pos = ics.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
  for (int number = 1; pos < ics.size(); ++number) {
    size_t end = std::min(ics.find('\n', pos), ics.size());
    std::string text = ics.substr(pos, end - pos);
    pos = end + 1;
    if (!text.empty() && text.back() == '\r') text.pop_back();
    // libical reads a line as a C string: it would end there unseen.
    if (text.find('\0') != std::string::npos) return Fail(problem, number, "a NUL character");
    if (text.empty()) continue;
    if (text[0] != ' ' && text[0] != '\t') {
      lines->push_back({text, number});
    } else if (lines->empty()) {
      return Fail(problem, number, "a continued line with no line before it");
    } else {
      lines->back().text.append(text, 1, std::string::npos);
    }
  }
  return true;
}

// The upper-case name of a content line "NAME;PARAM=...:value"; false when
// the line has no such shape.
bool ContentLineName(const std::string& line, std::string* name) {
  size_t end = line.find_first_of(";:");
  if (end == 0 || end == std::string::npos || line.find(':', end) == std::string::npos) return false;
  for (size_t i = 0; i < end; ++i) {
    const char c = line[i];
    if (!(c == '-' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'))) return false;
  }
  *name = Upper(line.substr(0, end));
  return true;
}

// The component a BEGIN or END line names.
std::string ComponentName(const std::string& line) {
  std::string name = Upper(line.substr(line.find(':') + 1));
  name.erase(name.find_last_not_of(" \t") + 1);
  return name;
}

// Properties neither registered nor private ("X-") are to be ignored;
// libical would report them as errors.
bool KnownProperty(const std::string& name) {
  return name.compare(0, 2, "X-") == 0 || icalproperty_string_to_kind(name.c_str()) != ICAL_NO_PROPERTY;
}

// Checks that components nest as iCalendar has them, that every event has
// a DTSTART, and tags each property with its line. Keeps the lines libical
// is to parse and the BEGIN:VEVENT line of each event in file order.
bool CheckStructure(std::vector<Line>* lines, std::vector<int>* events, IcalProblem* problem) {
  std::vector<std::pair<std::string, int>> open;  // components begun and not ended, with their lines
  bool eventHasStart = false;
  std::vector<Line> kept;
  for (Line& line : *lines) {
    std::string name;
    if (!ContentLineName(line.text, &name)) return Fail(problem, line.number, "not a line of the form NAME:value");
    const std::string component = name == "BEGIN" || name == "END" ? ComponentName(line.text) : "";
    const std::string parent = open.empty() ? "" : open.back().first;
    if (open.empty() && (name != "BEGIN" || component != "VCALENDAR"))
      return Fail(problem, line.number, "BEGIN:VCALENDAR expected");
    if (name == "BEGIN") {
      if (component.empty() || (component == "VCALENDAR" && !open.empty()) ||
          (component == "VEVENT" && parent != "VCALENDAR"))
        return Fail(problem, line.number, "BEGIN:" + component + " in the wrong place");
      open.push_back({component, line.number});
      if (component == "VEVENT") {
        events->push_back(line.number);
        eventHasStart = false;
      }
    } else if (name == "END") {
      if (component != parent) return Fail(problem, line.number, "END:" + parent + " expected");
      if (component == "VEVENT" && !eventHasStart) return Fail(problem, open.back().second, "an event without DTSTART");
      open.pop_back();
    } else if (KnownProperty(name)) {
      if (parent == "VEVENT" && name == "DTSTART") eventHasStart = true;
      line.text.insert(name.size(), ";" + std::string(kLineParameter) + "=" + std::to_string(line.number));
    } else {
      continue;
    }
    kept.push_back(std::move(line));
  }
  if (kept.empty()) return Fail(problem, 1, "not an iCalendar file (no BEGIN:VCALENDAR)");
  if (!open.empty()) return Fail(problem, open.back().second, "BEGIN:" + open.back().first + " is never ended");
  lines->swap(kept);
  return true;
}

struct ComponentFree {
  void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using Component = std::unique_ptr<icalcomponent, ComponentFree>;

Component Parse(const std::vector<Line>& lines) {
  std::string text;
  for (const Line& line : lines) text += line.text + "\r\n";
  return Component(icalparser_parse_string(text.c_str()));
}

// The first error libical noted in `component` or the components inside
// it, without its "Removing entire property: ..." tail; empty when none.
std::string FirstError(icalcomponent* component) {
  if (icalproperty* error = icalcomponent_get_first_property(component, ICAL_XLICERROR_PROPERTY)) {
    std::string text = icalproperty_get_xlicerror(error);
    return text.substr(0, text.find(". Removing"));
  }
  for (icalcomponent* inner = icalcomponent_get_first_component(component, ICAL_ANY_COMPONENT); inner;
       inner = icalcomponent_get_next_component(component, ICAL_ANY_COMPONENT)) {
    std::string text = FirstError(inner);
    if (!text.empty()) return text;
  }
  return "";
}

// libical keeps going after an error and notes it in the component; the
// line to blame is the first one that fails on its own.
bool ReportError(const std::vector<Line>& lines, const std::string& firstError, IcalProblem* problem) {
  for (const Line& line : lines) {
    std::string name;
    ContentLineName(line.text, &name);
    if (name == "BEGIN" || name == "END") continue;
    Component alone = Parse({{"BEGIN:VCALENDAR", 0}, line, {"END:VCALENDAR", 0}});
    std::string error = alone ? FirstError(alone.get()) : "";
    if (!error.empty()) return Fail(problem, line.number, error);
  }
  return Fail(problem, 0, firstError);
}

void CollectEvents(icalcomponent* component, std::vector<icalcomponent*>* events) {
  if (icalcomponent_isa(component) == ICAL_VEVENT_COMPONENT) {
    events->push_back(component);
    return;
  }
  for (icalcomponent* inner = icalcomponent_get_first_component(component, ICAL_ANY_COMPONENT); inner;
       inner = icalcomponent_get_next_component(component, ICAL_ANY_COMPONENT))
    CollectEvents(inner, events);
}

int LineOf(icalproperty* property) {
  const char* number = icalproperty_get_parameter_as_string(property, kLineParameter);
  return number ? std::atoi(number) : 0;
}

// Days counted from 1 January 1970 in the Gregorian calendar, and back.
long DayNumber(int year, int month, int day) {
  year -= month <= 2;
  const long era = (year >= 0 ? year : year - 399) / 400;
  const long yearOfEra = year - era * 400;
  const long dayOfYear = (153L * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

icaltimetype DateOfDay(long number) {
  number += 719468;
  const long era = (number >= 0 ? number : number - 146096) / 146097;
  const long dayOfEra = number - era * 146097;
  const long yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const long shifted = (5 * dayOfYear + 2) / 153;
  icaltimetype date = icaltime_null_date();
  date.day = static_cast<int>(dayOfYear - (153 * shifted + 2) / 5 + 1);
  date.month = static_cast<int>(shifted < 10 ? shifted + 3 : shifted - 9);
  date.year = static_cast<int>(yearOfEra + era * 400 + (date.month <= 2));
  return date;
}

// The day of a date or date-time as written; false for no date or one
// libical let through although it does not exist (the 30th of February).
bool DayOf(const icaltimetype& time, long* day) {
  if (icaltime_is_null_time(time) || time.year < 1 || time.year > 9999 || time.month < 1 || time.month > 12 ||
      time.day < 1 || time.day > MonthLength(time.year, time.month - 1))
    return false;
  *day = DayNumber(time.year, time.month, time.day);
  return true;
}

long SecondOfDay(const icaltimetype& time) { return time.is_date ? 0 : time.hour * 3600L + time.minute * 60 + time.second; }

// Expands the events of one file into the days of one year.
class YearExpander {
 public:
  YearExpander(int year, std::vector<IcalDay>* days, IcalProblem* problem)
      : year_(year),
        first_(DayNumber(year, 1, 1)),
        last_(DayNumber(year, 12, 31)),
        days_(days),
        problem_(problem),
        deadline_(std::chrono::steady_clock::now() + kMaxExpansionTime) {}

  // An event with a RECURRENCE-ID replaces that occurrence of the event of
  // the same UID; the replaced days are noted before any event is expanded.
  bool NoteReplacement(icalcomponent* event) {
    icalproperty* property = icalcomponent_get_first_property(event, ICAL_RECURRENCEID_PROPERTY);
    if (!property) return true;
    long day;
    if (!DayOf(icalproperty_get_recurrenceid(property), &day))
      return Fail(problem_, LineOf(property), "RECURRENCE-ID is not a date");
    replaced_.insert({Uid(event), day});
    return true;
  }

  bool Add(icalcomponent* event, int beginLine) {
    if (icalcomponent_get_status(event) == ICAL_STATUS_CANCELLED) return true;
    icalproperty* dtstart = icalcomponent_get_first_property(event, ICAL_DTSTART_PROPERTY);
    const icaltimetype start = icalproperty_get_dtstart(dtstart);
    long startDay, lastDay;
    if (!DayOf(start, &startDay)) return Fail(problem_, LineOf(dtstart), "DTSTART is not a date");
    if (!LastDay(event, start, startDay, &lastDay)) return false;
    std::set<long> starts = {startDay};
    if (!AddRules(event, start, startDay, lastDay - startDay + 1, &starts) || !AddDates(event, &starts) ||
        !RemoveExceptions(event, &starts))
      return false;
    if (!icalcomponent_get_first_property(event, ICAL_RECURRENCEID_PROPERTY)) {
      const std::string uid = Uid(event);
      for (auto r = replaced_.lower_bound({uid, LONG_MIN}); r != replaced_.end() && r->first == uid; ++r)
        starts.erase(r->second);
    }
    return Emit(starts, lastDay - startDay + 1, Summary(event), beginLine);
  }

 private:
  // The last day an occurrence reaches, from DTEND or DURATION. An end is
  // exclusive: an all-day event ending on the 3rd, or a party ending at
  // midnight, is over before that day begins.
  bool LastDay(icalcomponent* event, const icaltimetype& start, long startDay, long* lastDay) {
    const long startSecond = SecondOfDay(start);
    long endSecond = startSecond;  // counted from the start day's midnight
    icalproperty* property;
    if ((property = icalcomponent_get_first_property(event, ICAL_DTEND_PROPERTY))) {
      const icaltimetype end = icalproperty_get_dtend(property);
      long endDay;
      if (!DayOf(end, &endDay)) return Fail(problem_, LineOf(property), "DTEND is not a date");
      endSecond = (endDay - startDay) * 86400 + SecondOfDay(end);
    } else if ((property = icalcomponent_get_first_property(event, ICAL_DURATION_PROPERTY))) {
      const icaldurationtype duration = icalproperty_get_duration(property);
      endSecond = startSecond + (duration.is_neg ? -1L : 1L) * (duration.weeks * 7L * 86400 + duration.days * 86400L +
                                                              duration.hours * 3600L + duration.minutes * 60L +
                                                              duration.seconds);
    }
    if (endSecond < startSecond) return Fail(problem_, LineOf(property), "the event ends before it starts");
    *lastDay = startDay + (endSecond > startSecond ? (endSecond - 1) / 86400 : 0);
    return true;
  }

  // The occurrences of the event's rules whose days reach into the year.
  bool AddRules(icalcomponent* event, const icaltimetype& start, long startDay, long span, std::set<long>* starts) {
    const long windowFirst = first_ - (span - 1);
    for (icalproperty* property = icalcomponent_get_first_property(event, ICAL_RRULE_PROPERTY); property;
         property = icalcomponent_get_next_property(event, ICAL_RRULE_PROPERTY)) {
      icalrecurrencetype rule = icalproperty_get_rrule(property);
      // Nothing after the year is wanted, so the year's end is the rule's end.
      long untilDay;
      if (!DayOf(rule.until, &untilDay) || untilDay > last_) {
        rule.until = DateOfDay(last_);
        rule.until.is_date = start.is_date;
        if (!start.is_date) {
          rule.until.hour = 23;
          rule.until.minute = 59;
          rule.until.second = 59;
        }
      }
      icalrecur_iterator* iterator = icalrecur_iterator_new(rule, start);
      if (!iterator) return Fail(problem_, LineOf(property), "a rule that cannot be repeated");
      // A rule without a count may start at the year; one with a count must
      // be counted from its first occurrence.
      if (rule.count == 0 && windowFirst > startDay) {
        icaltimetype from = start;
        const icaltimetype date = DateOfDay(windowFirst);
        from.year = date.year;
        from.month = date.month;
        from.day = date.day;
        icalrecur_iterator_set_start(iterator, from);
      }
      const bool ok = Iterate(iterator, windowFirst, LineOf(property), starts);
      icalrecur_iterator_free(iterator);
      if (!ok) return false;
    }
    return true;
  }

  bool Iterate(icalrecur_iterator* iterator, long windowFirst, int line, std::set<long>* starts) {
    for (long steps = 1;; ++steps) {
      if (steps > kMaxRuleSteps || ++fileSteps_ > kMaxFileSteps || std::chrono::steady_clock::now() > deadline_)
        return Fail(problem_, line,
                    "the rule repeats too often to expand up to the end of " + std::to_string(year_));
      long day;
      if (!DayOf(icalrecur_iterator_next(iterator), &day) || day > last_) return true;
      if (day >= windowFirst) starts->insert(day);
    }
  }

  bool AddDates(icalcomponent* event, std::set<long>* starts) {
    for (icalproperty* property = icalcomponent_get_first_property(event, ICAL_RDATE_PROPERTY); property;
         property = icalcomponent_get_next_property(event, ICAL_RDATE_PROPERTY)) {
      const icaldatetimeperiodtype date = icalproperty_get_rdate(property);
      long day;
      if (!DayOf(icaltime_is_null_time(date.time) ? date.period.start : date.time, &day))
        return Fail(problem_, LineOf(property), "RDATE is not a date");
      starts->insert(day);
    }
    return true;
  }

  // An exception removes every occurrence on its day: the times of a feed
  // are taken as written, and one day holds one line per event anyway.
  bool RemoveExceptions(icalcomponent* event, std::set<long>* starts) {
    for (icalproperty* property = icalcomponent_get_first_property(event, ICAL_EXDATE_PROPERTY); property;
         property = icalcomponent_get_next_property(event, ICAL_EXDATE_PROPERTY)) {
      long day;
      if (!DayOf(icalproperty_get_exdate(property), &day))
        return Fail(problem_, LineOf(property), "EXDATE is not a date");
      starts->erase(day);
    }
    return true;
  }

  static std::string Uid(icalcomponent* event) {
    const char* uid = icalcomponent_get_uid(event);
    return uid ? uid : "";
  }

  // The summary on one line: an events file has a line per event.
  static std::string Summary(icalcomponent* event) {
    icalproperty* property = icalcomponent_get_first_property(event, ICAL_SUMMARY_PROPERTY);
    const char* summary = property ? icalproperty_get_summary(property) : nullptr;
    std::string text = summary ? summary : "";
    size_t characters = 0;
    for (size_t i = 0; i < text.size(); ++i) {
      const unsigned char c = static_cast<unsigned char>(text[i]);
      if ((c & 0xC0) != 0x80 && ++characters > kMaxIcalText) {
        text.resize(i);
        break;
      }
      if (c < 32 || c == 127) text[i] = ' ';
    }
    const size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
  }

  bool Emit(const std::set<long>& starts, long span, const std::string& text, int line) {
    std::vector<int> change(last_ - first_ + 2);  // +1 where a run of days begins, -1 after it
    for (long start : starts) {
      const long from = std::max(start, first_), to = std::min(start + span - 1, last_);
      if (from > to) continue;
      ++change[from - first_];
      --change[to - first_ + 1];
    }
    int covering = 0;
    for (long day = first_; day <= last_; ++day) {
      if ((covering += change[day - first_]) == 0) continue;
      const icaltimetype date = DateOfDay(day);
      days_->push_back({date.month - 1, date.day, text, line});
      bytes_ += text.size() + 7;
    }
    if (bytes_ > kMaxDaysBytes)
      return Fail(problem_, 0, "the events of " + std::to_string(year_) + " are more than an events file holds");
    return true;
  }

  int year_;
  long first_, last_;  // the day numbers of 1 January and 31 December
  std::vector<IcalDay>* days_;
  IcalProblem* problem_;
  std::chrono::steady_clock::time_point deadline_;
  long fileSteps_ = 0;
  size_t bytes_ = 0;  // the texts of the days so far, with room for their dates
  std::set<std::pair<std::string, long>> replaced_;  // UIDs with the days of their replaced occurrences
};

}  // namespace

bool IcalendarDaysOfYear(const std::string& ics, int year, std::vector<IcalDay>* days, IcalProblem* problem) {
  icalerror_set_errors_are_fatal(0);
  std::vector<Line> lines;
  std::vector<int> eventLines;
  if (!Unfold(ics, &lines, problem) || !CheckStructure(&lines, &eventLines, problem)) return false;
  Component calendar = Parse(lines);
  if (!calendar) return Fail(problem, 0, "libical could not read the file");
  const std::string error = FirstError(calendar.get());
  if (!error.empty()) return ReportError(lines, error, problem);
  std::vector<icalcomponent*> events;
  CollectEvents(calendar.get(), &events);
  if (events.size() != eventLines.size()) return Fail(problem, 0, "libical read the events differently");
  YearExpander expander(year, days, problem);
  for (icalcomponent* event : events)
    if (!expander.NoteReplacement(event)) return false;
  for (size_t i = 0; i < events.size(); ++i)
    if (!expander.Add(events[i], eventLines[i])) return false;
  return true;
}
