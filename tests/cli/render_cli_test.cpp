// quernal-cli render as a user runs it.
#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "calendar/calendar_file.h"
#include "cli/cli_run.h"
#include "unit/test_photos.h"

namespace {

class RenderCliTest : public CliTest {
 protected:
  // The exit code, with stdout and stderr together in *out.
  int Cli(const std::string& args, std::string* out = nullptr) { return RunCommand(QUERNAL_CLI " " + args, out); }
};

// The MediaBox, BleedBox and TrimBox of each page as `pdfinfo -box` reads
// them: left, bottom, right, top.
struct PageBoxes {
  double media[4], bleed[4], trim[4];
};
std::vector<PageBoxes> ReadBoxes(const std::string& pdf) {
  std::string text;
  EXPECT_EQ(RunCommand("pdfinfo -box -f 1 -l 99 '" + pdf + "'", &text), 0) << text;
  std::vector<PageBoxes> pages;
  for (size_t at = text.find("Page "); at != std::string::npos; at = text.find("\nPage ", at + 1)) {
    int page;
    char box[16];
    double v[4];
    if (std::sscanf(text.c_str() + at + (text[at] == '\n'), "Page %d %15[A-Za-z]: %lf %lf %lf %lf", &page, box, &v[0],
                    &v[1], &v[2], &v[3]) != 6)
      continue;
    if (page > static_cast<int>(pages.size())) pages.resize(page);
    double* into = std::string(box) == "MediaBox" ? pages[page - 1].media
                   : std::string(box) == "BleedBox" ? pages[page - 1].bleed
                   : std::string(box) == "TrimBox"  ? pages[page - 1].trim
                                                    : nullptr;
    if (into) std::copy(v, v + 4, into);
  }
  return pages;
}

// Whether every object the cross-reference table lists starts where it says:
// poppler quietly rebuilds a broken table, a print shop's RIP may not.
bool TableFindsEveryObject(const std::string& pdf) {
  const std::string bytes = ReadFile(pdf);
  size_t at = std::strtoul(bytes.c_str() + bytes.rfind("startxref") + 9, nullptr, 10);
  if (bytes.compare(at, 4, "xref") != 0) return false;
  char* end;
  std::strtoul(bytes.c_str() + at + 5, &end, 10);
  const unsigned long count = std::strtoul(end, &end, 10);
  at = end - bytes.c_str() + 1;
  for (unsigned long i = 0; i < count; ++i, at += 20) {
    const std::string header = std::to_string(i) + " 0 obj";
    if (bytes[at + 17] == 'n' && bytes.compare(std::strtoul(bytes.c_str() + at, nullptr, 10), header.size(), header))
      return false;
  }
  return true;
}

// Colours as a PNG shows them (0xRRGGBB).
constexpr uint32_t kWhite = 0xFFFFFF, kBlack = 0, kGreen = 0x00A000, kRedPixel = 0xC00000, kBluePixel = 0x0000C0;

}  // namespace

// A render that cannot be written leaves the earlier file as it was.
TEST_F(RenderCliTest, AFailedRenderLeavesTheEarlierFile) {
  std::string pdf = dir_.File("year.pdf");
  ASSERT_EQ(Cli("render --new --year 2026 --page 12 --format pdf -o " + Q(pdf)), 0);
  const std::string before = ReadFile(pdf);
  ASSERT_EQ(mkdir((pdf + ".part").c_str(), 0755), 0);
  std::string err;
  EXPECT_EQ(Cli("render --new --year 2027 --page 0 --format pdf -o " + Q(pdf), &err), 1);
  EXPECT_EQ(err, "quernal-cli: " + pdf + ": cannot be written\n");
  EXPECT_TRUE(ReadFile(pdf) == before);
}

