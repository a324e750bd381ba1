// quernal-cli driven as a user drives it: a process with arguments, its
// output and its exit code.
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "calendar/calendar_file.h"
#include "cli/cli_run.h"
#include "config/settings.h"

TEST_F(CliTest, NewWritesAFreshCalendarFromTheSettingsOfTheConfigFolder) {
  TempDir config;
  WriteFile(config.File("QUERNL.INI"), "[Quernal]\nDateFontSize = 42\nDaysName = Feiertage\nYagRound = 3\n");
  std::string file = dir_.File("2031.CLN");
  CliRun r = Cli("new --year 2031 --month 12 --config " + Q(config.path()) + " -o " + Q(file));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(ReadFile(file).size(), 70139u);
  r = Cli("info " + Q(file));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out.substr(0, 14), "{\n  \"header\": ");
  for (const char* shown : {"\"Year\": 2031,", "\"CurrentPage\": 11,", "\"DateFontSize\": 42,",
                            "\"DaysName\": \"Feiertage\",", "\"YagRound\": 3,"})
    EXPECT_TRUE(Has(r.out, shown)) << shown;
  EXPECT_FALSE(Has(r.out, "Reserved"));
}

// Every command refuses what it cannot do, with exit 2 (1 for a file that is
// not there), and writes nothing.
TEST_F(CliTest, WrongArgumentsAreRefusedAndWriteNothing) {
  const std::string cal = " -o " + Q(dir_.File("a.CLN")), png = " -o " + Q(dir_.File("x.png")),
                    cdf = " -o " + Q(dir_.File("Holidays.CDF")), ics = Q(dir_.File("feed.ics"));
  WriteFile(dir_.File("feed.ics"), "BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n");
  std::vector<std::pair<std::string, int>> cases = {
      {"frobnicate", 2}, {"info", 2}, {"new --year 1200" + cal, 2}, {"new --month 13" + cal, 2}, {"new --year 2026", 2},
      {"resave a.CLN --level 0" + cal, 2},
      {"render --new --format gif" + png, 2}, {"render --new --page 14 --format png" + png, 2},
      {"render --new --page 1 --all --format png" + png, 2}, {"render a.CLN --new --format png" + png, 2},
      {"render a.CLN --year 2026 --format png" + png, 2}, {"render --new --width 700 --format png" + png, 2},
      {"render --new --paper a5 --format png" + png, 2}, {"render --new --format png", 2},
      {"render --new --bleed 3 --format png" + png, 2}, {"render --new --crop-marks --format png" + png, 2},
      {"render --new --screen --crop-marks --format pdf" + png, 2},
      {"render --new --booklet --halves upper --format pdf" + png, 2},
      {"render " + Q(dir_.File("absent.CLN")) + " --format png" + png, 1},
      {"events", 2}, {"events frobnicate", 2}, {"events import " + ics + cdf, 2},
      {"events import " + ics + " --year 2027", 2}, {"events import " + ics + " --year 99" + cdf, 2},
      {"events import " + ics + " --year 2027 -o " + Q(dir_.File("x.txt")), 2},
      {"events import " + ics + " --year 2027 -o " + Q(dir_.File("CON.CDF")), 2}, {"events list", 2},
      {"events list " + ics, 2}, {"events import " + Q(dir_.File("absent.ics")) + " --year 2027" + cdf, 1},
  };
  for (const char* bleed : {"20.5", "-1", "3.", ".5", "3mm", "1e1", ""})
    cases.push_back({std::string("render --new --bleed '") + bleed + "' --format pdf" + png, 2});
  for (const auto& c : cases) EXPECT_EQ(Cli(c.first).status, c.second) << c.first;
  for (const char* file : {"a.CLN", "x.png", "Holidays.CDF", "x.txt"}) EXPECT_FALSE(FileExists(dir_.File(file))) << file;
}

