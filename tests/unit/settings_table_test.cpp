#include <cstring>
#include <set>
#include <string>

#include "config/settings.h"
#include "test_support.h"

namespace {
int RowIndex(const char* key) {
  for (int i = 0; i < SettingsTableRows; ++i)
    if (std::strcmp(SettingsTable[i].key, key) == 0) return i;
  return -1;
}
}  // namespace

TEST(SettingsTable, HoldsEveryRowOnceInItsOrder) {
  ASSERT_EQ(SettingsTableRows, 132);
  EXPECT_STREQ(SettingsTable[0].key, "ApplicationPath");
  EXPECT_STREQ(SettingsTable[SettingsTableRows - 1].key, "YagTitleFontSize");
  std::set<std::string> keys;
  std::set<const void*> variables;
  for (int i = 0; i < SettingsTableRows; ++i) {
    const SettingsRow& row = SettingsTable[i];
    EXPECT_TRUE(keys.insert(row.key).second) << row.key;
    EXPECT_TRUE(variables.insert(row.variable).second) << row.key << " shares its variable";
    int kinds = !!(row.type & kSettingFlag) + !!(row.type & kSettingText) + !!(row.type & kSettingNumber);
    EXPECT_EQ(kinds, 1) << row.key;
    EXPECT_EQ(row.choices, nullptr) << row.key;
  }
  // The order decides what an abbreviated key selects.
  EXPECT_LT(RowIndex("MonthJune"), RowIndex("MonthJuly"));
  EXPECT_LT(RowIndex("MonthApril"), RowIndex("MonthAugust"));
  EXPECT_LT(RowIndex("PatchLevel"), RowIndex("PaintbrushName"));
  EXPECT_LT(RowIndex("CapFontBold"), RowIndex("CapFontColour"));
}

TEST(SettingsTable, TypesAndSetupControlsAreBound) {
  std::set<std::string> writeOnly;
  for (int i = 0; i < SettingsTableRows; ++i)
    if (SettingsTable[i].type & kSettingWriteOnly) writeOnly.insert(SettingsTable[i].key);
  EXPECT_EQ(writeOnly, (std::set<std::string>{"BuildDate", "PatchLevel", "VersionNumber"}));

  EXPECT_EQ(FindSettingsRow("ImageCompression")->type, kSettingNumber | kSettingRanged);
  EXPECT_EQ(FindSettingsRow("BuildDate")->type, kSettingText | kSettingWriteOnly);
  // Typed as a number on purpose, so the generic setup binding leaves it alone.
  EXPECT_EQ(FindSettingsRow("WarnPaletteColour")->type, kSettingNumber);
  EXPECT_EQ(FindSettingsRow("StartMonday")->type, kSettingFlag);

  const std::pair<const char*, uint32_t> controls[] = {
      {"MaximizePaint", 104},  {"ShowStartupWindow", 105}, {"SearchForPaintbrush", 106},
      {"ImageCompression", 107}, {"WarnShowManual", 108},  {"UseAD", 109},
      {"WarnPaletteColour", 111}, {"StartMonday", 133},    {"MonthJanuary", 112},
      {"MonthJune", 117},      {"MonthDecember", 123},     {"DaySunday", 124},
      {"DayWednesday", 127},   {"DaySaturday", 130}};
  int bound = 0;
  for (int i = 0; i < SettingsTableRows; ++i) bound += SettingsTable[i].setupControl != 0;
  EXPECT_EQ(bound, 8 + 12 + 7);
  for (auto& c : controls) EXPECT_EQ(FindSettingsRow(c.first)->setupControl, c.second) << c.first;
}

TEST(SettingsTable, CompiledInDefaults) {
  ResetSettings();
  EXPECT_STREQ(Settings.BuildDate, "Dec 20 2010");
  EXPECT_EQ(Settings.PatchLevel, 35u);
  EXPECT_EQ(Settings.VersionNumber, 64u);
  EXPECT_EQ(Settings.StickyWindowLeft, 4294967295u);
  EXPECT_EQ(Settings.DateBackColour, 0xE0E0E0u);
  EXPECT_EQ(Settings.LogoDelay, 8000u);
  EXPECT_STREQ(Settings.ThemeCurrent, "THEME_Standard.dll");
  EXPECT_STREQ(Settings.MonthJuly, "July");
  EXPECT_STREQ(Settings.DaysName, "General");
  EXPECT_STREQ(Settings.ApplicationPath, "");
  Settings.DateFontSize = 7;
  ResetSettings();
  EXPECT_EQ(Settings.DateFontSize, 50u);
}
