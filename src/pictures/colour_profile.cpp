#include "pictures/colour_profile.h"

#include <lcms2.h>

namespace {

// Little CMS reports a broken profile by its results; its log would only
// reach stderr, which the desktop program does not have.
void Silent(cmsContext, cmsUInt32Number, const char*) {}

struct LayoutFormats {
  cmsColorSpaceSignature space;
  cmsUInt32Number in, out;
};

LayoutFormats FormatsOf(PixelLayout layout) {
  switch (layout) {
    case PixelLayout::kGrey: return {cmsSigGrayData, TYPE_GRAY_8, TYPE_RGB_8};
    case PixelLayout::kBgr: return {cmsSigRgbData, TYPE_BGR_8, TYPE_BGR_8};
    case PixelLayout::kRgb: return {cmsSigRgbData, TYPE_RGB_8, TYPE_RGB_8};
    case PixelLayout::kRgba: return {cmsSigRgbData, TYPE_RGBA_8, TYPE_RGBA_8};
    case PixelLayout::kCmyk: return {cmsSigCmykData, TYPE_CMYK_8, TYPE_BGR_8};
    case PixelLayout::kCmykInverted: return {cmsSigCmykData, TYPE_CMYK_8_REV, TYPE_BGR_8};
  }
  return {cmsSigRgbData, TYPE_BGR_8, TYPE_BGR_8};
}

uint8_t UnderInk(uint8_t ink, uint8_t black) {  // both stored as 255 for no ink
  const unsigned t = ink * black + 128u;
  return static_cast<uint8_t>((t + (t >> 8)) >> 8);
}

}  // namespace

ToSrgb::ToSrgb(const std::vector<uint8_t>& icc, PixelLayout layout) {
  if (icc.empty()) return;
  cmsSetLogErrorHandler(Silent);
  cmsHPROFILE source = cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size()));
  if (!source) return;
  const LayoutFormats f = FormatsOf(layout);
  if (cmsGetColorSpace(source) == f.space) {
    cmsHPROFILE srgb = cmsCreate_sRGBProfile();
    const cmsUInt32Number flags = layout == PixelLayout::kRgba ? cmsFLAGS_COPY_ALPHA : 0;
    if (srgb) transform_ = cmsCreateTransform(source, f.in, srgb, f.out, INTENT_PERCEPTUAL, flags);
    if (srgb) cmsCloseProfile(srgb);
  }
  cmsCloseProfile(source);
  if (transform_ && layout == PixelLayout::kGrey) {
    // Grey stays grey: a table of the 256 levels, each the green of its
    // sRGB colour (a neutral comes out with equal parts).
    uint8_t levels[256], colours[256 * 3];
    for (int i = 0; i < 256; ++i) levels[i] = static_cast<uint8_t>(i);
    cmsDoTransform(transform_, levels, colours, 256);
    for (int i = 0; i < 256; ++i) grey_[i] = colours[3 * i + 1];
    cmsDeleteTransform(transform_);
    transform_ = nullptr;
    greyLevels_ = true;
  }
}

ToSrgb::~ToSrgb() {
  if (transform_) cmsDeleteTransform(transform_);
}

void ToSrgb::Convert(const uint8_t* in, uint8_t* out, size_t n) const {
  if (greyLevels_) {
    for (size_t i = 0; i < n; ++i) out[i] = grey_[in[i]];
    return;
  }
  // Little CMS counts pixels in 32 bits.
  constexpr size_t kChunk = 1u << 24;
  const size_t inBytes = T_BYTES(cmsGetTransformInputFormat(transform_)) *
                         (T_CHANNELS(cmsGetTransformInputFormat(transform_)) + T_EXTRA(cmsGetTransformInputFormat(transform_)));
  const size_t outBytes = T_BYTES(cmsGetTransformOutputFormat(transform_)) *
                          (T_CHANNELS(cmsGetTransformOutputFormat(transform_)) + T_EXTRA(cmsGetTransformOutputFormat(transform_)));
  for (size_t done = 0; done < n; done += kChunk) {
    const size_t part = n - done < kChunk ? n - done : kChunk;
    cmsDoTransform(transform_, in + done * inBytes, out + done * outBytes, static_cast<cmsUInt32Number>(part));
  }
}

void CmykToBgr(const uint8_t* in, uint8_t* out, size_t n, bool inverted) {
  for (size_t i = 0; i < n; ++i, in += 4, out += 3) {
    uint8_t c = in[0], m = in[1], y = in[2], k = in[3];
    if (!inverted) c = 255 - c, m = 255 - m, y = 255 - y, k = 255 - k;
    out[0] = UnderInk(y, k);
    out[1] = UnderInk(m, k);
    out[2] = UnderInk(c, k);
  }
}
