// quernal-cli with a folder of photographs as phones and cameras leave them:
// every common format, EXIF-rotated, 48 megapixels, a broken file among them.
#include <sys/stat.h>

#include <string>

#include "base/geometry.h"
#include "bench/photo_jpeg.h"
#include "cli/cli_run.h"

namespace {

class PhotosCliTest : public CliTest {
 protected:
  // A small picture whose width tells it apart, in the format of `name`'s
  // extension, made by ImageMagick and, for WebP and HEIC, the codecs' own
  // encoders.
  std::string Photo(const std::string& name, int width) {
    const std::string path = dir_.File(name), png = dir_.File("source.png");
    const std::string make = "convert -size " + std::to_string(width) + "x60 gradient:orange-navy '" + png + "'";
    const std::string extension = name.substr(name.rfind('.') + 1);
    std::string encode = "convert '" + png + "' '" + path + "'";
    if (extension == "webp") encode = "cwebp -quiet '" + png + "' -o '" + path + "'";
    if (extension == "heic") encode = "heif-enc -q 80 '" + png + "' -o '" + path + "'";
    EXPECT_EQ(RunCommand(make + " && " + encode), 0) << name;
    return path;
  }
  static std::string Size(int width, int height) {
    return "\"Picture\": {\"width\": " + std::to_string(width) + ", \"height\": " + std::to_string(height) + ",";
  }
};

}  // namespace

TEST_F(PhotosCliTest, AFolderOfEveryFormatBecomesTheMonthsInNameOrder) {
  ASSERT_EQ(mkdir(dir_.File("phone").c_str(), 0755), 0);
  const char* names[] = {"a.heic", "b.webp", "c.tif", "d.jpeg", "e.JPG", "f.png", "g.jpe"};
  for (int i = 0; i < 7; ++i) Photo(std::string("phone/") + names[i], 40 + i);
  WriteFile(dir_.File("phone/notes.txt"), "not a picture, not an image file either");
  WriteFile(dir_.File("phone/c2.jpg"), "\xFF\xD8\xFF\xE0 broken");
  const std::string cal = dir_.File("phone.CLN");

  // One unreadable file stops the command, names it, and writes nothing.
  CliRun r = Cli("new --picture-dir " + Q(dir_.File("phone")) + " -o " + Q(cal));
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.err, "c2.jpg: damaged")) << r.err;
  EXPECT_FALSE(FileExists(cal));
  // Asked to, it leaves that one out, and every month keeps its order.
  r = Cli("new --picture-dir " + Q(dir_.File("phone")) + " --skip-unreadable -o " + Q(cal));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(Has(r.err, "c2.jpg: skipped")) << r.err;
  const std::string info = Cli("info " + Q(cal)).out;
  for (int month = 0; month < 7; ++month) EXPECT_TRUE(Has(info, Size(40 + month, 60))) << names[month];
  EXPECT_EQ(Count(info, "\"Picture\": null,"), 5);
  // A file no reader knows is named with the reason.
  r = Cli("set " + Q(cal) + " --page 8 --picture " + Q(dir_.File("phone/notes.txt")));
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.err, "notes.txt: not a picture")) << r.err;
}

TEST_F(PhotosCliTest, ACalendarOf48MegapixelPhotographsSavesAndOpensAgain) {
  // (A turned photograph comes out upright in PictureImport's unit test.)
  const std::string photo = dir_.File("camera.jpg");
  ASSERT_TRUE(WritePhotoJpeg(photo, {8000, 6000}));
  std::string twelve;
  for (int month = 0; month < 12; ++month) twelve += " " + Q(photo);
  // The fastest compression: the streams' size is not what is tested here.
  ASSERT_EQ(mkdir(dir_.File("conf").c_str(), 0755), 0);
  ASSERT_EQ(RunCommand(std::string(QUERNAL_CLI) + " settings | sed 's/^ImageCompression = .*/ImageCompression = 1/' > " +
                       Q(dir_.File("conf/QUERNL.INI"))),
            0);
  const std::string cal = dir_.File("cal.CLN"), config = " --config " + Q(dir_.File("conf"));
  CliRun r = Cli("new --pictures" + twelve + " --cover-picture " + Q(photo) + config + " -o " + Q(cal));
  ASSERT_EQ(r.status, 0) << r.err;
  // Reduced to 4000 pixels; nothing is damaged on the way back.
  r = Cli("info " + Q(cal));
  EXPECT_TRUE(r.err.empty()) << r.err;
  EXPECT_EQ(Count(r.out, Size(4000, 3000)), 12);
  // Kept at full size they are more than one calendar file holds: refused, the old file kept.
  const std::string before = ReadFile(cal);
  r = Cli("new --full-size --pictures" + twelve + config + " -o " + Q(cal));
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.err, "too large for one calendar file")) << r.err;
  EXPECT_TRUE(ReadFile(cal) == before);
}

