// The image files the program reads: the input under each of the six
// extensions, through the information call and the reader. A picture that
// was read must agree with the information, and a small one must survive the
// BMP writer and read back.
#include <cstring>
#include <string>

#include "base/dib.h"
#include "fuzz_support.h"
#include "pictures/image_files.h"
#include "pictures/picture_import.h"
#include "pictures/resampler.h"

namespace {

void CheckPicture(const char* path, BlockHandle dib, uint16_t reportedBits) {
  if (!DibBlockIsValid(dib)) __builtin_trap();
  BitmapInfoHeader h;
  std::memcpy(&h, BlockLock(dib).bytes(), sizeof h);
  int32_t width = 0, height = 0;
  uint16_t bits = 0;
  if (!GetImageFileInformation(path, &width, &height, &bits, nullptr)) __builtin_trap();
  // The picture is reduced to the import's longest side, and turned upright
  // (sides swapped) by an EXIF orientation.
  int32_t w, ht;
  ReducedSize(width, height, kImportLongestSide, &w, &ht);
  const bool sameSides = w == h.biWidth && ht == h.biHeight, swapped = w == h.biHeight && ht == h.biWidth;
  if ((!sameSides && !swapped) || reportedBits != bits) __builtin_trap();
  // Only a palette file whose pixels name missing entries, or one that was
  // reduced, turns to 24 bits (a grey one stays grey).
  if (bits != h.biBitCount && h.biBitCount != 24) __builtin_trap();

  uint32_t size = GlobalBlockSize(dib);
  if (size > (1u << 20)) return;  // writing large pictures back would slow the fuzzer down
  std::string copy = FuzzFolder() + "/copy.bmp";
  if (!WriteBmpFile(copy.c_str(), dib)) __builtin_trap();
  BlockHandle back = ReadImageFile(copy.c_str(), nullptr);
  if (!back || GlobalBlockSize(back) != size) __builtin_trap();
  // True colour comes back byte for byte; a table with repeated colours may
  // give other indexes for the same colours.
  if (h.biBitCount == 24 && std::memcmp(BlockLock(back).bytes(), BlockLock(dib).bytes(), size) != 0) __builtin_trap();
  GlobalBlockFree(back);
}

// A few bytes can describe a picture of any size. Headers up to 64 million
// pixels (five photographs' worth) are read and decoded, so the paths that
// refuse short data behind a large header are reached; a few bytes that
// really decode to more (a GIF screen, deflated PNG rows) would take many
// seconds under the sanitizers, and are left to the unit tests.
constexpr int64_t kMaxFuzzPixels = int64_t(1) << 26;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  for (const char* name : {"fuzz.jpg", "fuzz.bmp", "fuzz.gif", "fuzz.pcx", "fuzz.tga", "fuzz.png"}) {
    std::string path = WriteInput(name, data, size);
    int32_t width = 0, height = 0;
    uint16_t bits;
    uint8_t table[768];
    if (GetImageFileInformation(path.c_str(), &width, &height, &bits, table) &&
        int64_t{width} * height > kMaxFuzzPixels)
      continue;
    uint16_t reportedBits = 0;
    BlockHandle dib = ReadImageFile(path.c_str(), &reportedBits);
    if (dib) {
      CheckPicture(path.c_str(), dib, reportedBits);
      GlobalBlockFree(dib);
    }
  }
  CheckNoBlocksLeft();
  return 0;
}
