#include <cstring>
#include <filesystem>
#include <string>

#include "calendar/event_editing.h"
#include "calendar/event_list.h"
#include "config/settings.h"
#include "test_support.h"

namespace {

class EventListTest : public QuernalTest {
 protected:
  BlockHandle Load(const std::string& text) {
    WriteFile(dir_.File("General.CDF"), text);
    return LoadEventList("General");
  }
  // The text FindEvent gives, or "<none>".
  static std::string Find(BlockHandle list, int month, int day) {
    char text[1024] = "stale";
    int found = FindEvent(text, sizeof text, list, month, day - 1);
    if (!found) {
      EXPECT_STREQ(text, "") << "a miss leaves the text empty";
    }
    return found ? text : "<none>";
  }
  static std::vector<std::string> Lines(BlockHandle list) {
    std::vector<std::string> lines;
    ForEachEventLine(list, [&](const char* line) { lines.push_back(line); });
    return lines;
  }
};

}  // namespace

TEST_F(EventListTest, LinesAreKeptCutAtTheirFirstControlCharacterAndCommentsGo) {
  BlockHandle list = Load("; a comment\n   ;indented comment\nJAN05 Party\r\n  FEB02 Indented\nMAR03 Tab\tcut\n");
  ASSERT_NE(list, 0u);
  EXPECT_EQ(Lines(list), (std::vector<std::string>{"JAN05 Party", "  FEB02 Indented", "MAR03 Tab"}));
  GlobalBlockFree(list);
  list = Load(";nothing here\n; still nothing\n");
  ASSERT_NE(list, 0u) << "comments only give an empty list";
  EXPECT_TRUE(Lines(list).empty());
  EXPECT_EQ(Find(list, 0, 1), "<none>");
  GlobalBlockFree(list);
  EXPECT_EQ(LoadEventList("Missing"), 0u) << "no file gives none";
}

TEST_F(EventListTest, FindEventMatchesMonthAndDayWithoutRegardToCase) {
  // Long lines are read in pieces of 1023: the rest reads as a line of its own.
  BlockHandle list = Load("jan05 lower\nJAN05 Second on the same day\nDEC31 Year's end\n"
                          "  FEB02 Indented never matches\nMAR07\nMAR0812\nJAN1x Bad\nAPR01 " +
                          std::string(1017, 'x') + "FEB01 From the second piece\n");
  EXPECT_EQ(Find(list, 0, 5), "lower");
  EXPECT_EQ(Find(list, 11, 31), "Year's end");
  EXPECT_EQ(Find(list, 1, 2), "<none>");
  EXPECT_EQ(Find(list, 2, 7), "") << "a line without text is an event without text";
  EXPECT_EQ(Find(list, 2, 8), "2") << "the separator is any character";
  EXPECT_EQ(Find(list, 3, 1), std::string(1017, 'x'));
  EXPECT_EQ(Find(list, 1, 1), "From the second piece");
  const std::pair<int, int> misses[] = {{0, 6}, {12, 5}, {-1, 5}};
  for (const auto& [month, day] : misses) EXPECT_EQ(Find(list, month, day), "<none>") << month << " " << day;
  EXPECT_EQ(Find(0, 0, 5), "<none>");
  char small[4];
  EXPECT_EQ(FindEvent(small, sizeof small, list, 11, 30), 1);
  EXPECT_STREQ(small, "Yea") << "the text is cut to the buffer";
  GlobalBlockFree(list);
}

TEST_F(EventListTest, WritingKeepsExactlyOnePreviousVersion) {
  EXPECT_EQ(FormatEventLine({11, 31, ""}), "Dec31 \n");
  std::strcpy(Settings.MonthMay, "Ma");
  EXPECT_EQ(FormatEventLine({4, 1, "x"}), "0Ma01 x\n");
  ResetSettings();
  std::strcpy(Settings.ApplicationPath, dir_.path().c_str());

  ASSERT_TRUE(WriteEventList("Family", {{0, 5, "First"}}));
  EXPECT_FALSE(FileExists(dir_.File("Family.BAK")));
  ASSERT_TRUE(WriteEventList("Family", {{0, 5, "Second"}, {6, 4, "Picnic"}}));
  ASSERT_TRUE(WriteEventList("Family", {{0, 5, "Third"}}));
  EXPECT_EQ(ReadFile(dir_.File("Family.CDF")), AsTextFile("Jan05 Third\n"));
  EXPECT_EQ(ReadFile(dir_.File("Family.BAK")), AsTextFile("Jan05 Second\nJul04 Picnic\n"));
}

