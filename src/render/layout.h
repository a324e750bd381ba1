// The arithmetic of page layouts. Every percentage comes from a record that
// may come from a damaged or hostile file, so it can be anything a 32-bit
// field holds. Layouts are therefore computed in 64 bits on values kept
// within +-2^40 (far beyond any page), where no sum or small multiple of a
// few of them can overflow; a value becomes a device coordinate only when it
// is handed to a canvas, saturated to +-2^29 so that a canvas can still add
// its origin. Whatever a real design computes stays far inside both ranges
// and comes out exactly as in 32-bit arithmetic.
#pragma once
#include <cstdint>

#include "base/geometry.h"

using Length = int64_t;
constexpr Length kLayoutLimit = Length(1) << 40;
constexpr Length kDeviceLimit = Length(1) << 29;

inline Length Clamped(Length v, Length limit) { return v > limit ? limit : v < -limit ? -limit : v; }
inline Length Bounded(Length v) { return Clamped(v, kLayoutLimit); }

// a * percent / 100, truncating toward zero. `a` is a page length (far below
// 2^31 on any real page), so the product cannot overflow.
inline Length Percent(Length a, int64_t percent) {
  return Bounded(Clamped(a, INT32_MAX) * Clamped(percent, INT32_MAX) / 100);
}

// A rectangle of the layout; right and bottom exclusive, as Rect.
struct Box {
  Length left, top, right, bottom;
};
inline Length Width(const Box& b) { return b.right - b.left; }
inline Length Height(const Box& b) { return b.bottom - b.top; }
inline Box ToBox(const Rect& r) { return {r.left, r.top, r.right, r.bottom}; }
inline Box BoxOfSize(Length left, Length top, Length width, Length height) {
  return {Bounded(left), Bounded(top), Bounded(left + width), Bounded(top + height)};
}
inline Box Deflated(const Box& b, Length d) {
  return {Bounded(b.left + d), Bounded(b.top + d), Bounded(b.right - d), Bounded(b.bottom - d)};
}
inline Box Offset(const Box& b, Length dx, Length dy) {
  return {Bounded(b.left + dx), Bounded(b.top + dy), Bounded(b.right + dx), Bounded(b.bottom + dy)};
}

// Device coordinates for a canvas.
inline int32_t Device(Length v) { return static_cast<int32_t>(Clamped(v, kDeviceLimit)); }
inline Rect ToRect(const Box& b) { return {Device(b.left), Device(b.top), Device(b.right), Device(b.bottom)}; }

// Pages are drawn only inside the device range; no screen or printer comes
// near its edge.
inline bool PageFitsDevice(const Rect& page) {
  for (int32_t v : {page.left, page.top, page.right, page.bottom})
    if (v < -kDeviceLimit || v > kDeviceLimit) return false;
  return true;
}