TEST_F(RenderCliTest, OtherFormatsNumberTheirFilesCoverFirst) {
  std::string base = dir_.File("page.ops");
  ASSERT_EQ(Cli("render --new --year 2026 --all --width 700 --height 1000 --format ops -o " + Q(base)), 0);
  std::string cover = ReadFile(dir_.File("page-01.ops"));
  EXPECT_EQ(cover, "fill 0 0 700 500 #FFFFFF\nfill 0 500 700 1000 #FFFFFF\n") << "a new cover has no picture";
  EXPECT_NE(ReadFile(dir_.File("page-02.ops")).find("\"2026\""), std::string::npos) << "the year page second";
  EXPECT_NE(ReadFile(dir_.File("page-14.ops")).find("\"December\""), std::string::npos);
  EXPECT_FALSE(FileExists(dir_.File("page-15.ops")));
  // On a terminal, a long render says how far it has come.
  std::string terminal;
  RunCommand("QUERNAL_PROGRESS_AFTER=0 script -qec \"" QUERNAL_CLI " render --new --all --width 70 --height 100 "
             "--format ops -o " + Q(base) + "\" /dev/null", &terminal);
  EXPECT_NE(terminal.find("rendering page 14/14"), std::string::npos) << terminal;
}

TEST_F(RenderCliTest, ScreenViewHalvesAndTheCalendarsOwnPage) {
  // A saved calendar opens on its current page: November here.
  std::string file = dir_.File("nov.CLN");
  ASSERT_EQ(Cli("new --year 2026 --month 11 -o " + Q(file)), 0);
  std::string ops = dir_.File("nov.ops");
  ASSERT_EQ(Cli("render " + Q(file) + " --screen --width 700 --height 1000 --format ops -o " + Q(ops)), 0);
  std::string text = ReadFile(ops);
  EXPECT_EQ(text.substr(0, text.find('\n')), "frame 0 0 702 1002 #A0A0A0");
  EXPECT_NE(text.find("\"November\""), std::string::npos);
  ASSERT_EQ(Cli("render " + Q(file) + " --halves upper --page 3 --width 700 --height 1000 --format ops -o " + Q(ops)),
            0);
  EXPECT_EQ(ReadFile(ops), "fill 0 0 700 500 #FFFFFF\n");
  // Month names are settings, not part of the file.
  WriteFile(dir_.File("QUERNL.INI"), "[Quernal]\nMonthNovember=Novembre\n");
  ASSERT_EQ(Cli("render " + Q(file) + " --config " + Q(dir_.path()) + " --width 700 --height 1000 --format ops -o " +
                Q(ops)),
            0);
  EXPECT_NE(ReadFile(ops).find("\"Novembre\""), std::string::npos);
}

// The layout's pixels are the Cairo canvas's and the month page's to show;
// here the paper's size in pixels, and the SVG writer.
TEST_F(RenderCliTest, PngPagesHaveThePaperSizeAndSvgIsWritten) {
  std::string png = dir_.File("jan.png"), svg = dir_.File("jan.svg");
  ASSERT_EQ(Cli("render --new --year 2026 --page 0 --paper letter --dpi 100 --format png -o " + Q(png)), 0);
  EXPECT_EQ(Png(png).width(), 850);
  EXPECT_EQ(Png(png).height(), 1100);
  ASSERT_EQ(Cli("render --new --page 12 --width 700 --height 1000 --format svg -o " + Q(svg)), 0);
  EXPECT_NE(ReadFile(svg).find("<svg"), std::string::npos);
}

TEST_F(RenderCliTest, BookletSidesComeInTheOrderOfTheTwoPasses) {
  std::string base = dir_.File("side.ops");
  ASSERT_EQ(Cli("render --new --year 2026 --booklet --width 700 --height 1000 --format ops -o " + Q(base)), 0);
  // Front of sheet 0: July's picture half over May's calendar half.
  std::string first = ReadFile(dir_.File("side-01.ops"));
  EXPECT_EQ(first.substr(0, first.find('\n')), "fill 0 0 700 500 #FFFFFF");
  EXPECT_NE(first.find("\"May\""), std::string::npos);
  EXPECT_EQ(first.find("\"July\""), std::string::npos) << "July's half here is its picture";
  // The backs follow the fronts: back of sheet 0 (side 8), June over June.
  EXPECT_NE(ReadFile(dir_.File("side-08.ops")).find("\"June\""), std::string::npos);
  EXPECT_FALSE(FileExists(dir_.File("side-15.ops")));
}

