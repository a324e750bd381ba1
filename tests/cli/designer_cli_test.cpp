// quernal-cli as a batch designer: pictures, fields and languages from the
// command line, and the help that explains them.
#include <sys/stat.h>

#include <string>
#include <vector>

#include "calendar/records.h"
#include "cli/cli_run.h"
#include "pictures/image_files.h"

namespace {

class DesignerCliTest : public CliTest {
 protected:
  // A picture file whose width tells it apart.
  std::string Picture(const std::string& name, int width, int bits = 24) {
    const std::string path = dir_.File(name);
    BlockHandle dib = MakePatternDib(width, 10, bits, width);
    EXPECT_TRUE(WriteBmpFile(path.c_str(), dib));
    GlobalBlockFree(dib);
    return path;
  }
  static std::string Width(int width) { return "\"Picture\": {\"width\": " + std::to_string(width) + ","; }
};

const char kImageLoadFailed[] = "There has been an error loading the image you requested.";

}  // namespace

TEST_F(DesignerCliTest, APhotoCalendarFromAFolderOfPictures) {
  ASSERT_EQ(mkdir(dir_.File("photos").c_str(), 0755), 0);
  ASSERT_EQ(mkdir(dir_.File("photos/zz.bmp").c_str(), 0755), 0);  // a folder is no picture
  for (int i = 13; i >= 0; --i) Picture("photos/p" + std::to_string(10 + i) + ".bmp", 20 + i, i == 3 ? 8 : 24);
  Picture("photos/.hidden.bmp", 99);
  WriteFile(dir_.File("photos/notes.txt"), "not a picture");
  const std::string cover = Picture("cover.bmp", 77), cal = dir_.File("cal.CLN");

  CliRun r = Cli("new --year 2027 --picture-dir " + Q(dir_.File("photos")) + " --cover-picture " + Q(cover) +
                 " --title 'F\xC3\xBCr Oma' -o " + Q(cal));
  ASSERT_EQ(r.status, 0) << r.err;
  // The first twelve by name, January first; the palette picture is warned about once.
  r.err = Cli("info " + Q(cal)).out;
  for (int month = 0; month < 12; ++month) EXPECT_TRUE(Has(r.err, Width(20 + month))) << month;
  EXPECT_FALSE(Has(r.err, Width(32)) || Has(r.err, Width(99)));
  EXPECT_TRUE(Has(r.err, "\"CoverPicture\": {\"width\": 77,"));
  EXPECT_TRUE(Has(r.err, "\"CoverPictureShowPicture\": 1,"));
  EXPECT_TRUE(Has(r.err, "\"CoverTitle\": \"F\xC3\xBCr Oma\","));
  EXPECT_EQ(Count(r.err, "\"PictureShowPicture\": 1,"), 12);
  r = Cli("new --picture-dir " + Q(dir_.File("photos")) + " -o " + Q(dir_.File("again.CLN")));
  EXPECT_EQ(Count(r.err, "has palette color"), 1) << r.err;
  EXPECT_TRUE(Has(r.err, "p13.bmp: warning: The image you have selected has palette color.")) << r.err;

  // A list of files fills the months from January; the others stay empty.
  const std::string two = dir_.File("two.CLN");
  ASSERT_EQ(Cli("new --pictures " + Q(Picture("b.bmp", 41)) + " " + Q(Picture("a.bmp", 40)) + " -o " + Q(two)).status, 0);
  r = Cli("info " + Q(two));
  EXPECT_LT(r.out.find(Width(41)), r.out.find(Width(40)));
  EXPECT_EQ(Count(r.out, "\"Picture\": null,"), 10);

  // Nothing is written when a picture cannot be read or an argument is wrong.
  WriteFile(dir_.File("photos/p00.bmp"), "BM broken");
  const std::string before = ReadFile(cal);
  const struct {
    std::string args;
    int status;
    std::string message;
  } refused[] = {
      {"--picture-dir " + Q(dir_.File("photos")), 1, std::string("p00.bmp: damaged: ") + kImageLoadFailed},
      {"--cover-picture " + Q(dir_.File("absent.png")), 1, "absent.png: cannot be read"},
      {"--picture-dir " + Q(dir_.File("none")), 1, "the folder cannot be read"},
      {"--pictures" + std::string(13 * 6, ' ').replace(0, 78, " a b c d e f g h i j k l m"), 2, "at most twelve"},
      {"--title '\xC5\x81\xC3\xB3\x64\xC5\xBA'", 2, "cannot hold (shown as ?): ?\xC3\xB3\x64?"},
      {"--title " + std::string(261, 'x'), 2, "at most 260 characters"},
      {"--locale pl_PL", 2, "\"pl_PL\" cannot be written in Windows-1252"},
  };
  for (const auto& c : refused) {
    r = Cli("new " + c.args + " -o " + Q(cal));
    EXPECT_EQ(r.status, c.status) << c.args;
    EXPECT_TRUE(Has(r.err, c.message)) << c.args << "\n" << r.err;
    EXPECT_TRUE(ReadFile(cal) == before) << c.args;
  }
}