// summary, info and render say which pictures print below 150 ppi.
TEST_F(PhotosCliTest, SmallPicturesAreSaidToPrintBlurry) {
  // A 640 x 480 photograph and a 3000 x 2000 one, on A4 and on Letter.
  const std::string small = dir_.File("small.png"), cal = dir_.File("cal.CLN");
  ASSERT_EQ(RunCommand("convert -size 640x480 gradient:orange-navy " + Q(small) + " && convert -size 3000x2000 "
                       "gradient:orange-navy " + Q(dir_.File("large.png"))),
            0);
  ASSERT_EQ(Cli("new --pictures " + Q(small) + " " + Q(dir_.File("large.png")) + " -o " + Q(cal)).status, 0);
  for (const char* paper : {"a4", "letter"}) {
    // The resolution is the picture's pixels over the inches the page
    // drawing gives it at 300 dpi ("picture LEFT TOP RIGHT BOTTOM").
    const std::string ops = dir_.File("page.ops");
    ASSERT_EQ(Cli("render " + Q(cal) + " --page 0 --paper " + paper + " --format ops -o " + Q(ops)).status, 0);
    const std::string drawn = ReadFile(ops);
    int left, top, right, bottom;
    ASSERT_EQ(std::sscanf(drawn.c_str() + drawn.find("picture "), "picture %d %d %d %d", &left, &top, &right, &bottom), 4);
    const int ppi = 640 * 300 / (right - left);
    EXPECT_LT(ppi, 150) << paper;
    const CliRun summary = Cli("summary " + Q(cal) + " --paper " + paper);
    EXPECT_TRUE(Has(summary.out, "640 x 480 picture, prints at " + std::to_string(ppi) + " ppi (may print blurry)"))
        << summary.out;
    EXPECT_EQ(Count(summary.out, "may print blurry"), 1) << "February's prints sharp\n" << summary.out;
    EXPECT_TRUE(Has(Cli("info " + Q(cal) + " --paper " + paper).out,
                    "\"printResolution\": {\"paper\": \"" + std::string(paper) + "\", \"pictures\": [{\"page\": 0, "
                    "\"ppi\": " + std::to_string(ppi) + ", \"mayPrintBlurry\": true}, {\"page\": 1,"));
    const CliRun render = Cli("render " + Q(cal) + " --all --paper " + paper + " --format pdf -o " + Q(dir_.File("c.pdf")));
    EXPECT_EQ(render.status, 0);
    EXPECT_EQ(render.err, "quernal-cli: warning: the picture of the page \"January\" prints at " + std::to_string(ppi) +
                              " ppi and may print blurry (150 ppi or more prints sharp)\n");
  }
}

