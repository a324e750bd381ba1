#include "app/window_layout.h"
#include "base/text.h"
#include "res/main_ids.h"
#include "test_support.h"

TEST(WindowLayout, StoredEdgesArePulledOntoASmallerScreen) {
  int32_t x, y;
  EXPECT_FALSE(RestoredPosition({4294967295u, 10, 500, 500}, 1024, 768, &x, &y)) << "nothing stored";
  ASSERT_TRUE(RestoredPosition({100, 50, 700, 800}, 1024, 768, &x, &y));
  EXPECT_EQ(x, 100);
  EXPECT_EQ(y, 50);
  // From a 1920 x 1200 screen onto 1024 x 768: a 620 x 460 window must fit.
  ASSERT_TRUE(RestoredPosition({1500, 900, 1900, 1190}, 1024, 768, &x, &y));
  EXPECT_EQ(x, 1024 - 620);
  EXPECT_EQ(y, 768 - 460);
  ASSERT_TRUE(RestoredPosition({10, 10, 500, 500}, 600, 400, &x, &y));
  EXPECT_EQ(x, 0) << "never above or left of the screen";
  EXPECT_EQ(y, 0);

  StoredEdges e = EdgesToStore({-8, -8, 1100, 800}, 1024, 768);
  EXPECT_EQ(e.left, 0u);
  EXPECT_EQ(e.top, 0u);
  EXPECT_EQ(e.right, 1024u);
  EXPECT_EQ(e.bottom, 768u);
}

TEST(WindowLayout, TheWindowAndItsPageTakeAPortraitShapeAndTheTitleNamesFileAndPage) {
  int32_t w, h;
  DefaultWindowSize(768, &w, &h);
  EXPECT_EQ(h, 729);
  EXPECT_EQ(w, 570);
  // The printer's shape, or 360 to 460; A4 at 600 dpi is 4960 x 7016.
  EXPECT_EQ(PageRectForClient(700, false, 0, 0), (Rect{0, 0, 520, 665}));
  EXPECT_EQ(PageRectForClient(700, true, 4960, 7016), (Rect{0, 0, 470, 665}));
  EXPECT_EQ(PageRectForClient(700, true, 100, 0), (Rect{0, 0, 66500, 665})) << "a height of 0 counts as 1";
  EXPECT_EQ(ZoomedPage({0, 0, 520, 665}, 400), (Rect{0, 0, 2080, 2660}));
  EXPECT_EQ(WindowTitle("Quernal", DocumentLabel("Untitled.CLN", "January")), "Quernal [ Untitled.CLN \x96 January ]");
  EXPECT_EQ(DocumentLabel("C:\\Calendars\\Family 2027.CLN", "Cover"), "Family 2027.CLN \x96 Cover");
}

TEST(WindowLayout, FileDialogsStartInTheFolderLastUsedOrTheDocuments) {
  const struct {
    const char *path, *folder;
  } folders[] = {{"C:\\Cal\\2027.CLN", "C:\\Cal\\"}, {"C:x.CLN", "C:\\"}, {"Z:/tmp/a.CLN", "Z:/tmp/"},
                 {"bare.CLN", ""}, {"\\\\server\\share\\a.CLN", "\\\\server\\share\\"}};
  for (const auto& f : folders) EXPECT_EQ(FolderOfFile(f.path), f.folder) << f.path;

  const std::string program = "C:\\Program Files\\Quernal\\", documents = "C:\\users\\me\\Documents";
  EXPECT_EQ(DialogStartFolder("", program, documents), documents);
  EXPECT_EQ(DialogStartFolder("c:\\program files\\QUERNAL\\", program, documents), documents);
  EXPECT_EQ(DialogStartFolder("C:\\Program Files\\Quernal\\Old\\", program, documents),
            "C:\\Program Files\\Quernal\\Old\\");
  EXPECT_EQ(DialogStartFolder("D:\\Cal\\", program, documents), "D:\\Cal\\");
}

TEST(WindowLayout, AWindowDraggedNearAnEdgeOfTheWorkAreaLandsOnIt) {
  const Rect work{0, 0, 1280, 1000};
  const struct {
    Rect dragged, landed;
  } moves[] = {
      {{9, 300, 609, 760}, {0, 300, 600, 760}},          // near the left edge
      {{-12, 300, 588, 760}, {0, 300, 600, 760}},        // just past it
      {{13, 300, 613, 760}, {13, 300, 613, 760}},        // too far
      {{675, 535, 1275, 995}, {680, 540, 1280, 1000}},   // the bottom right corner
      {{5, 5, 1278, 997}, {0, 0, 1273, 992}},            // left and top before right and bottom
      {{400, -20, 1000, 440}, {400, -20, 1000, 440}},    // far above the top stays
  };
  for (const auto& m : moves) EXPECT_EQ(SnappedToEdges(m.dragged, work, 12), m.landed) << m.dragged.left;
}

// The month's own commands are greyed on the year page and the cover.
TEST(WindowLayout, MonthCommandsActOnMonthPagesOnly) {
  for (int command : {IDM_EDIT_MONTH, IDM_REPLICATE, IDM_EVENTS, IDM_EDIT_YEAR}) {
    for (int page : {-1, 0, 11, 12, 13}) {
      const bool month = page >= 0 && page < 12;
      EXPECT_EQ(CommandActsOnPage(command, page), month || command == IDM_EDIT_YEAR) << command << " on " << page;
    }
  }
}
