#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "config/settings.h"
#include "config/settings_file.h"
#include "test_support.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

class SettingsFileTest : public QuernalTest {
 protected:
  // Reads `text` as the settings file.
  void Load(const std::string& text) {
    WriteFile(dir_.File("QUERNL.INI"), text);
    LoadSettingsFile(dir_.File("QUERNL.INI").c_str());
  }
  std::string Written(const std::vector<std::string>& recent, std::time_t now) {
    std::string path = dir_.File("written.ini");
    std::FILE* f = std::fopen(path.c_str(), "wb");
    WriteSettings(f, recent, now);
    std::fclose(f);
    return ReadFile(path);
  }
};

void AddTo(const char* value, void* context) { static_cast<std::vector<std::string>*>(context)->push_back(value); }

}  // namespace

// Each file read over the compiled-in settings, and the values it leaves.
TEST_F(SettingsFileTest, HowAFileIsRead) {
  const std::string longName = "CapFontName = " + std::string(245, 'A');
  const struct {
    std::string why, file;
    std::vector<std::pair<const char*, std::string>> values;
  } cases[] = {
      {"abbreviated keys select the first matching row; a longer key matches nothing",
       "Month = Xyz\nCap=1\nDateFontSizeX = 3\n[Quernal]\nYagFontN = TIMES\n",
       {{"MonthApril", "Xyz"}, {"MonthJanuary", "January"}, {"CapFontBold", "1"}, {"DateFontSize", "50"},
        {"YagFontName", "TIMES"}}},
      {"blanks and equal signs before the value are skipped; trailing blanks stay, a tab cuts the line, "
       "bytes above 127 are ordinary",
       "DateFontSize=   =  42\nHeadFontSize = 42pt\nDaysFontSize = pt\nCapFontName = == Times New  \n"
       "YagFontName = Arial\tNarrow\nMonthMay = M\xE4rz \xFC\n",
       {{"DateFontSize", "42"}, {"HeadFontSize", "42"}, {"DaysFontSize", "0"}, {"CapFontName", "Times New  "},
        {"YagFontName", "Arial"}, {"MonthMay", "M\xE4rz \xFC"}}},
      {"numbers wrap modulo 2^32; a flag stores whatever number it is given",
       "StickyWindowLeft = -1\nStickyWindowTop = 4294967295\nStickyWindowRight = 4294967296\n"
       "StickyWindowBottom = +7x\nLogoDelay = - 5\nGutter = 99999999999\nInkJet = 5\n",
       {{"StickyWindowLeft", "4294967295"}, {"StickyWindowTop", "4294967295"}, {"StickyWindowRight", "0"},
        {"StickyWindowBottom", "7"}, {"LogoDelay", "0"}, {"Gutter", std::to_string(uint32_t(99999999999ull))},
        {"InkJet", "5"}}},
      {"comments and blank lines are skipped, a carriage return ends the value, an empty key selects the first "
       "readable row",
       ";DateFontSize = 3\r\n\r\nHeadFontSize = 33\r\n=ignored name\r\n",
       {{"DateFontSize", "50"}, {"HeadFontSize", "33"}, {"ApplicationPath", "ignored name"}}},
      {"write-only rows are never read", "BuildDate = Jan 1 1999\nPatchLevel = 1\nVersionNumber = 2\n",
       {{"BuildDate", "Dec 20 2010"}, {"PatchLevel", "35"}, {"VersionNumber", "64"}}},
      {"long lines are read in pieces of 259: the rest reads as a line of its own",
       longName + "DateFontSize = 9\n", {{"CapFontName", std::string(245, 'A')}, {"DateFontSize", "9"}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    ResetSettings();
    Load(c.file);
    for (const auto& [key, value] : c.values) EXPECT_EQ(SettingText(key), value) << key;
  }
  // A missing file leaves every value.
  Settings.DateFontSize = 77;
  LoadSettingsFile(dir_.File("absent.ini").c_str());
  EXPECT_EQ(Settings.DateFontSize, 77u);
}

TEST_F(SettingsFileTest, WrittenFileHasTheHeaderEveryRowAndTheRecentFiles) {
  std::time_t now = 1700000000;
  std::string text = Written({"C:\\new.CLN", "relative.CLN", "D:\\old.CLN", "E:"}, now);
  char stamp[64];
  std::snprintf(stamp, sizeof stamp, ";Last updated %24.24s\n", std::ctime(&now));
  std::string expectedStart = std::string(";Quernal configuration file\n;Edit this at your own risk\n;Quernal\n") +
                              stamp + ";\n[Quernal]\nApplicationPath = " + Settings.ApplicationPath +
                              "\nBuildDate = Dec 20 2010\nCapFontBold = 400\n";
  EXPECT_EQ(text.substr(0, expectedStart.size()), expectedStart);
  EXPECT_NE(text.find("\nStickyWindowLeft = 4294967295\n"), std::string::npos);
  EXPECT_NE(text.find("\nDateBackColour = 14737632\n"), std::string::npos);
  // Oldest first, and only drive-letter paths.
  std::string expectedEnd = ";----- Menu items ------\n[QuernalMenuItems]\nMenuItem = D:\\old.CLN\nMenuItem = C:\\new.CLN\n";
  ASSERT_GE(text.size(), expectedEnd.size());
  EXPECT_EQ(text.substr(text.size() - expectedEnd.size()), expectedEnd);
  size_t lines = 0;
  for (char c : text) lines += c == '\n';
  EXPECT_EQ(lines, 6u + 132 + 2 + 2);
}

TEST_F(SettingsFileTest, EveryReadableRowSurvivesAWriteAndARead) {
  for (int i = 0; i < SettingsTableRows; ++i) {
    const SettingsRow& row = SettingsTable[i];
    if (row.type & kSettingText)
      std::snprintf(static_cast<char*>(row.variable), kSettingTextSize, "value %d  ", i);
    else
      *static_cast<uint32_t*>(row.variable) = 0xFFFFFFF0u + i % 16 + static_cast<uint32_t>(i) * 65536u;
  }
  SettingsValues expected = Settings;
  std::string text = Written({}, 0);
  ResetSettings();
  Load(text);
  for (int i = 0; i < SettingsTableRows; ++i) {
    const SettingsRow& row = SettingsTable[i];
    size_t offset = static_cast<const char*>(row.variable) - reinterpret_cast<const char*>(&Settings);
    const char* want = reinterpret_cast<const char*>(&expected) + offset;
    if (row.type & kSettingWriteOnly) continue;
    if (row.type & kSettingText)
      EXPECT_STREQ(static_cast<const char*>(row.variable), want) << row.key;
    else
      EXPECT_EQ(std::memcmp(row.variable, want, 4), 0) << row.key;
  }
}

TEST_F(SettingsFileTest, RecentFilesAreEveryPrefixOfMenuItemInFileOrder) {
  WriteFile(dir_.File("QUERNL.INI"),
            "[Quernal]\nDateFontSize = 4\n[QuernalMenuItems]\nMenuItem = C:\\a.CLN\n;MenuItem = C:\\c.CLN\n"
            "Menu=C:\\b.CLN\nMenuItems = C:\\x.CLN\n\nM = D:\\d.CLN\n");
  std::vector<std::string> got;
  LoadRecentFilesFromFile(dir_.File("QUERNL.INI").c_str(), AddTo, &got);
  EXPECT_EQ(got, (std::vector<std::string>{"C:\\a.CLN", "C:\\b.CLN", "", "D:\\d.CLN"}));
}
