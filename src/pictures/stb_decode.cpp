// stb_image is compiled here and nowhere else, for the four formats it reads
// for us. Its memory comes from a budget: every block it holds counts, so a
// hostile file cannot make it hold more than kMaxPictureBytes at once, however
// its headers lie.
#include "pictures/stb_decode.h"

#include <cstdlib>
#include <cstring>

#include "pictures/image_files.h"
#include "pictures/format_readers.h"

namespace {

// Each block carries its size in front, padded to keep malloc's alignment.
constexpr size_t kPrefix = 16;
size_t g_stbBytes = 0;

bool Affordable(size_t more) { return more <= kMaxPictureBytes && g_stbBytes <= kMaxPictureBytes - more; }

// New blocks are zero-filled: a file can make the decoder read what it never
// wrote (a scan that names a Huffman table no segment defined), and zeros
// keep that harmless where leftovers of earlier allocations would not be.
void* BudgetMalloc(size_t size) {
  if (!Affordable(size)) return nullptr;
  auto* block = static_cast<uint8_t*>(std::calloc(size + kPrefix, 1));
  if (!block) return nullptr;
  std::memcpy(block, &size, sizeof size);
  g_stbBytes += size;
  return block + kPrefix;
}

void BudgetFree(void* p) {
  if (!p) return;
  uint8_t* block = static_cast<uint8_t*>(p) - kPrefix;
  size_t size;
  std::memcpy(&size, block, sizeof size);
  g_stbBytes -= size;
  std::free(block);
}

void* BudgetRealloc(void* p, size_t size) {
  if (!p) return BudgetMalloc(size);
  uint8_t* block = static_cast<uint8_t*>(p) - kPrefix;
  size_t old;
  std::memcpy(&old, block, sizeof old);
  if (size > old && !Affordable(size - old)) return nullptr;
  auto* grown = static_cast<uint8_t*>(std::realloc(block, size + kPrefix));
  if (!grown) return nullptr;
  std::memcpy(grown, &size, sizeof size);
  g_stbBytes = g_stbBytes - old + size;
  return grown + kPrefix;
}

}  // namespace

#define STBI_MALLOC(size) BudgetMalloc(size)
#define STBI_REALLOC(p, size) BudgetRealloc(p, size)
#define STBI_FREE(p) BudgetFree(p)
// Its asserts check its own invariants and vanish in release builds; without
// them every build treats a hostile file the same way.
#define STBI_ASSERT(x) ((void)0)
#define STBI_MAX_DIMENSIONS kMaxImageSide
#define STBI_NO_STDIO
#define STBI_ONLY_PNG
#define STBI_ONLY_BMP
#define STBI_ONLY_GIF
#define STBI_ONLY_TGA
#define STB_IMAGE_IMPLEMENTATION
#include "stb_image.h"

bool StbDecode(const uint8_t* data, size_t size, StbPixels* pixels) {
  *pixels = StbPixels{};
  if (size > kMaxPictureBytes) return false;
  int width = 0, height = 0, channels = 0;
  stbi_uc* decoded = stbi_load_from_memory(data, static_cast<int>(size), &width, &height, &channels, 0);
  if (!decoded) return false;
  if (width <= 0 || height <= 0 || channels < 1 || channels > 4) {
    stbi_image_free(decoded);
    return false;
  }
  *pixels = StbPixels{decoded, width, height, channels};
  return true;
}

void StbRelease(StbPixels* pixels) {
  if (pixels->data) stbi_image_free(pixels->data);
  *pixels = StbPixels{};
}
