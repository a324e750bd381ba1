// quernal-cli render as a user runs it.
#include <cairo.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "calendar/calendar_file.h"
#include "unit/test_support.h"

namespace {

// Runs a shell command; its exit code, with stdout and stderr in *out.
int RunCommand(const std::string& command, std::string* out = nullptr) {
  std::FILE* p = popen((command + " 2>&1").c_str(), "r");
  char buffer[4096];
  size_t n;
  std::string text;
  while ((n = std::fread(buffer, 1, sizeof buffer, p)) > 0) text.append(buffer, n);
  int status = pclose(p);
  if (out) *out = text;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class RenderCliTest : public QuernalTest {
 protected:
  int Cli(const std::string& args, std::string* out = nullptr) { return RunCommand(QUERNAL_CLI " " + args, out); }
  std::string Q(const std::string& path) { return "'" + path + "'"; }
};

// The colour of one pixel of a PNG, as 0xRRGGBB.
uint32_t PixelAt(const std::string& png, int x, int y, int* width = nullptr, int* height = nullptr) {
  cairo_surface_t* s = cairo_image_surface_create_from_png(png.c_str());
  EXPECT_EQ(cairo_surface_status(s), CAIRO_STATUS_SUCCESS) << png;
  if (width) *width = cairo_image_surface_get_width(s);
  if (height) *height = cairo_image_surface_get_height(s);
  uint32_t v = 0;
  if (x < cairo_image_surface_get_width(s) && y < cairo_image_surface_get_height(s))
    v = reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s))[x];
  cairo_surface_destroy(s);
  return v & 0xFFFFFF;
}

}  // namespace

TEST_F(RenderCliTest, AllPagesMakeOneFourteenPagePdf) {
  std::string pdf = dir_.File("year.pdf");
  ASSERT_EQ(Cli("render --new --year 2026 --all --format pdf -o " + Q(pdf)), 0);
  std::string info;
  ASSERT_EQ(RunCommand("pdfinfo " + Q(pdf), &info), 0) << info;
  EXPECT_NE(info.find("Pages:           14"), std::string::npos) << info;
  EXPECT_NE(info.find("595.2 x 841.92 pts (A4)"), std::string::npos) << info;
}

TEST_F(RenderCliTest, OtherFormatsNumberTheirFilesCoverFirst) {
  std::string base = dir_.File("page.ops");
  ASSERT_EQ(Cli("render --new --year 2026 --all --width 700 --height 1000 --format ops -o " + Q(base)), 0);
  std::string cover = ReadFile(dir_.File("page-01.ops"));
  EXPECT_EQ(cover, "fill 0 0 700 500 #FFFFFF\nfill 0 500 700 1000 #FFFFFF\n") << "a new cover has no picture";
  EXPECT_NE(ReadFile(dir_.File("page-02.ops")).find("\"2026\""), std::string::npos) << "the year page second";
  EXPECT_NE(ReadFile(dir_.File("page-03.ops")).find("\"January\""), std::string::npos);
  EXPECT_NE(ReadFile(dir_.File("page-14.ops")).find("\"December\""), std::string::npos);
  EXPECT_FALSE(FileExists(dir_.File("page-15.ops")));
}

TEST_F(RenderCliTest, ScreenViewHalvesAndTheCalendarsOwnPage) {
  // A saved calendar opens on its current page: November here.
  CalendarDocument doc = CreateCalendar(2026, 10);
  SilentProgress progress;
  std::string file = dir_.File("nov.CLN");
  ASSERT_EQ(SaveCalendar(&progress, file.c_str(), doc), 1);
  FreeCalendar(doc);
  std::string ops = dir_.File("nov.ops");
  ASSERT_EQ(Cli("render " + Q(file) + " --screen --width 700 --height 1000 --format ops -o " + Q(ops)), 0);
  std::string text = ReadFile(ops);
  EXPECT_EQ(text.substr(0, text.find('\n')), "frame 0 0 702 1002 #A0A0A0");
  EXPECT_NE(text.find("\"November\""), std::string::npos);
  ASSERT_EQ(Cli("render " + Q(file) + " --halves upper --page 3 --width 700 --height 1000 --format ops -o " + Q(ops)),
            0);
  EXPECT_EQ(ReadFile(ops), "fill 0 0 700 500 #FFFFFF\n");
}

