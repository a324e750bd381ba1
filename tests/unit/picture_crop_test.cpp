// The crop frame: always the box's shape, always inside the picture; and
// the crop of a Dib of every depth to it.
#include <cstring>
#include <vector>

#include "base/dib.h"
#include "pictures/picture_crop.h"
#include "pictures/resampler.h"
#include "test_support.h"

static bool operator==(const CropFrame& a, const CropFrame& b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}
static std::ostream& operator<<(std::ostream& out, const CropFrame& f) {
  return out << "{" << f.x << ", " << f.y << ", " << f.width << " x " << f.height << "}";
}

TEST(PictureCrop, TheFrameKeepsTheBoxShapeInsideThePicture) {
  const CropShape wide{400, 300, 200, 100};   // a 4:3 picture, a 2:1 box
  const CropShape tall{300, 400, 300, 200};   // a portrait picture, a 3:2 box
  const CropFrame f{100, 100, 100, 50};
  const struct {
    const char* what;
    CropFrame got, want;
  } rows[] = {
      {"whole box, centred", FrameAtFocus(wide, 50, 50), {0, 50, 400, 200}},
      {"focus at the top", FrameAtFocus(wide, 0, 0), {0, 0, 400, 200}},
      {"focus past the bottom stops at the edge", FrameAtFocus(wide, 100, 100), {0, 100, 400, 200}},
      {"portrait picture, focus near the top", FrameAtFocus(tall, 50, 10), {0, 0, 300, 200}},
      {"portrait picture, centred", FrameAtFocus(tall, 50, 50), {0, 100, 300, 200}},
      {"a box with no area takes the picture's shape", FrameAtFocus({400, 300, 0, 100}, 50, 50), {0, 0, 400, 300}},
      {"moved past the bottom", MovedFrame(wide, {0, 50, 400, 200}, 10, 500), {0, 100, 400, 200}},
      {"smaller about its centre", ResizedFrame(wide, f, 50, 1, 1), {125, 112, 50, 25}},
      {"larger from its top left, up to the room right of it", ResizedFrame(wide, f, 1000, 0, 0), {100, 100, 300, 150}},
      {"never below the smallest frame", ResizedFrame(wide, f, 2, 2, 2), {192, 146, 8, 4}},
      {"bottom right corner dragged right", DraggedFrame(wide, f, FrameHit::kCorner3, 50, 0), {100, 100, 150, 75}},
      {"top left corner dragged up more than left", DraggedFrame(wide, f, FrameHit::kCorner0, -20, -40), {20, 60, 180, 90}},
      {"top left corner dragged beyond the picture", DraggedFrame(wide, f, FrameHit::kCorner0, -300, -300), {0, 50, 200, 100}},
      {"dragged inside, stopped at the left edge", DraggedFrame(wide, f, FrameHit::kInside, -500, 0), {0, 100, 100, 50}},
      {"bottom right corner dragged in and a little down", DraggedFrame(wide, f, FrameHit::kCorner3, -40, 4), {100, 100, 60, 30}},
      {"a drag outside the frame does nothing", DraggedFrame(wide, f, FrameHit::kNone, 30, 30), f},
      {"right arrow: a hundredth of the longer side", KeyedFrame(wide, f, FrameKey::kRight, false), {104, 100, 100, 50}},
      {"up arrow", KeyedFrame(wide, f, FrameKey::kUp, false), {100, 96, 100, 50}},
      {"shift+right grows about the centre", KeyedFrame(wide, f, FrameKey::kRight, true), {96, 98, 108, 54}},
      {"shift+left shrinks about the centre", KeyedFrame(wide, f, FrameKey::kLeft, true), {104, 102, 92, 46}},
      {"shift+down at full size stays", KeyedFrame(wide, {0, 50, 400, 200}, FrameKey::kDown, true), {0, 50, 400, 200}},
  };
  for (const auto& row : rows) EXPECT_EQ(row.got, row.want) << row.what;

  const struct {
    int64_t x, y;
    FrameHit want;
  } hits[] = {{103, 97, FrameHit::kCorner0}, {198, 102, FrameHit::kCorner1}, {100, 150, FrameHit::kCorner2},
              {205, 145, FrameHit::kCorner3}, {150, 120, FrameHit::kInside}, {150, 160, FrameHit::kNone}};
  for (const auto& h : hits) EXPECT_EQ(HitFrame(f, h.x, h.y, 5), h.want) << h.x << "," << h.y;
}

// Every pixel of the frame, read back through the importer's own row
// reader, is the pixel of the picture under it.
TEST(PictureCrop, ADibOfAnyDepthCropsToTheFramesPixels) {
  const CropFrame frame{3, 2, 9, 4};
  for (int bits : {1, 4, 8, 16, 24, 32}) {
    for (int height : {7, -7}) {
      const BlockHandle dib = DibCreate(14, height, static_cast<uint16_t>(bits));
      ASSERT_NE(dib, 0u);
      {
        BlockLock lock(dib);
        RgbQuad* table = DibColourTable(lock.bytes());
        for (uint32_t i = 0; i < DibColourTableEntries(bits); ++i)
          table[i] = {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i), static_cast<uint8_t>(i * 7), 0};
        uint8_t* pixels = DibBits(lock.bytes());
        const size_t size = DibRowStride(14, bits) * 7;
        for (size_t i = 0; i < size; ++i) pixels[i] = static_cast<uint8_t>(i * 37 + 11);
      }
      const BlockHandle cropped = DibCropped(dib, frame);
      ASSERT_NE(cropped, 0u) << bits;
      int32_t w, h;
      ASSERT_TRUE(DibSize(cropped, &w, &h));
      EXPECT_EQ(w, 9);
      EXPECT_EQ(h, 4);
      BlockLock from(dib), to(cropped);
      for (int row = 0; row < 4; ++row) {
        uint8_t whole[14 * 3], part[9 * 3];
        DibRowBgr(from.bytes(), frame.y + row, whole);
        DibRowBgr(to.bytes(), row, part);
        EXPECT_EQ(std::memcmp(whole + frame.x * 3, part, sizeof part), 0) << bits << " bits, height " << height;
      }
      GlobalBlockFree(cropped);
      // A frame reaching outside the picture crops nothing.
      EXPECT_EQ(DibCropped(dib, {6, 4, 9, 4}), 0u);
      GlobalBlockFree(dib);
    }
  }
}
