// A calendar of photograph-like pictures for benchmarks and tests: smooth
// colour gradients under fine noise, which zlib compresses to about 70 percent
// as it does real photographs (flat test patterns would shrink to a tenth and
// flatter every figure).
#pragma once
#include <cstdint>

#include "base/global_block.h"
#include "calendar/calendar_model.h"

// A 24-bit picture; each seed gives other colours and other noise.
BlockHandle PhotoLikePicture(int32_t width, int32_t height, uint32_t seed);
// A calendar of `year` whose first `months` months (0..12) and, when `cover`
// is set, the cover carry a width x height picture; 0 when memory runs out.
CalendarDocument PhotoCalendar(int year, int32_t width, int32_t height, int months, bool cover);
