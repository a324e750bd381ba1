// Writes a Display P3 profile (D65 white, the P3 primaries, the sRGB tone
// curve), the profile phones embed in their photographs, made by Little CMS
// so that the tests need no profile file of unknown origin.
#include <lcms2.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s OUT.icc\n", argv[0]);
    return 2;
  }
  const cmsCIExyY white = {0.3127, 0.3290, 1.0};
  const cmsCIExyYTRIPLE primaries = {{0.680, 0.320, 1.0}, {0.265, 0.690, 1.0}, {0.150, 0.060, 1.0}};
  const cmsFloat64Number srgbCurve[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
  cmsToneCurve* curve = cmsBuildParametricToneCurve(nullptr, 4, srgbCurve);
  cmsToneCurve* curves[3] = {curve, curve, curve};
  cmsHPROFILE p3 = cmsCreateRGBProfile(&white, &primaries, curves);
  cmsFreeToneCurve(curve);
  const bool saved = p3 && cmsSaveProfileToFile(p3, argv[1]);
  if (p3) cmsCloseProfile(p3);
  return saved ? 0 : 1;
}