TEST_F(DesignerCliTest, SetChangesNamedFieldsAndLeavesTheFileAloneWhenAnythingIsWrong) {
  const std::string cal = dir_.File("set.CLN"), photo = Picture("photo.bmp", 55);
  ASSERT_EQ(Cli("new --year 2028 --month 3 -o " + Q(cal)).status, 0);
  // In order: each row's change is seen by info afterwards; a refused row keeps the file as it was.
  const struct {
    std::string args;
    int status;
    std::string shown;  // in info's output afterwards, or in the error
  } steps[] = {
      {"DateBackColour=#FF8000 DateShadow=0 DateFontBold=400", 0, "\"DateBackColour\": 33023,"},  // March, opened on
      {"--page 0 LeftCaption='Caf\xC3\xA9 \xE2\x82\xAC' HeadBackColour=10,20,30", 0, "\"HeadBackColour\": 1971210,"},
      {"--months PageMargin=7", 0, "\"PageMargin\": 7,"},
      {"--cover CoverTitle=Hello CoverPictureBleed=1 --picture " + Q(photo), 0, "\"CoverPicture\": {\"width\": 55,"},
      {"--page 12 YagBackColour=255,0,0 Year=2030", 0, "\"YagBackColour\": 255,"},
      {"--page 5 --picture " + Q(photo), 0, "\"PictureShowPicture\": 1,"},
      {"--page 5 --no-picture", 0, "\"Picture\": null,"},
      {"--page 14 DateShadow=0", 2, "there is no page 14"},
      {"Nope=1", 2, "no field Nope on a month page"},
      {"--cover YagGutter=3", 2, "no field YagGutter on the cover"},
      {"DateShadow=2", 2, "DateShadow takes 0 or 1"},
      {"DateBackColour=#12345", 2, "DateBackColour takes a colour"},
      {"DateBackColour=1,2,256", 2, "DateBackColour takes a colour"},
      {"HeadFontBold=500", 2, "takes 400 (normal) or 700 (bold)"},
      {"PageMargin=-1", 2, "PageMargin takes a whole number"},
      {"Year=1200 --year-page", 2, "Year takes a year from 1583 to 2583"},
      {"RightCaption='\xC5\x81\xC3\xB3\x64\xC5\xBA'", 2, "RightCaption has a character Windows-1252 cannot hold"},
      {"RightCaption=" + std::string(2050, 'x'), 2, "RightCaption is longer than 2049"},
      {"Picture=0", 2, "Picture is kept by the program"},
      {"--year-page --picture " + Q(photo), 2, "the year page has no picture"},
      {"--year-page --fill-box", 2, "the year page has no picture"},
      {"--page 1 --picture " + Q(dir_.File("absent.jpg")), 1, "absent.jpg: cannot be read"},
      {"--page 1 DateRound=3 DateShadow=x", 2, "DateShadow takes 0 or 1"},  // the good field is not kept either
  };
  for (const auto& step : steps) {
    const std::string before = ReadFile(cal);
    CliRun r = Cli("set " + Q(cal) + " " + step.args);
    EXPECT_EQ(r.status, step.status) << step.args << "\n" << r.err;
    if (step.status) {
      EXPECT_TRUE(Has(r.err, step.shown)) << step.args << "\n" << r.err;
      EXPECT_TRUE(ReadFile(cal) == before) << step.args;
    } else {
      EXPECT_TRUE(Has(Cli("info " + Q(cal)).out, step.shown)) << step.args;
    }
  }
  const std::string info = Cli("info " + Q(cal)).out;
  EXPECT_TRUE(Has(info, "\"LeftCaption\": \"Caf\xC3\xA9 \xE2\x82\xAC\","));
  EXPECT_EQ(Count(info, "\"PageMargin\": 7,"), 12);
  EXPECT_EQ(Count(info, "\"DateBackColour\": 33023,"), 1);
  EXPECT_TRUE(Has(info, "\"Year\": 2030,"));
  EXPECT_FALSE(Has(info, "\"DateRound\": 3,"));
  // A calendar with a damaged picture is left for resave to repair.
  std::string bytes = ReadFile(cal);
  bytes[kHeaderSize + 30] ^= 0x33;  // inside the cover's picture stream
  WriteFile(cal, bytes);
  const CliRun r = Cli("set " + Q(cal) + " PageMargin=9");
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.err, "nothing changed; `quernal-cli resave` repairs")) << r.err;
  EXPECT_TRUE(ReadFile(cal) == bytes);
}

