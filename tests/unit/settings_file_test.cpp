#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
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

TEST_F(SettingsFileTest, AbbreviatedKeysSelectTheFirstMatchingRow) {
  Load("Month = Xyz\nCap=1\nDateFontSizeX = 3\n[Quernal]\nYagFontN = TIMES\n");
  EXPECT_STREQ(Settings.MonthApril, "Xyz");
  EXPECT_STREQ(Settings.MonthJanuary, "January");
  EXPECT_EQ(Settings.CapFontBold, 1u);
  EXPECT_EQ(Settings.DateFontSize, 50u) << "a longer key matches nothing";
  EXPECT_STREQ(Settings.YagFontName, "TIMES");
}

TEST_F(SettingsFileTest, BlanksAndEqualSignsBeforeTheValueAreSkipped) {
  Load("DateFontSize=   =  42\nHeadFontSize = 42pt\nDaysFontSize = pt\n"
       "CapFontName = == Times New  \nYagFontName = Arial\tNarrow\n"
       "MonthMay = M\xE4rz \xFC\n");
  EXPECT_EQ(Settings.DateFontSize, 42u);
  EXPECT_EQ(Settings.HeadFontSize, 42u);
  EXPECT_EQ(Settings.DaysFontSize, 0u);
  EXPECT_STREQ(Settings.CapFontName, "Times New  ") << "trailing blanks stay";
  EXPECT_STREQ(Settings.YagFontName, "Arial") << "a tab cuts the line";
  EXPECT_STREQ(Settings.MonthMay, "M\xE4rz \xFC") << "bytes above 127 are ordinary";
}

TEST_F(SettingsFileTest, NumbersWrapModulo2To32) {
  Load("StickyWindowLeft = -1\nStickyWindowTop = 4294967295\nStickyWindowRight = 4294967296\n"
       "StickyWindowBottom = +7x\nLogoDelay = - 5\nGutter = 99999999999\nInkJet = 5\n");
  EXPECT_EQ(Settings.StickyWindowLeft, 0xFFFFFFFFu);
  EXPECT_EQ(Settings.StickyWindowTop, 0xFFFFFFFFu);
  EXPECT_EQ(Settings.StickyWindowRight, 0u);
  EXPECT_EQ(Settings.StickyWindowBottom, 7u);
  EXPECT_EQ(Settings.LogoDelay, 0u);
  EXPECT_EQ(Settings.Gutter, static_cast<uint32_t>(99999999999ull));
  EXPECT_EQ(Settings.InkJet, 5u) << "a flag stores whatever number it is given";
}

TEST_F(SettingsFileTest, BlankLinesCommentsAndLineEndings) {
  std::strcpy(Settings.ApplicationPath, "C:\\Quernal\\");
  Load(";DateFontSize = 3\r\n\r\nHeadFontSize = 33\r\n=ignored name\r\n");
  EXPECT_EQ(Settings.DateFontSize, 50u);
  EXPECT_EQ(Settings.HeadFontSize, 33u) << "a carriage return ends the value";
  // An empty key selects the first readable row.
  EXPECT_STREQ(Settings.ApplicationPath, "ignored name");
}

TEST_F(SettingsFileTest, WriteOnlyRowsAreNeverRead) {
  Load("BuildDate = Jan 1 1999\nPatchLevel = 1\nVersionNumber = 2\n");
  EXPECT_STREQ(Settings.BuildDate, "Dec 20 2010");
  EXPECT_EQ(Settings.PatchLevel, 35u);
  EXPECT_EQ(Settings.VersionNumber, 64u);
}

TEST_F(SettingsFileTest, LongLinesAreReadInPiecesOf259) {
  // The first piece ends inside the value; the rest reads as a line of its own.
  std::string head = "CapFontName = ";
  std::string line = head + std::string(259 - head.size(), 'A') + "DateFontSize = 9\n";
  Load(line);
  EXPECT_EQ(std::strlen(Settings.CapFontName), 259 - head.size());
  EXPECT_EQ(Settings.DateFontSize, 9u);
}

TEST_F(SettingsFileTest, MissingFileLeavesEveryValue) {
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

TEST_F(SettingsFileTest, ConfigFolderHoldsTheSettingsFile) {
  char folder[1024];
#ifdef _WIN32
  ASSERT_TRUE(ConfigFolder(folder, sizeof folder));
  std::string f = folder;
  ASSERT_GE(f.size(), 11u);
  EXPECT_EQ(f.substr(f.size() - 10), "\\Tarnwick\\");
  EXPECT_EQ(std::string(ConfigFile("QUERNL.INI")), f + "QUERNL.INI");
  // The program never creates the folder; an installer does.
  CreateDirectoryA(folder, nullptr);
#else
  SetConfigFolder(dir_.path().c_str());
  ASSERT_TRUE(ConfigFolder(folder, sizeof folder));
  EXPECT_EQ(std::string(folder), dir_.path() + "/");
  EXPECT_EQ(std::string(ConfigFile("QUERNL.INI")), dir_.path() + "/QUERNL.INI");
#endif
  Settings.DateFontSize = 61;
  SaveSettings({"C:\\one.CLN"});
  ResetSettings();
  LoadSettings();
  EXPECT_EQ(Settings.DateFontSize, 61u);
  std::vector<std::string> recent;
  LoadRecentFiles(AddTo, &recent);
  EXPECT_EQ(recent, (std::vector<std::string>{"C:\\one.CLN"}));
  std::remove(ConfigFile("QUERNL.INI"));
}