// The events dialog lists only the lines that name a month by the names in
// the settings; OK writes its entries, and what it could not list stays.
TEST_F(EventListTest, MonthNamesFromTheSettingsMakeTheKeysAndAnUnchangedListIsWrittenBackWhole) {
  // Four months renamed in Setup, as a German user does.
  std::strcpy(Settings.MonthMarch, "M\xE4rz");
  std::strcpy(Settings.MonthMay, "Mai");
  std::strcpy(Settings.MonthOctober, "Oktober");
  std::strcpy(Settings.MonthDecember, "Dezember");
  // The keys are the names' first three letters; only ASCII letters fold.
  BlockHandle list = Load("M\xC4R14 Capital umlaut\nM\xE4R14 Pi\nMAI01 Feiertag\nMAR14 English\n");
  EXPECT_EQ(Find(list, 2, 14), "Pi");
  EXPECT_EQ(Find(list, 4, 1), "Feiertag");
  GlobalBlockFree(list);
  const struct {
    const char* file;
    const char* written;
  } cases[] = {
      // Written with the English names: 4 of the 11 events are listed.
      {"; Holidays\n;\n\n  ; by hand\nJan01 New Year\nFeb14 Valentine\nMar17 Patrick\nApr01 Fools\nMay01 Labour\n"
       "Jul04 Fireworks\nOct03 Unity\nOct31 Halloween\nDec24 Eve\nDec25 Christmas\nDec31 New Year's Eve\n",
       "; Holidays\n;\n\n  ; by hand\nJan01 New Year\nFeb14 Valentine\nApr01 Fools\nJul04 Fireworks\nMar17 Patrick\n"
       "May01 Labour\nOct03 Unity\nOct31 Halloween\nDec24 Eve\nDec25 Christmas\nDec31 New Year's Eve\n"},
      // Later comments and blank lines go, as does a repeated entry; indented
      // lines and lines of no month stay whole, and the last line is ended.
      {"JUL04 Fireworks\n; later\n\n  FEB02 Indented\nMAI01 Feiertag\nXYZ01 Tab\tkept\njul04 Fireworks\nMAR17 Patrick",
       "Mai01 Feiertag\nJul04 Fireworks\n  FEB02 Indented\nXYZ01 Tab\tkept\nMAR17 Patrick\n"},
  };
  // OK on the list as the dialog shows it.
  auto writeUnchanged = [&] {
    BlockHandle list = LoadEventList("General");
    std::vector<EventEntry> entries;
    for (const std::string& code : EventListCodes(list)) {
      entries.emplace_back();
      EXPECT_TRUE(EventFromListCode(code, &entries.back()));
    }
    GlobalBlockFree(list);
    EXPECT_TRUE(WriteEventList("General", entries));
    return ReadFile(dir_.File("General.CDF"));
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    WriteFile(dir_.File("General.CDF"), AsTextFile(c.file));
    EXPECT_EQ(writeUnchanged(), AsTextFile(c.written));
    EXPECT_EQ(writeUnchanged(), AsTextFile(c.written)) << "and then the same bytes at every OK";
  }
}

TEST_F(EventListTest, AListNameIsAPlainFileNameOrNothingIsReadOrWritten) {
  // The program's folder is a subfolder; a list outside it must stay out of reach.
  const std::string app = dir_.File("app");
  std::filesystem::create_directory(app);
  std::strcpy(Settings.ApplicationPath, app.c_str());
  WriteFile(dir_.File("evil.CDF"), "JAN01 Outside\n");
  const char* const refused[] = {"../evil", "..\\evil", "sub/x", "C:evil", "..", ".", "", "name.", "name ",
                                 "a*b", "CON", "con.txt", "Nul", "COM1", "lpt9.list", "COM\xB9", "AUX .x"};
  for (const char* name : refused) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(IsPlainListName(name));
    EXPECT_EQ(LoadEventList(name), 0u);
    EXPECT_FALSE(WriteEventList(name, {{0, 1, "Overwritten"}}));
  }
  EXPECT_EQ(ReadFile(dir_.File("evil.CDF")), "JAN01 Outside\n");
  EXPECT_FALSE(FileExists(dir_.File("evil.BAK")));
  EXPECT_TRUE(std::filesystem::is_empty(app));

  for (const char* name : {"General", "Family 2026", "Feiertage.alt", "CONSOLE", "COM10", "nul-list"}) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(IsPlainListName(name));
    ASSERT_TRUE(WriteEventList(name, {{0, 1, "Inside"}}));
    BlockHandle list = LoadEventList(name);
    EXPECT_EQ(Find(list, 0, 1), "Inside");
    GlobalBlockFree(list);
  }
}

TEST_F(EventListTest, AnEventsFileOverOneMebibyteLoadsNoList) {
  // Lines of 64 bytes: the cap itself still loads, one more byte does not.
  const std::string line = "JAN01 " + std::string(57, 'x') + "\n";
  std::string text;
  while (text.size() < kMaxEventFileBytes) text += line;
  text.resize(kMaxEventFileBytes);
  WriteFile(dir_.File("General.CDF"), text);
  BlockHandle list = LoadEventList("General");
  EXPECT_NE(list, 0u);
  GlobalBlockFree(list);
  EXPECT_EQ(Load(text + "\n"), 0u);
}

// Before the settings name the program's folder, lists are looked for in
// the folder the program was started in.
TEST_F(EventListTest, WithoutAProgramFolderTheCurrentFolderIsSearched) {
  WriteFile(dir_.File("Here.CDF"), "Apr01 Fools\n");
  Settings.ApplicationPath[0] = '\0';
  const std::string previous = std::filesystem::current_path().string();
  std::filesystem::current_path(dir_.path());
  BlockHandle list = LoadEventList("Here");
  std::filesystem::current_path(previous);
  ASSERT_NE(list, 0u);
  EXPECT_EQ(Find(list, 3, 1), "Fools");
  GlobalBlockFree(list);
}