TEST_F(RenderCliTest, PrintShopPdfsBleedPastTheTrimWithCropMarksOutsideIt) {
  // Blue months, a green year page and a red cover whose black picture bleeds.
  const std::string file = dir_.File("print.CLN"), black = dir_.File("black.png");
  ASSERT_EQ(RunCommand("convert -size 40x30 xc:black -type TrueColor PNG24:" + Q(black)), 0);
  ASSERT_EQ(Cli("new --year 2026 -o " + Q(file)), 0);
  ASSERT_EQ(Cli("set " + Q(file) + " --months PageBackgroundColour=#0000C0"), 0);
  ASSERT_EQ(Cli("set " + Q(file) + " --year-page YagPageColour=#00A000"), 0);
  ASSERT_EQ(Cli("set " + Q(file) + " --cover CoverBackgroundColour=#C00000 CoverPictureBleed=1 --picture " + Q(black)),
            0);
  auto render = [&](const std::string& options, const std::string& pdf) {
    return Cli("render " + Q(file) + " --dpi 100 " + options + " --format pdf -o " + Q(dir_.File(pdf)));
  };

  // Every page: the trim exactly A4 (the paper's own size), the bleed box the
  // bleed beyond it, and with crop marks a slug of 7 mm beyond that.
  const double mm = 72 / 25.4;
  const struct {
    const char* options;
    const char* pdf;
    size_t pages;
    double bleed;
    bool marks;
  } kCases[] = {{"--all", "plain.pdf", 14, 0, false},
                {"--all --bleed 3 --crop-marks", "all.pdf", 14, 3, true},
                {"--booklet --bleed 3 --crop-marks", "booklet.pdf", 14, 3, true},
                {"--page 0 --bleed 3.5", "january.pdf", 1, 3.5, false},
                {"--page 12 --bleed 0 --crop-marks", "year.pdf", 1, 0, true}};
  for (const auto& c : kCases) {
    ASSERT_EQ(render(c.options, c.pdf), 0) << c.options;
    EXPECT_TRUE(TableFindsEveryObject(dir_.File(c.pdf))) << c.options;
    const std::vector<PageBoxes> pages = ReadBoxes(dir_.File(c.pdf));
    ASSERT_EQ(pages.size(), c.pages) << c.options;
    for (const PageBoxes& p : pages) {
      EXPECT_NEAR(p.trim[2] - p.trim[0], 595.276, 0.011) << c.options;
      EXPECT_NEAR(p.trim[3] - p.trim[1], 841.89, 0.011) << c.options;
      for (int i = 0; i < 4; ++i) {
        const double outward = i < 2 ? -1 : 1;
        EXPECT_NEAR(p.bleed[i], p.trim[i] + outward * c.bleed * mm, 0.011) << c.options << ", side " << i;
        EXPECT_NEAR(p.media[i], p.bleed[i] + outward * (c.marks ? 7 * mm : 0), 0.011) << c.options << ", side " << i;
      }
    }
  }

  // At 127 dpi a millimetre is 5 pixels: the bleed box starts 35 pixels in,
  // the trim 50, the marks end at the sheet's edge 25 pixels from the bleed.
  ASSERT_EQ(RunCommand("pdftoppm -r 127 -png -f 1 -l 3 " + Q(dir_.File("all.pdf")) + " " + Q(dir_.File("all"))), 0);
  ASSERT_EQ(RunCommand("pdftoppm -r 127 -png -f 14 -l 14 " + Q(dir_.File("booklet.pdf")) + " " + Q(dir_.File("side"))), 0);
  const struct {
    const char* png;
    uint32_t upper, lower;  // the bleed's colours round each half
  } kSides[] = {{"all-01.png", kRedPixel, kBlack},  // the cover's picture reaches the bleed's edge
                {"all-02.png", kGreen, kGreen},
                {"all-03.png", kBluePixel, kBluePixel},
                {"side-14.png", kGreen, kBluePixel}};  // the year's first half over December
  for (const auto& side : kSides) {
    const Png png(dir_.File(side.png));
    ASSERT_NEAR(png.width(), 1150, 1) << side.png << ": pdftoppm rounds up";
    ASSERT_NEAR(png.height(), 1585, 1) << side.png;
    for (int x : {35, 575, 1114}) {
      EXPECT_EQ(png(x, 35), side.upper) << side.png << " at " << x;
      EXPECT_EQ(png(x, 1549), side.lower) << side.png << " at " << x;
      EXPECT_EQ(png(x, 34), kWhite) << side.png << " at " << x;
    }
    EXPECT_EQ(png(35, 400), side.upper) << side.png;
    EXPECT_EQ(png(1114, 1200), side.lower) << side.png;
    // The marks continue the trim's edges (x 50, 1100; y 50, 1535), between
    // the sheet's edge and 2 mm short of the bleed, at all four corners.
    for (int along : {0, 12, 24})
      for (int line : {50, 1100}) {
        const int x = line - (line == 50), near = along, far = 1584 - along;
        EXPECT_LT(std::min(png(x, near) & 0xFF, png(x + 1, near) & 0xFF), 0xE0u) << side.png << " at " << line;
        EXPECT_LT(std::min(png(x, far) & 0xFF, png(x + 1, far) & 0xFF), 0xE0u) << side.png << " at " << line;
      }
    // (pdftoppm paints a clipped picture a pixel past the clip's lower edge.)
    for (int gap = 26; gap < 34; ++gap) {
      EXPECT_EQ(png(49, gap) & png(50, gap) & png(gap, 49) & png(gap, 50), kWhite) << side.png << " at " << gap;
      EXPECT_EQ(png(1100, 1584 - gap) & png(1149 - gap, 1535), kWhite) << side.png << " at " << gap;
    }
  }

  // The trimmed page is the page drawn without a bleed.
  ASSERT_EQ(render("--page 13", "cover.pdf"), 0);
  ASSERT_EQ(RunCommand("pdftoppm -r 127 -png -singlefile " + Q(dir_.File("cover.pdf")) + " " + Q(dir_.File("cover"))),
            0);
  const Png bled(dir_.File("all-01.png")), plain(dir_.File("cover.png"));
  ASSERT_NEAR(plain.width(), 1050, 1);
  ASSERT_NEAR(plain.height(), 1485, 1);
  int different = 0;
  for (int y = 0; y < 1485; ++y)
    for (int x = 0; x < 1050; ++x) different += bled(x + 50, y + 50) != plain(x, y);
  EXPECT_EQ(different, 0);
}

