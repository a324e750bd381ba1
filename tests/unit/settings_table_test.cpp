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
  // The order decides what an abbreviated key selects (more of it in the
  // settings file's reading of abbreviated keys).
  EXPECT_LT(RowIndex("MonthJune"), RowIndex("MonthJuly"));
  EXPECT_LT(RowIndex("PatchLevel"), RowIndex("PaintbrushName"));
}