TEST_F(CliTest, InfoShowsEventsPicturesAndTextsInUtf8) {
  // A calendar made by the library, with a picture and a caption in Windows-1252.
  const std::string file = SavedCalendar("events.CLN", 2024, 1, 30, [](MonthPage* feb) {
    std::strcpy(feb->LeftCaption, "Caf\xE9 \x80 \"quoted\"\nnext");
  });

  TempDir app;
  WriteFile(app.File("General.CDF"), "FEB05 Party\nFEB29 Leap day\nFEB30 Never\nMAR01 Spring\n");
  CliRun r = Cli("info " + Q(file) + " --app-dir " + Q(app.path()));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(Has(r.out, "\"LeftCaption\": \"Caf\xC3\xA9 \xE2\x82\xAC \\\"quoted\\\"\\nnext\","));
  EXPECT_TRUE(Has(r.out, "\"Picture\": {\"width\": 30, \"height\": 20, \"bits\": 8, \"bytes\": 1704},"));
  EXPECT_TRUE(Has(r.out, "\"Events\": {\"days\": {\n        \"5\": \"Party\",\n        \"29\": \"Leap day\"\n      }},"));
  EXPECT_TRUE(Has(r.out, "\"Events\": {\"days\": {}},")) << "January's list has no day";
  EXPECT_FALSE(Has(r.out, "Never")) << "2024 has no 30 February";
  EXPECT_TRUE(Has(r.out, "\"1\": \"Spring\""));
  // The summary counts the days with an event, the 1st among them.
  r = Cli("summary " + Q(file) + " --app-dir " + Q(app.path()));
  EXPECT_TRUE(Has(r.out, "  March      no picture, events \"General\": 1 this month\n")) << r.out;

  // Without the events file every page says null.
  r = Cli("info " + Q(file) + " --app-dir " + Q(dir_.path()));
  EXPECT_TRUE(Has(r.out, "\"Events\": null,"));
  EXPECT_FALSE(Has(r.out, "\"days\""));
}

// Damaged files are reported, or repaired by resave, which writes its
// streams at the level asked (that a level gives the same bytes again is
// CalendarFile's unit test).
TEST_F(CliTest, DamagedFilesAreReportedOrRepairedAndResaveRecompresses) {
  // (A file that is no calendar at all: AFifoOrADeviceIsRefusedWithoutWaiting
  // has info refuse one with exit 1 and the message.)
  const std::string file = SavedCalendar("damaged.CLN", 2026, 0, 50);
  std::string bytes = ReadFile(file);
  bytes[kHeaderSize + kMonthPageSize + 30] ^= 0x33;  // inside January's picture stream
  WriteFile(file, bytes);

  CliRun r = Cli("info " + Q(file));
  EXPECT_EQ(r.status, 0);
  EXPECT_TRUE(Has(r.err, "a damaged picture was skipped"));
  EXPECT_TRUE(Has(r.out, "\"Picture\": null,"));

  std::string repaired = dir_.File("repaired.CLN");
  r = Cli("resave " + Q(file) + " -o " + Q(repaired));
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(ReadFile(repaired).size(), 70139u);
  r = Cli("info " + Q(repaired));
  EXPECT_TRUE(r.err.empty()) << r.err;

  SavedCalendar("in.CLN", 2026, 0, 400);
  std::string fast = dir_.File("fast.CLN"), small = dir_.File("small.CLN");
  ASSERT_EQ(Cli("resave " + Q(dir_.File("in.CLN")) + " -o " + Q(fast) + " --level 1").status, 0);
  ASSERT_EQ(Cli("resave " + Q(fast) + " -o " + Q(small) + " --level 9").status, 0);
  EXPECT_LT(ReadFile(small).size(), ReadFile(fast).size());
}

