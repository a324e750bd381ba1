#include "app/recent_files.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

// The files that exist for these tests; the list never touches the disk.
const std::set<std::string> kFiles = {"C:\\A.CLN", "C:\\B.CLN", "C:\\C.CLN", "C:\\D.CLN", "D:\\Y\\Year.CLN"};
bool Exists(const char* path) { return kFiles.count(path) != 0; }

using List = std::vector<std::string>;

}  // namespace

TEST(RecentFiles, NewestOnTopOnlyLocalExistingFilesOnceEach) {
  List list{"C:\\A.CLN  "};
  // Newest on top; trailing blanks are stripped, and the oldest drops off at the range.
  ASSERT_TRUE(AddRecentPath(&list, "D:\\Y\\Year.CLN \t", 3, Exists));
  ASSERT_TRUE(AddRecentPath(&list, "C:\\B.CLN", 3, Exists));
  EXPECT_EQ(list, (List{"C:\\B.CLN", "D:\\Y\\Year.CLN", "C:\\A.CLN"}));
  ASSERT_TRUE(AddRecentPath(&list, "C:\\C.CLN", 3, Exists));
  EXPECT_EQ(list, (List{"C:\\C.CLN", "C:\\B.CLN", "D:\\Y\\Year.CLN"}));
  // Nothing else changes the list: a listed path in any case and with blanks
  // (not even moved up), a missing file, a network path, a path without a
  // drive, nothing, or a range of 0 that turns the list off.
  const List before = list;
  for (const char* refused : {"c:\\b.cln   ", "d:\\y\\YEAR.CLN", "C:\\Gone.CLN", "\\\\server\\share\\B.CLN", "D.CLN", ""})
    EXPECT_FALSE(AddRecentPath(&list, refused, 10, Exists)) << refused;
  EXPECT_FALSE(AddRecentPath(&list, "C:\\A.CLN", 0, Exists));
  EXPECT_EQ(list, before);
  // An entry that is not local ends the old list.
  list = {"C:\\A.CLN", "odd entry", "C:\\B.CLN"};
  ASSERT_TRUE(AddRecentPath(&list, "C:\\C.CLN", 10, Exists));
  EXPECT_EQ(list, (List{"C:\\C.CLN", "C:\\A.CLN"}));
  // The list stops short of the edit commands: ids 180 to 201.
  EXPECT_EQ(RecentFilesLimit(10), 10u);
  EXPECT_EQ(RecentFilesLimit(0), 0u);
  EXPECT_EQ(RecentFilesLimit(1000), 22u);
}