// A PDF carries its pictures as JPEGs (quality 92 unless asked otherwise),
// a fraction of the lossless file's size and alike to the eye.
TEST_F(RenderCliTest, PdfPicturesAreJpegsLikeTheLosslessOnes) {
  const std::string jpeg = dir_.File("jpeg.pdf"), lossless = dir_.File("lossless.pdf");
  ASSERT_EQ(Cli(std::string("render ") + QUERNAL_SAMPLE + " --all --format pdf -o " + Q(jpeg)), 0);
  ASSERT_EQ(Cli(std::string("render ") + QUERNAL_SAMPLE + " --all --format pdf --lossless -o " + Q(lossless)), 0);
  EXPECT_LT(ReadFile(jpeg).size() * 2, ReadFile(lossless).size());
  // The cover's and the twelve months' pictures, each a DCT stream or none.
  for (const auto& pdf : {std::make_pair(jpeg, 13), std::make_pair(lossless, 0)}) {
    std::string images;
    ASSERT_EQ(RunCommand("pdfimages -list " + Q(pdf.first) + " | tail -n +3", &images), 0);
    int count = 0;
    for (size_t at = 0; (at = images.find(" jpeg ", at)) != std::string::npos; ++at) ++count;
    EXPECT_EQ(count, pdf.second) << images;
  }
  for (const std::string& pdf : {jpeg, lossless})
    ASSERT_EQ(RunCommand("pdftoppm -f 4 -l 4 -r 100 " + Q(pdf) + " " + Q(pdf)), 0);
  EXPECT_GE(Ssim(ReadPpm(jpeg + "-04.ppm"), ReadPpm(lossless + "-04.ppm")), 0.98);
}

