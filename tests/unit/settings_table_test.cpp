#include <cstring>
#include <set>
#include <string>
#include <utility>

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
  Settings.DateFontSize = 7;
  ResetSettings();
  const std::pair<const char*, const char*> defaults[] = {
      {"BuildDate", "Dec 20 2010"}, {"PatchLevel", "35"},  {"VersionNumber", "64"},  {"StickyWindowLeft", "4294967295"},
      {"DateBackColour", "14737632"}, {"LogoDelay", "8000"}, {"MonthJuly", "July"}, {"ThemeCurrent", "THEME_Standard.dll"},
      {"DaysName", "General"},      {"ApplicationPath", ""}, {"DateFontSize", "50"}};
  for (const auto& [key, value] : defaults) EXPECT_EQ(SettingText(key), value) << key;
}
