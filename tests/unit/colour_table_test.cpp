// Colour-table files: the lines that name colours, and writing a table back.
#include "base/text.h"
#include "colours/colour_table.h"
#include "config/settings.h"
#include "test_support.h"

TEST(ColourTable, LinesNameColoursOrAreSkipped) {
  const struct {
    const char* line;
    bool named;
    const char* name;
    uint32_t colour;
  } lines[] = {
      {"Sky = 135,206,235", true, "Sky ", 0xEBCE87},
      {"Red=255,0,0\r\n", true, "Red", 0x0000FF},
      {"Odd==\b 1,,,2,,3", true, "Odd", 0x030201},
      {"Big=300,-1,256", true, "Big", 0x00FF2C},
      {"Spaced=  7 , 8 , 9", true, "Spaced", 0x090807},
      {"=1,2,3", false, "", 0},
      {"NoEquals 1,2,3", false, "", 0},
      {"One=12", false, "", 0},
      {"Two=1,2", false, "", 0},
      {"Cut=1,2\n,3", false, "", 0},
  };
  for (const auto& l : lines) {
    NamedColour c{"?", 0};
    EXPECT_EQ(ParseColourLine(l.line, &c), l.named) << l.line;
    if (!l.named) continue;
    EXPECT_EQ(c.name, l.name) << l.line;
    EXPECT_EQ(c.colour, l.colour) << l.line;
  }
}

TEST(ColourTable, ATableReadsInFileOrderAndWritesBackWithoutItsBackup) {
  TempDir dir;
  const std::string path = dir.File("Mine.CCL");
  std::vector<NamedColour> table{{"left over", 1}};
  EXPECT_FALSE(ReadColourTable(path, &table)) << "no such file";
  EXPECT_TRUE(table.empty());
  // A line over 260 characters goes on as the next line.
  WriteFile(path, "Zinc=1,2,3\n; no colour\n" + std::string(260, 'x') + "Tail=4,5,6\nAmber=255,191,0\n");
  ASSERT_TRUE(ReadColourTable(path, &table));
  ASSERT_EQ(table.size(), 3u);
  EXPECT_EQ(table[0].name, "Zinc");
  EXPECT_EQ(table[1].name, "Tail");
  EXPECT_EQ(table[2].colour, 0x00BFFFu);

  WriteFile(path + ".bak", "old");
  table.push_back({"Sky ", 0xEBCE87});
  ASSERT_TRUE(WriteColourTable(path, &table));
  EXPECT_EQ(ReadFile(path), AsTextFile("Zinc=1,2,3\nTail=4,5,6\nAmber=255,191,0\nSky =135,206,235\n"));
  EXPECT_FALSE(FileExists(path + ".bak"));
  // A list that could not be counted leaves no file, and no backup to restore.
  EXPECT_FALSE(WriteColourTable(path, nullptr));
  EXPECT_FALSE(FileExists(path));
}

// ColourTableFile comes from the settings file; the dialog reads, and on
// Add or Delete rewrites, the file it names.
TEST_F(QuernalTest, TheTableInUseIsAlwaysAFileOfTheProgramsFolder) {
  const std::string app = dir_.File("app");
  CopyText(Settings.ApplicationPath, sizeof Settings.ApplicationPath, app.c_str());
  // A plain name is used, any other gives the default (which names are
  // plain is the events lists' name test).
  const struct {
    const char* setting;
    const char* used;
  } cases[] = {{"Ink.CCL", "Ink.CCL"}, {"..\\outside\\victim.txt", "QUERNL.CCL"}};
  for (const auto& c : cases) {
    CopyText(Settings.ColourTableFile, sizeof Settings.ColourTableFile, c.setting);
    EXPECT_EQ(ColourTablePath(), JoinPath(app, c.used)) << c.setting;
  }
}