// A PDF tells a print shop the resolution each picture truly prints at (a
// picture with fewer pixels than its box keeps them, one with more is
// reduced to the page's 300 dpi), and that its colours are sRGB.
TEST_F(RenderCliTest, PdfPicturesCarryTheirTrueResolutionAndAnSrgbOutputIntent) {
  const struct {
    int width, height;
    bool reduced;
  } cases[] = {{640, 480, false}, {2400, 1800, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.width);
    const std::string picture = dir_.File("picture.png"), cln = dir_.File("c.CLN"), pdf = dir_.File("c.pdf");
    ASSERT_TRUE(::Shell("convert -size " + std::to_string(c.width) + "x" + std::to_string(c.height) +
                        " gradient:red-blue " + Q(picture)));
    std::string pictures, out;
    for (int i = 0; i < 12; ++i) pictures += " " + Q(picture);
    ASSERT_EQ(Cli("new --year 2026 --pictures" + pictures + " -o " + Q(cln), &out), 0) << out;
    ASSERT_EQ(Cli("render " + Q(cln) + " --page 0 --paper a4 --format pdf -o " + Q(pdf), &out), 0) << out;
    // What the print resolution check of `info` says it prints at.
    ASSERT_EQ(Cli("info " + Q(cln) + " --paper a4", &out), 0);
    const size_t ppiAt = out.find("\"ppi\": ", out.find("\"printResolution\""));
    ASSERT_NE(ppiAt, std::string::npos) << out;
    const int ppi = std::atoi(out.c_str() + ppiAt + 7);
    ASSERT_EQ(RunCommand("pdfimages -list " + Q(pdf) + " | tail -n +3", &out), 0);
    int width = 0, height = 0, xPpi = 0, yPpi = 0;
    ASSERT_EQ(std::sscanf(out.c_str(), "%*d %*d image %d %d %*s %*d %*d %*s %*s %*d %*d %d %d", &width, &height, &xPpi,
                          &yPpi),
              4)
        << out;
    EXPECT_EQ(width < c.width, c.reduced) << out;
    EXPECT_NEAR(xPpi, c.reduced ? 300 : ppi, 1) << out;
    EXPECT_NEAR(yPpi, c.reduced ? 300 : ppi, 1) << out;

    // The catalog names an sRGB output intent whose profile is an ICC one.
    ASSERT_EQ(RunCommand("qpdf --check " + Q(pdf), &out), 0) << out;
    ASSERT_EQ(RunCommand("qpdf --show-object=trailer " + Q(pdf), &out), 0) << out;
    const std::string root = out.substr(out.find("/Root ") + 6, out.find(" 0 R", out.find("/Root ")) - out.find("/Root ") - 6);
    ASSERT_EQ(RunCommand("qpdf --show-object=" + root + " " + Q(pdf), &out), 0) << out;
    const size_t intents = out.find("/OutputIntents [ ");
    ASSERT_NE(intents, std::string::npos) << out;
    ASSERT_EQ(RunCommand("qpdf --show-object=" + std::to_string(std::atoi(out.c_str() + intents + 17)) + " " + Q(pdf), &out), 0);
    EXPECT_TRUE(Has(out, "/S /GTS_PDFA1") && Has(out, "/OutputConditionIdentifier (sRGB IEC61966-2.1)")) << out;
    const size_t profileAt = out.find("/DestOutputProfile ");
    ASSERT_NE(profileAt, std::string::npos) << out;
    ASSERT_EQ(RunCommand("qpdf --show-object=" + std::to_string(std::atoi(out.c_str() + profileAt + 19)) +
                             " --filtered-stream-data " + Q(pdf),
                         &out),
              0);
    EXPECT_EQ(out.substr(36, 4), "acsp") << "an ICC profile";
    EXPECT_EQ(out.substr(16, 4), "RGB ");
  }
}