// --fill-box crops a picture to the shape of the box its page shows it in on
// the paper, so that it fills the box instead of being letterboxed.
TEST_F(PhotosCliTest, FillBoxCropsPicturesToFillTheirBoxOnThePaper) {
  const std::string wide = dir_.File("wide.png"), tall = dir_.File("tall.png"), cal = dir_.File("cal.CLN");
  ASSERT_EQ(RunCommand("convert -size 1600x1200 gradient:red-blue " + Q(wide) + " && convert -size 900x1600 "
                       "gradient:red-blue " + Q(tall)),
            0);
  ASSERT_EQ(Cli("new --pictures " + Q(wide) + " " + Q(tall) + " -o " + Q(cal)).status, 0);
  // The month's box at 300 dpi from the default design (margin 2 %, gutter
  // 2 %, padding 5 % of the inner width, shadow 5 % of the smaller side):
  // A4 2480 x 3508: inner 49..2431 x 49..3459, box to (3410 - 68) / 2 = 1671,
  // padded by 119 and less a shadow of 69: 168,168 to 2243,1483.
  // The cropped height is 1600 x 1315 / 2075 rounded; the fit's scale of
  // 1296 thousandths draws it 2073 pixels wide: 231 ppi. Letter's box is
  // wider still (2550 x 3300).
  const struct {
    const char* paper;
    Rect box;
    const char* summary;
  } papers[] = {{"a4", {168, 168, 2243, 1483}, "1600 x 1014 picture, prints at 231 ppi"},
                {"letter", {173, 173, 2314, 1382}, "1600 x 904 picture, prints at 224 ppi"}};
  // The page's background (white) inside the box, across its middle row and
  // down its middle column.
  const auto gaps = [&](const std::string& calendar, const char* paper, const Rect& box, int* across, int* down) {
    const std::string png = dir_.File("page.png");
    ASSERT_EQ(Cli("render " + Q(calendar) + " --page 0 --paper " + paper + " --format png -o " + Q(png)).status, 0);
    const Png image(png);
    *across = *down = 0;
    for (int x = box.left; x < box.right; ++x) *across += image(x, (box.top + box.bottom) / 2) == 0xFFFFFF;
    for (int y = box.top; y < box.bottom; ++y) *down += image((box.left + box.right) / 2, y) == 0xFFFFFF;
  };
  const std::string filled = dir_.File("filled.CLN");
  for (const auto& p : papers) {
    int across, down;
    gaps(cal, p.paper, p.box, &across, &down);
    EXPECT_GT(across, 200) << p.paper << ": letterboxed before (the shadow covers some)";
    ASSERT_EQ(RunCommand("cp " + Q(cal) + " " + Q(filled)), 0);
    const CliRun set = Cli("set " + Q(filled) + " --page 0 --fill-box --paper " + p.paper);
    ASSERT_EQ(set.status, 0) << set.err;
    EXPECT_TRUE(Has(Cli("summary " + Q(filled) + " --paper " + p.paper).out, p.summary)) << p.paper;
    // What the fit's scale in whole thousandths leaves: under a thousandth
    // of the 1600 pixels, plus one.
    gaps(filled, p.paper, p.box, &across, &down);
    EXPECT_LE(across, 2) << p.paper;
    EXPECT_LE(down, 2) << p.paper;
  }
  // The focus chooses the part kept: at the bottom, the portrait picture's
  // blue end tops the box where the middle's crop would show red. (Where
  // each focus puts the frame is the crop's unit test.)
  const std::string png = dir_.File("focus.png");
  ASSERT_EQ(Cli("set " + Q(filled) + " --page 1 --fill-box --focus 50,100").status, 0);
  EXPECT_TRUE(Has(Cli("info " + Q(filled)).out, Size(900, 570))) << "900 x 1315 / 2075";
  ASSERT_EQ(Cli("render " + Q(filled) + " --page 1 --format png -o " + Q(png)).status, 0);
  const Rect& box = papers[0].box;
  const uint32_t top = Png(png)((box.left + box.right) / 2, box.top + 3);
  EXPECT_LT(top >> 16, top & 0xFF) << std::hex << top;
  EXPECT_EQ(Cli("set " + Q(cal) + " --page 1 --fill-box --focus 50").status, 2);
  // new --fill-box fills every box, the cover's too: 2480 wide less a pad
  // of 124 on each side and a shadow of 71, the gutter 70 below the middle
  // 1754 and the pad from the page's bottom 3508: 2161 x 1365.
  ASSERT_EQ(Cli("new --fill-box --pictures " + Q(wide) + " " + Q(tall) + " --cover-picture " + Q(wide) + " -o " + Q(cal))
                .status, 0);
  const std::string info = Cli("info " + Q(cal)).out;
  EXPECT_EQ(Count(info, Size(1600, 1014)), 1);
  EXPECT_EQ(Count(info, Size(900, 570)), 1);
  EXPECT_TRUE(Has(info, "\"CoverPicture\": {\"width\": 1600, \"height\": 1011,")) << info.substr(0, 400);
}
