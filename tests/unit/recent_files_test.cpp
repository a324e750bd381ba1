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

TEST(RecentFiles, NewestOnTopAndTheOldestDropsOffAtTheRange) {
  List list;
  for (const char* p : {"C:\\A.CLN", "C:\\B.CLN", "C:\\C.CLN"}) ASSERT_TRUE(AddRecentPath(&list, p, 3, Exists));
  EXPECT_EQ(list, (List{"C:\\C.CLN", "C:\\B.CLN", "C:\\A.CLN"}));
  ASSERT_TRUE(AddRecentPath(&list, "C:\\D.CLN", 3, Exists));
  EXPECT_EQ(list, (List{"C:\\D.CLN", "C:\\C.CLN", "C:\\B.CLN"}));
}

TEST(RecentFiles, AListedPathChangesNothingInAnyCase) {
  List list{"C:\\C.CLN", "C:\\B.CLN", "C:\\A.CLN"};
  const List before = list;
  EXPECT_FALSE(AddRecentPath(&list, "c:\\a.cln", 10, Exists)) << "not even moved up";
  EXPECT_EQ(list, before);
}

TEST(RecentFiles, RefusesWhatIsNotALocalExistingFile) {
  List list{"C:\\A.CLN"};
  EXPECT_FALSE(AddRecentPath(&list, "C:\\Gone.CLN", 10, Exists));
  EXPECT_FALSE(AddRecentPath(&list, "\\\\server\\share\\B.CLN", 10, Exists)) << "network paths are never listed";
  EXPECT_FALSE(AddRecentPath(&list, "B.CLN", 10, Exists));
  EXPECT_FALSE(AddRecentPath(&list, "", 10, Exists));
  EXPECT_FALSE(AddRecentPath(&list, "C:\\B.CLN", 0, Exists)) << "a range of 0 turns the list off";
  EXPECT_EQ(list, (List{"C:\\A.CLN"}));
}

TEST(RecentFiles, TrailingBlanksAreStripped) {
  List list{"C:\\A.CLN  "};
  ASSERT_TRUE(AddRecentPath(&list, "D:\\Y\\Year.CLN \t", 10, Exists));
  EXPECT_EQ(list, (List{"D:\\Y\\Year.CLN", "C:\\A.CLN"}));
  EXPECT_FALSE(AddRecentPath(&list, "C:\\a.cln   ", 10, Exists)) << "blanks do not make a new entry";
}

TEST(RecentFiles, TheListStopsShortOfTheEditCommands) {
  EXPECT_EQ(RecentFilesLimit(10), 10u);
  EXPECT_EQ(RecentFilesLimit(0), 0u);
  EXPECT_EQ(RecentFilesLimit(1000), 22u) << "ids 180 to 201";
}

TEST(RecentFiles, AnEntryThatIsNotLocalEndsTheOldList) {
  List list{"C:\\A.CLN", "odd entry", "C:\\B.CLN"};
  ASSERT_TRUE(AddRecentPath(&list, "C:\\C.CLN", 10, Exists));
  EXPECT_EQ(list, (List{"C:\\C.CLN", "C:\\A.CLN"}));
}
