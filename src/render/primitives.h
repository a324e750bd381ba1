// Small drawing routines shared by the page renderers and the editors.
#pragma once
#include <cstdint>

#include "base/geometry.h"
#include "render/canvas.h"
#include "render/layout.h"

// The per-channel mean (a + b) >> 1.
Colour Mix(Colour a, Colour b);
// Per channel (a * t + b * (255 - t)) / 255 for a weight t of 0..255.
Colour BlendColour(Colour a, Colour b, int t);

// A shadow fading from the background at its rim to `shadowColour` inside:
// n = width * softness / 100 rounded rectangles, each smaller than the last.
// Placed by its size alone at the current origin, not by left and top.
// Ring i has the colour of weight i / n * 255, so beyond 255 rings several in
// a row share one colour; of those only the outermost is drawn (the others
// lie inside it and would paint the same pixels again), which keeps even a
// shadow of a damaged record to at most 256 rings. Rings that cannot show
// where the canvas can draw are skipped.
int DrawSoftShadow(Canvas& canvas, Length left, Length top, Length right, Length bottom, Colour shadowColour,
                   Colour backgroundColour, int32_t softnessPercent);

// Ring i of a soft shadow: its rectangle, its colour, and the ring drawn
// after it (n when none is).
Rect ShadowRingRect(const ShadowRings& s, Length i);
Colour ShadowRingColour(const ShadowRings& s, Length i);
Length NextShadowRing(const ShadowRings& s, Length i);