TEST_F(RenderCliTest, PngPagesHaveThePaperSizeAndTheLayoutsColours) {
  std::string png = dir_.File("jan.png");
  ASSERT_EQ(Cli("render --new --year 2026 --page 0 --paper letter --dpi 100 --format png -o " + Q(png)), 0);
  int width, height;
  PixelAt(png, 0, 0, &width, &height);
  EXPECT_EQ(width, 850);
  EXPECT_EQ(height, 1100);

  ASSERT_EQ(Cli("render --new --year 2026 --page 0 --width 700 --height 1000 --format png -o " + Q(png)), 0);
  EXPECT_EQ(PixelAt(png, 300, 200), 0xFFFFFFu) << "the empty picture half";
  EXPECT_EQ(PixelAt(png, 14 + 4 * 96 + 8, 595), 0xE0E0E0u) << "inside the box of 1 January, a Thursday";
  EXPECT_EQ(PixelAt(png, 14 + 4 * 96 + 3, 600), 0x000000u) << "its frame";
  EXPECT_EQ(PixelAt(png, 14 + 3 * 96 + 8, 595), 0xFFFFFFu) << "no box before the first day";

  ASSERT_EQ(Cli("render --new --year 2026 --page 0 --screen --width 700 --height 1000 --format png -o " + Q(png)), 0);
  EXPECT_EQ(PixelAt(png, 0, 500), 0xA0A0A0u) << "the page frame";
  std::string svg = dir_.File("jan.svg");
  ASSERT_EQ(Cli("render --new --page 12 --width 700 --height 1000 --format svg -o " + Q(svg)), 0);
  EXPECT_NE(ReadFile(svg).find("<svg"), std::string::npos);
}

TEST_F(RenderCliTest, BadRequestsAreRefused) {
  std::string out = " -o " + Q(dir_.File("x.png"));
  EXPECT_EQ(Cli("render --new --format gif" + out), 2);
  EXPECT_EQ(Cli("render --new --page 14 --format png" + out), 2);
  EXPECT_EQ(Cli("render --new --page 1 --all --format png" + out), 2);
  EXPECT_EQ(Cli("render a.CLN --new --format png" + out), 2);
  EXPECT_EQ(Cli("render a.CLN --year 2026 --format png" + out), 2);
  EXPECT_EQ(Cli("render --new --width 700 --format png" + out), 2);
  EXPECT_EQ(Cli("render --new --paper a3 --format png" + out), 2);
  EXPECT_EQ(Cli("render --new --format png"), 2);
  EXPECT_EQ(Cli("render " + Q(dir_.File("absent.CLN")) + " --format png" + out), 1);
  EXPECT_FALSE(FileExists(dir_.File("x.png")));
}

TEST_F(RenderCliTest, BookletSidesComeInTheOrderOfTheTwoPasses) {
  std::string base = dir_.File("side.ops");
  ASSERT_EQ(Cli("render --new --year 2026 --booklet --width 700 --height 1000 --format ops -o " + Q(base)), 0);
  // Front of sheet 0: July's picture half over May's calendar half.
  std::string first = ReadFile(dir_.File("side-01.ops"));
  EXPECT_EQ(first.substr(0, first.find('\n')), "fill 0 0 700 500 #FFFFFF");
  EXPECT_NE(first.find("\"May\""), std::string::npos);
  EXPECT_EQ(first.find("\"July\""), std::string::npos) << "July's half here is its picture";
  // Front of sheet 6: the cover. Back of sheet 0 (side 8): June over June.
  EXPECT_EQ(ReadFile(dir_.File("side-07.ops")), "fill 0 0 700 500 #FFFFFF\nfill 0 500 700 1000 #FFFFFF\n");
  EXPECT_NE(ReadFile(dir_.File("side-08.ops")).find("\"June\""), std::string::npos);
  // Back of sheet 6 (side 14): the year's first half over December.
  std::string last = ReadFile(dir_.File("side-14.ops"));
  EXPECT_NE(last.find("\"2026\""), std::string::npos);
  EXPECT_NE(last.find("\"January\""), std::string::npos);
  EXPECT_NE(last.find("\"December\""), std::string::npos);
  EXPECT_EQ(last.find("\"July\""), std::string::npos) << "the year's second half is elsewhere";
  EXPECT_FALSE(FileExists(dir_.File("side-15.ops")));

  std::string pdf = dir_.File("booklet.pdf");
  ASSERT_EQ(Cli("render --new --booklet --format pdf -o " + Q(pdf)), 0);
  std::string info;
  ASSERT_EQ(RunCommand("pdfinfo " + Q(pdf), &info), 0) << info;
  EXPECT_NE(info.find("Pages:           14"), std::string::npos);
  EXPECT_EQ(Cli("render --new --booklet --halves upper --format pdf -o " + Q(pdf)), 2);
}