TEST_F(CliTest, RunningOutOfMemoryIsNotDamageAndTheCapIsDamage) {
  // Two sound pictures of 300 MiB each in a file of a few hundred kilobytes.
  uint32_t size;
  const std::string stream = BlankPictureStream(10240, 10240, &size);
  const std::string file = dir_.File("big.CLN");
  WriteFile(file, CalendarFileWithPictures(2, stream, size));
  // With room for one picture only, the load fails with the memory message
  // instead of skipping the second one, and resaving in place keeps the file.
  CliRun r = Cli("resave " + Q(file) + " -o " + Q(file), "ulimit -v 600000;");
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.err, "There has been an error allocating memory.")) << r.err;
  EXPECT_FALSE(Has(r.err, "damaged")) << r.err;
  EXPECT_EQ(ReadFile(file), CalendarFileWithPictures(2, stream, size));

  // Thirteen sound 511 MiB pictures in a file of a few megabytes: the first
  // three fit under the cap of 1.5 GiB for all pictures together, the other
  // ten are damaged records.
  const std::string big = BlankPictureStream(16384, 10900, &size);
  ASSERT_LE(size, kMaxPictureBytes);
  WriteFile(file, CalendarFileWithPictures(13, big, size));
  r = Cli("summary " + Q(file));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(Count(r.err, "damaged picture was skipped"), 10) << r.err;
}

TEST_F(CliTest, SettingsPrintsWhatTheProgramWouldWrite) {
  TempDir config;
  WriteFile(config.File("mine.ini"), "CapFontName = TIMES\nMenuItem = C:\\x.CLN\nPatchLevel = 1\n");
  CliRun r = Cli("settings --ini " + Q(config.File("mine.ini")));
  ASSERT_EQ(r.status, 0);
  EXPECT_TRUE(Has(r.out, "\nCapFontName = TIMES\n"));
  EXPECT_TRUE(Has(r.out, "\nApplicationPath = \n"));
  EXPECT_EQ(r.out.substr(r.out.size() - 44), ";----- Menu items ------\n[QuernalMenuItems]\n");
  EXPECT_EQ(Cli("settings --ini " + Q(config.File("absent.ini"))).status, 1);
}

// What is opened for reading is never waited on, nor read without end: a FIFO
// given as a picture or a calendar, or lying in the program's folder as a
// page's events file, is refused at once, and a link to /dev/zero as an
// events file loads no list. `timeout` ends a command that waits (status
// 124), so a hang fails the test instead of stalling it.
TEST_F(CliTest, AFifoOrADeviceIsRefusedWithoutWaiting) {
  const std::string fifo = dir_.File("fifo.png"), cal = dir_.File("cal.CLN");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0644), 0);
  ASSERT_EQ(Cli("new --year 2027 -o " + Q(cal)).status, 0);
  ASSERT_EQ(Cli("set " + Q(cal) + " --page 4 DaysName=Zero").status, 0);
  const std::string waitAtMost = "timeout 20 ";
  const struct {
    std::string args;
    const char* says;
  } refused[] = {
      {"new --year 2027 --pictures " + Q(fifo) + " -o " + Q(dir_.File("new.CLN")), "fifo.png: cannot be read"},
      {"info " + Q(fifo), kLoadFailedMessage},
      {"settings --ini " + Q(fifo), "fifo.png: not a regular file"},
      {"events import " + Q(fifo) + " --year 2027 -o Fifo.CDF", "fifo.png: not a regular file"},
  };
  for (const auto& c : refused) {
    const CliRun r = Cli(c.args, waitAtMost);
    EXPECT_EQ(r.status, 1) << c.args << "\n" << r.err;
    EXPECT_TRUE(Has(r.err, c.says)) << r.err;
    EXPECT_EQ(Count(r.err, "\n"), 1) << "and nothing more:\n" << r.err;
  }
  EXPECT_FALSE(FileExists(dir_.File("new.CLN")));

  TempDir app;
  ASSERT_EQ(mkfifo(app.File("General.CDF").c_str(), 0644), 0);
  std::filesystem::create_symlink("/dev/zero", app.File("Zero.CDF"));
  const CliRun r = Cli("info " + Q(cal) + " --app-dir " + Q(app.path()), waitAtMost);
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(Has(r.out, "\"DaysName\": \"Zero\",")) << r.out;
  EXPECT_FALSE(Has(r.out, "\"days\"")) << "no page has a list";
}
