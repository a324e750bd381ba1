// Colours of a picture with an embedded ICC profile, converted to sRGB by
// Little CMS, so that photographs from phones (Display P3), cameras (Adobe
// RGB) and print work (CMYK) show and print the colours they were taken in.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

// How the pixels to convert are laid out, a byte per sample.
enum class PixelLayout {
  kGrey,
  kBgr,
  kRgb,
  kRgba,          // alpha passes through
  kCmyk,          // 0 is no ink
  kCmykInverted,  // 255 is no ink, as Adobe's CMYK JPEGs store it
};

// A conversion from one embedded profile to sRGB. A profile that cannot be
// read, or that is for other pixels than `layout` (an RGB profile on a grey
// picture), gives no conversion: the picture is read as it is stored.
class ToSrgb {
 public:
  ToSrgb(const std::vector<uint8_t>& icc, PixelLayout layout);
  ~ToSrgb();
  ToSrgb(const ToSrgb&) = delete;
  ToSrgb& operator=(const ToSrgb&) = delete;

  explicit operator bool() const { return transform_ != nullptr || greyLevels_; }
  // Converts `n` pixels. Grey stays grey (a byte each); RGB and CMYK come
  // out as blue, green, red (three bytes), except kRgb (red, green, blue)
  // and kRgba (four, alpha kept). `in` and `out` may be the same row for
  // layouts whose pixels keep their size.
  void Convert(const uint8_t* in, uint8_t* out, size_t n) const;

 private:
  void* transform_ = nullptr;  // a cmsHTRANSFORM
  bool greyLevels_ = false;
  uint8_t grey_[256] = {};
};

// Adobe's CMYK JPEGs as the program has always shown them when they carry no
// profile: each colour is what is left of white under its ink and black.
void CmykToBgr(const uint8_t* in, uint8_t* out, size_t n, bool inverted);
