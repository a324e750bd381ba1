// The pictures of the sample calendar: landscapes drawn by arithmetic, one
// for each month and one for the cover, so the sample carries no photograph
// of unknown origin and comes out the same on every build.
#pragma once
#include <cstdint>

#include "base/global_block.h"

constexpr int kSampleScenes = 13;  // January to December, then the cover
// A 24-bit Dib of scene `index` (0..12), or 0 when memory runs out.
BlockHandle SampleScene(int index, int32_t width, int32_t height);
// The scene's name, used as the page's caption.
const char* SampleSceneTitle(int index);