TEST_F(DesignerCliTest, DayAndMonthNamesComeFromTheLocale) {
  const struct {
    const char* locale;
    int status;
    std::vector<std::string> shown;  // settings lines (Windows-1252), or the refusal
  } cases[] = {
      {"de_DE", 0, {"MonthMarch = M\xE4rz\n", "MonthDecember = Dezember\n", "DaySunday = Sonntag\n"}},
      {"de_DE.UTF-8", 0, {"MonthMarch = M\xE4rz\n"}},
      {"pl_PL", 2, {"\"pl_PL\" cannot be written in Windows-1252", "stycze\xC5\x84"}},
      {"xx_YY", 2, {"this system has no locale \"xx_YY\""}},
  };
  for (const auto& c : cases) {
    CliRun r = Cli(std::string("settings --locale ") + c.locale);
    EXPECT_EQ(r.status, c.status) << c.locale;
    for (const std::string& shown : c.shown) EXPECT_TRUE(Has(c.status ? r.err : r.out, shown)) << c.locale << shown;
  }
  // The names head the pages drawn, and events files are read with them.
  WriteFile(dir_.File("General.CDF"), "M\xE4r01 Fr\xFChlingsanfang\nMAR02 English key\n");
  CliRun r = Cli("render --new --year 2027 --page 2 --locale de_DE --app-dir " + Q(dir_.path()) +
                 " --format ops -o " + Q(dir_.File("march.ops")));
  ASSERT_EQ(r.status, 0) << r.err;
  const std::string ops = ReadFile(dir_.File("march.ops"));
  EXPECT_TRUE(Has(ops, "\"M\xC3\xA4rz\"")) << ops.substr(0, 2000);  // the ops are UTF-8
  EXPECT_TRUE(Has(ops, "\"Fr\xC3\xBChlingsanfang\""));
  EXPECT_FALSE(Has(ops, "English key"));
  // Imported holidays are written under the names they will be read with.
  WriteFile(dir_.File("h.ics"), "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:1\r\nDTSTART;VALUE=DATE:20271224\r\n"
                                "SUMMARY:Heiligabend\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
  r = Cli("events import " + Q(dir_.File("h.ics")) + " --year 2027 --locale de_DE -o " + Q(dir_.File("Fest.CDF")));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(Has(ReadFile(dir_.File("Fest.CDF")), "\nDez24 Heiligabend\n"));
}

TEST_F(DesignerCliTest, HelpExplainsEachCommandAndAProgressLineShowsOnlyOnATerminal) {
  CliRun r = Cli("help set");
  ASSERT_EQ(r.status, 0);
  for (const char* option : {"--page N", "--months", "--year-page", "--cover", "--picture F", "--no-picture"})
    EXPECT_TRUE(Has(r.out, std::string("\n  ") + option + "\n      ")) << option;
  EXPECT_EQ(Cli("new -o x.CLN --help").out, Cli("help new").out);
  EXPECT_EQ(Cli("help frobnicate").status, 2);
  EXPECT_EQ(Cli("--version").out.substr(0, 12), "quernal-cli ");
  r = Cli("new --frob");
  EXPECT_TRUE(Has(r.err, "unknown option --frob (quernal-cli help new lists them)"));

  ASSERT_EQ(mkdir(dir_.File("photos").c_str(), 0755), 0);
  for (int i = 0; i < 3; ++i) Picture("photos/" + std::to_string(i) + ".bmp", 30 + i);
  const std::string make = "new --picture-dir " + Q(dir_.File("photos")) + " -o " + Q(dir_.File("p.CLN"));
  r = Cli(make, "QUERNAL_PROGRESS_AFTER=0 ");
  EXPECT_TRUE(r.err.empty()) << r.err;
  r = Shell("script -qec \"QUERNAL_PROGRESS_AFTER=0 " QUERNAL_CLI " " + make + "\" /dev/null");
  EXPECT_EQ(r.status, 0);
  EXPECT_TRUE(Has(r.out, "reading pictures 3/3")) << r.out;
  EXPECT_TRUE(Has(r.out, "saving the calendar")) << r.out;
}

TEST_F(DesignerCliTest, TheSampleCalendarIsFinished) {
  const CliRun r = Cli("info " QUERNAL_SAMPLE);
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(Count(r.out, "\"Picture\": {\"width\": 1500, \"height\": 1000, \"bits\": 24,"), 12);
  EXPECT_TRUE(Has(r.out, "\"CoverPicture\": {\"width\": 1500,"));
  EXPECT_TRUE(Has(r.out, "\"CoverTitle\": \"A year in the hills\","));
  EXPECT_TRUE(Has(r.out, "\"UseCurrentYear\": 1,"));
  EXPECT_TRUE(Has(r.out, "\"CurrentPage\": 13,"));
  EXPECT_EQ(Count(r.out, "\"LeftCaption\": \"\","), 0);
}
