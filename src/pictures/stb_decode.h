// The one door to stb_image: whole files decoded from memory, with every
// allocation it makes counted against kMaxPictureBytes.
#pragma once
#include <cstddef>
#include <cstdint>

// Decoded pixels, top row first, `channels` bytes each: 1 grey, 2 grey and
// alpha, 3 RGB, 4 RGBA.
struct StbPixels {
  uint8_t* data = nullptr;
  int width = 0;
  int height = 0;
  int channels = 0;
};

// False (and nothing to release) when stb_image cannot decode the bytes or
// would need more memory than allowed.
bool StbDecode(const uint8_t* data, size_t size, StbPixels* pixels);
void StbRelease(StbPixels* pixels);
