#include "render/primitives.h"

#include <algorithm>

Colour Mix(Colour a, Colour b) {
  return RGBColour((RedOf(a) + RedOf(b)) >> 1, (GreenOf(a) + GreenOf(b)) >> 1, (BlueOf(a) + BlueOf(b)) >> 1);
}

Colour BlendColour(Colour a, Colour b, int t) {
  auto channel = [t](uint32_t x, uint32_t y) { return ((x * t + y * (255 - t)) / 255) & 255; };
  return RGBColour(channel(RedOf(a), RedOf(b)), channel(GreenOf(a), GreenOf(b)), channel(BlueOf(a), BlueOf(b)));
}

namespace {
// The blend weight of ring i of n.
int RingWeight(Length i, Length n) { return static_cast<int>(static_cast<double>(i) / n * 255); }

// The first ring of weight t or more (weights never fall from ring to ring).
Length FirstRingOfWeight(int t, Length n) {
  Length i = t * n / 255;  // within a ring or two of it
  while (i > 0 && RingWeight(i - 1, n) >= t) --i;
  while (i < n && RingWeight(i, n) < t) ++i;
  return i;
}

// A rectangle the right way round, in 64 bits so that its edges can move.
Box Upright(const Rect& r) {
  return {std::min(r.left, r.right), std::min(r.top, r.bottom), std::max(r.left, r.right), std::max(r.top, r.bottom)};
}

bool Inside(const Rect& box, Length left, Length top, Length right, Length bottom) {
  return box.left >= left && box.top >= top && box.right <= right && box.bottom <= bottom;
}

// Whether a RoundRect without a pen surely paints every pixel of `box`. It
// fills one pixel short of the right and bottom edges, and the ellipse rounds
// off a corner square of at most ellipse / 2 (a pixel more is allowed for the
// rounding of its edge), so the box must lie in the cross that is left: in
// its upright or in its bar.
bool Covers(const Rect& ring, Length ellipse, const Rect& box) {
  const Box r = Upright(ring);
  const Length corner = ellipse / 2 + 1;
  return Inside(box, r.left + corner, r.top, r.right - 1 - corner, r.bottom - 1) ||
         Inside(box, r.left, r.top + corner, r.right - 1, r.bottom - 1 - corner);
}

// Whether a shape within `ring` can paint any pixel of `box`.
bool Meets(const Rect& ring, const Rect& box) {
  const Box r = Upright(ring);
  return r.left < box.right && box.left < r.right && r.top < box.bottom && box.top < r.bottom;
}
}  // namespace

Rect ShadowRingRect(const ShadowRings& s, Length i) {
  return ToRect({s.n / 2 + i, s.n / 2 + i, s.width + s.n - i, s.height + s.n - i});
}

Colour ShadowRingColour(const ShadowRings& s, Length i) {
  return BlendColour(s.shadow, s.background, RingWeight(i, s.n));
}

Length NextShadowRing(const ShadowRings& s, Length i) {
  // Up to 255 rings every ring has a weight of its own; beyond, the first of
  // the next weight follows.
  if (s.n <= 255) return i + 1;
  const int t = RingWeight(i, s.n);
  return t >= 255 ? s.n : FirstRingOfWeight(t + 1, s.n);
}

void Canvas::DrawShadowRings(const ShadowRings& s) {
  SetPen(kNullPen);
  for (Length i = s.first; i < s.n; i = NextShadowRing(s, i)) {
    const Rect r = ShadowRingRect(s, i);
    if (s.bounded && !Meets(r, s.visible)) continue;
    SetBrush(SolidBrush(ShadowRingColour(s, i)));
    RoundRect(r, Device(s.n), Device(s.n));
  }
}

int DrawSoftShadow(Canvas& canvas, Length left, Length top, Length right, Length bottom, Colour shadowColour,
                   Colour backgroundColour, int32_t softnessPercent) {
  ShadowRings s{right - left, bottom - top, 0, shadowColour, backgroundColour, 0, false, {0, 0, 0, 0}};
  s.n = Percent(s.width, softnessPercent);
  if (s.n < 1) return 1;
  s.bounded = canvas.VisibleBox(&s.visible);
  if (s.bounded) {
    // Start at the last ring that covers all that can show.
    for (Length i = 0; i < s.n; i = NextShadowRing(s, i))
      if (Covers(ShadowRingRect(s, i), Device(s.n), s.visible)) s.first = i;
  }
  canvas.DrawShadowRings(s);
  return 1;
}
