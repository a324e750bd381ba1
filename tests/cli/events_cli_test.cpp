// quernal-cli events: iCalendar files as people download them, written as
// events files and read back the way the program shows them.
#include "cli/cli_run.h"

namespace {

class EventsCliTest : public CliTest {
 protected:
  // A calendar of `events`, its lines ended by CR LF as the format wants.
  static std::string Ics(const std::string& events) {
    std::string text = "BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//Test//EN\n" + events + "END:VCALENDAR\n", crlf;
    for (char c : text) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return crlf;
  }
  static std::string Event(const std::string& properties) { return "BEGIN:VEVENT\n" + properties + "END:VEVENT\n"; }
  CliRun Import(const std::string& ics, int year = 2027) {
    WriteFile(dir_.File("feed.ics"), ics);
    return Cli("events import " + Q(dir_.File("feed.ics")) + " --year " + std::to_string(year) + " -o " + Q(Cdf()));
  }
  std::string List(int year = 2027) { return Cli("events list " + Q(Cdf()) + " --year " + std::to_string(year)).out; }
  std::string Cdf() { return dir_.File("Holidays.CDF"); }
  static constexpr char kHeading[] = "; the events of 2027 in feed.ics\n";
};

TEST_F(EventsCliTest, NationalHolidaysRepeatByTheirRulesWithinTheYear) {
  // (BYDAY's weekdays are the iCalendar library's; First Friday stands for them.)
  const std::string ics = Ics(Event("DTSTART;VALUE=DATE:19900101\nRRULE:FREQ=YEARLY\nSUMMARY:New Year's Day\n") +
                        Event("DTSTART;VALUE=DATE:20000704\nRRULE:FREQ=YEARLY\nEXDATE;VALUE=DATE:20270704\n"
                              "SUMMARY:Not this year\n") +
                        Event("DTSTART;VALUE=DATE:20200301\nRRULE:FREQ=YEARLY;COUNT=7\nSUMMARY:Counted out\n") +
                        Event("DTSTART;VALUE=DATE:20200302\nRRULE:FREQ=YEARLY;COUNT=8\nSUMMARY:Last count\n") +
                        Event("DTSTART;VALUE=DATE:20200303\nRRULE:FREQ=YEARLY;UNTIL=20261231\nSUMMARY:Ended\n") +
                        // Every day from 1800 on: bounded by the year, not by its end.
                        Event("DTSTART;VALUE=DATE:18000101\nRRULE:FREQ=DAILY;BYMONTH=9;BYMONTHDAY=9\n"
                              "SUMMARY:Nine\n") +
                        Event("DTSTART;VALUE=DATE:20260101\nRRULE:FREQ=MONTHLY;BYDAY=1FR;BYMONTH=1,7\n"
                              "SUMMARY:First Friday\n") +
                        // Moving feasts: a list of dates, and an event of its own.
                        Event("DTSTART;VALUE=DATE:20260406\nRDATE;VALUE=DATE:20270329,20280417\n"
                              "SUMMARY:Easter Monday\n") +
                        Event("DTSTART;VALUE=DATE:20270326\nSUMMARY:Good Friday\n") +
                        // A moved occurrence and a cancelled one of a series.
                        Event("UID:fair\nDTSTART:20250610T100000\nRRULE:FREQ=YEARLY\nSUMMARY:Fair\n") +
                        Event("UID:fair\nRECURRENCE-ID:20270610T100000\nDTSTART:20270612T100000\nSUMMARY:Fair\n") +
                        Event("UID:fair\nRECURRENCE-ID:20260610T100000\nSTATUS:CANCELLED\nDTSTART:20260610T100000\n"));
  CliRun r = Import(ics);
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(ReadFile(Cdf()), std::string(kHeading) +
                                 "Jan01 New Year's Day\nJan01 First Friday\nMar02 Last count\nMar26 Good Friday\n"
                                 "Mar29 Easter Monday\nJun12 Fair\nJul02 First Friday\nSep09 Nine\n");
  // The program shows the first event of a day only.
  EXPECT_EQ(List(), "2027-01-01 New Year's Day\n2027-03-02 Last count\n2027-03-26 Good Friday\n"
                    "2027-03-29 Easter Monday\n2027-06-12 Fair\n2027-07-02 First Friday\n2027-09-09 Nine\n");
  // The counted and ended rules still reach 2026, the exception does not.
  ASSERT_EQ(Import(ics, 2026).status, 0);
  EXPECT_EQ(List(2026), "2026-01-01 New Year's Day\n2026-01-02 First Friday\n2026-03-01 Counted out\n"
                        "2026-03-02 Last count\n2026-03-03 Ended\n2026-04-06 Easter Monday\n"
                        "2026-07-03 First Friday\n2026-07-04 Not this year\n2026-09-09 Nine\n");
}

TEST_F(EventsCliTest, RangesGiveAnEventOnEachOfTheirDaysInTheYear) {
  CliRun r = Import(Ics(Event("DTSTART;VALUE=DATE:20261221\nDTEND;VALUE=DATE:20270103\nSUMMARY:Christmas break\n") +
                        Event("DTSTART;VALUE=DATE:20270329\nDURATION:P3D\nSUMMARY:Easter break\n") +
                        Event("DTSTART;TZID=Europe/Berlin:20270601T220000\nDTEND;TZID=Europe/Berlin:20270602T000000\n"
                              "SUMMARY:Till midnight\n") +
                        Event("DTSTART:20270701T230000Z\nDURATION:PT2H\nSUMMARY:Past midnight\n") +
                        Event("DTSTART;VALUE=DATE:20271231\nDTEND;VALUE=DATE:20280110\nSUMMARY:Winter\n") +
                        Event("DTSTART;VALUE=DATE:20271020\nDTEND;VALUE=DATE:20271022\n"
                              "RRULE:FREQ=WEEKLY;COUNT=2\nSUMMARY:Autumn\n")));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(List(), "2027-01-01 Christmas break\n2027-01-02 Christmas break\n2027-03-29 Easter break\n"
                    "2027-03-30 Easter break\n2027-03-31 Easter break\n2027-06-01 Till midnight\n"
                    "2027-07-01 Past midnight\n2027-07-02 Past midnight\n2027-10-20 Autumn\n2027-10-21 Autumn\n"
                    "2027-10-27 Autumn\n2027-10-28 Autumn\n2027-12-31 Winter\n");
}

TEST_F(EventsCliTest, TextsAreUnfoldedUnescapedAndWrittenInWindows1252) {
  CliRun r = Import(Ics(Event("DTSTART;VALUE=DATE:20270105\nSUMMARY:Caf\xC3\xA9\\, tea\\; \\\\ and \\ncake \xE2\x82\xAC\n") +
                        Event("DTSTART;VALUE=DATE:20270106\nSUMMARY:A long holiday na\n me written on two lines\n") +
                        Event("DTSTART;VALUE=DATE:20270107\nSUMMARY:\xE6\x98\xA5\xE8\x8A\x82 Spring\n") +
                        Event("DTSTART;VALUE=DATE:20270108\n") + Event("DTSTART;VALUE=DATE:20270109\nSUMMARY:" +
                                                                      std::string(2000, 'x') + "\n")));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(ReadFile(Cdf()), std::string(kHeading) + "Jan05 Caf\xE9, tea; \\ and  cake \x80\n"
                                 "Jan06 A long holiday name written on two lines\nJan07 ?? Spring\nJan09 " +
                                 std::string(1016, 'x') + "\n");
  EXPECT_TRUE(Has(r.err, "line 13: \"\xE6\x98\xA5\xE8\x8A\x82 Spring\" has characters Windows-1252 lacks")) << r.err;
  EXPECT_TRUE(Has(r.err, "line 17: an event without SUMMARY is left out")) << r.err;
  EXPECT_TRUE(Has(List(), "2027-01-05 Caf\xC3\xA9, tea; \\ and  cake \xE2\x82\xAC\n2027-01-06 A long"));
}

TEST_F(EventsCliTest, BrokenFilesAreReportedByLineAndWriteNothing) {
  const std::string day = "DTSTART;VALUE=DATE:20270101\nSUMMARY:x\n";
  const struct {
    std::string ics;
    std::string error;
  } cases[] = {
      {"Just some text\n", "line 1: not a line of the form NAME:value"},
      {"", "line 1: not an iCalendar file"},
      {Ics(Event("DTSTART:garbage\n")), "line 5: Can't parse as DATE-TIME value in DTSTART property"},
      {Ics(Event("SUMMARY:no date\n")), "line 4: an event without DTSTART"},
      {Ics(Event("DTSTART;VALUE=DATE:20270230\n")), "line 5: DTSTART is not a date"},
      {Ics(Event(day + "DTEND;VALUE=DATE:20261231\n")), "line 7: the event ends before it starts"},
      {Ics(Event(day + "RDATE;VALUE=DATE:20270105,20271301\n")), "line 7: RDATE is not a date"},
      {"BEGIN:VCALENDAR\nBEGIN:VEVENT\n" + day, "line 2: BEGIN:VEVENT is never ended"},
      {Ics("BEGIN:VEVENT\n" + day + "END:VTODO\n"), "line 7: END:VEVENT expected"},
      {" \r\n" + Ics(Event(day)), "line 1: a continued line with no line before it"},
      // Rules without an end are bounded by the year, and by a count of steps within it.
      {Ics(Event(day + "RRULE:FREQ=SECONDLY\n")), "line 7: the rule repeats too often to expand up to the end of 2027"},
      {Ics(Event(day + "RRULE:FREQ=YEARLY;BYMONTH=13\n")), "line 7: a rule that cannot be repeated"},
  };
  WriteFile(Cdf(), "JAN01 Kept\n");
  for (const auto& c : cases) {
    CliRun r = Import(c.ics);
    EXPECT_EQ(r.status, 1) << c.error;
    EXPECT_TRUE(Has(r.err, "feed.ics: " + c.error)) << r.err;
    EXPECT_EQ(ReadFile(Cdf()), "JAN01 Kept\n");
  }
  // (A broken file is refused before anything is written; that a failed
  // write leaves no temporary file is ReplacingFile's unit test.)
  // A good file replaces the list and keeps the one before as the backup.
  ASSERT_EQ(Import(Ics(Event(day))).status, 0);
  EXPECT_EQ(ReadFile(dir_.File("Holidays.BAK")), "JAN01 Kept\n");
  // A file read in pieces of 64 KiB is read to its last byte.
  const std::string whole = Ics(Event(day)), last = "END:VCALENDAR";
  std::string padded = whole.substr(0, whole.size() - last.size() - 2) + "X-PAD:";
  padded += std::string(65537 - padded.size() - 2 - last.size(), 'x') + "\r\n" + last;
  EXPECT_EQ(Import(padded).status, 0) << padded.size();
  // A list that is not there is said so.
  CliRun r = Cli("events list " + Q(dir_.File("Absent.CDF")));
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.err, "Absent.CDF: No such file or directory")) << r.err;
}

}  // namespace
