#include "unit/test_photos.h"

#include <lcms2.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "base/dib.h"
#include "pictures/resampler.h"

std::string PreparedPhotos() {
  const char* folder = std::getenv("QUERNAL_TEST_PHOTOS");
  return folder ? folder : "";
}

namespace {

RgbPixels ReadPpm(std::FILE* f) {
  RgbPixels out;
  int maxValue = 0;
  if (std::fscanf(f, "P6 %d %d %d", &out.width, &out.height, &maxValue) == 3 && maxValue == 255 && out.width > 0 &&
      out.height > 0) {
    std::fgetc(f);
    out.rgb.resize(static_cast<size_t>(out.width) * out.height * 3);
    if (std::fread(out.rgb.data(), 1, out.rgb.size(), f) != out.rgb.size()) out.rgb.clear();
  }
  return out;
}

}  // namespace

RgbPixels ReadPpm(const std::string& path) {
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) return RgbPixels{};
  RgbPixels out = ReadPpm(f);
  std::fclose(f);
  return out;
}

#ifndef _WIN32
bool Shell(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

bool MakeColourfulPicture(const std::string& path, int width, int height, const std::string& options) {
  const std::string size = std::to_string(width) + "x" + std::to_string(height);
  const int w = width - 1, h = height - 1;
  const std::string corners = "0,0 #FF1010 " + std::to_string(w) + ",0 #10FF30 0," + std::to_string(h) + " #2020FF " +
                              std::to_string(w) + "," + std::to_string(h) + " #FFE000";
  const std::string patches = "-fill white -draw 'rectangle 0,0 " + std::to_string(width / 5) + "," +
                              std::to_string(height / 5) + "' -fill black -draw 'rectangle " +
                              std::to_string(w - width / 5) + "," + std::to_string(h - height / 5) + " " +
                              std::to_string(w) + "," + std::to_string(h) + "'";
  return Shell("convert -size " + size + " xc: -sparse-color Bilinear '" + corners + "' " + patches + " " + options +
               " -quality 95 '" + path + "'");
}

RgbPixels MagickPixels(const std::string& path, const std::string& options) {
  RgbPixels out;
  std::FILE* p = popen(("convert '" + path + "' " + options + " -depth 8 ppm:-").c_str(), "r");
  if (!p) return out;
  out = ReadPpm(p);
  pclose(p);
  return out;
}

#endif

RgbPixels DibPixels(BlockHandle dib) {
  RgbPixels out;
  if (!DibBlockIsValid(dib)) return out;
  BlockLock lock(dib);
  const auto& h = *lock.as<BitmapInfoHeader>();
  out.width = h.biWidth;
  out.height = h.biHeight < 0 ? -h.biHeight : h.biHeight;
  out.rgb.resize(static_cast<size_t>(out.width) * out.height * 3);
  for (int y = 0; y < out.height; ++y) {
    uint8_t* row = out.rgb.data() + static_cast<size_t>(y) * out.width * 3;
    DibRowBgr(lock.bytes(), y, row);
    for (int x = 0; x < out.width; ++x) std::swap(row[3 * x], row[3 * x + 2]);
  }
  return out;
}

double MeanDeltaE(const RgbPixels& a, const RgbPixels& b) {
  if (a.width != b.width || a.height != b.height || a.rgb.size() != b.rgb.size() || a.rgb.empty()) return 1e9;
  cmsHPROFILE srgb = cmsCreate_sRGBProfile(), lab = cmsCreateLab4Profile(nullptr);
  cmsHTRANSFORM toLab = cmsCreateTransform(srgb, TYPE_RGB_8, lab, TYPE_Lab_DBL, INTENT_RELATIVE_COLORIMETRIC, 0);
  const size_t n = a.rgb.size() / 3;
  std::vector<cmsCIELab> la(n), lb(n);
  cmsDoTransform(toLab, a.rgb.data(), la.data(), static_cast<cmsUInt32Number>(n));
  cmsDoTransform(toLab, b.rgb.data(), lb.data(), static_cast<cmsUInt32Number>(n));
  cmsDeleteTransform(toLab);
  cmsCloseProfile(srgb);
  cmsCloseProfile(lab);
  double sum = 0;
  for (size_t i = 0; i < n; ++i) sum += cmsCIE2000DeltaE(&la[i], &lb[i], 1, 1, 1);
  return sum / static_cast<double>(n);
}

double MeanDifference(const RgbPixels& a, const RgbPixels& b) {
  if (a.width != b.width || a.height != b.height || a.rgb.size() != b.rgb.size() || a.rgb.empty()) return 1e9;
  double sum = 0;
  for (size_t i = 0; i < a.rgb.size(); ++i) sum += std::abs(a.rgb[i] - b.rgb[i]);
  return sum / static_cast<double>(a.rgb.size());
}

double Ssim(const RgbPixels& a, const RgbPixels& b) {
  if (a.width != b.width || a.height != b.height || a.rgb.size() != b.rgb.size() || a.width < 8 || a.height < 8)
    return 0;
  const auto luma = [](const RgbPixels& p, int x, int y) {
    const uint8_t* q = &p.rgb[(static_cast<size_t>(y) * p.width + x) * 3];
    return 0.299 * q[0] + 0.587 * q[1] + 0.114 * q[2];
  };
  const double c1 = 6.5025, c2 = 58.5225;  // (0.01 * 255)^2, (0.03 * 255)^2
  double sum = 0;
  int windows = 0;
  for (int y = 0; y + 8 <= a.height; y += 4)
    for (int x = 0; x + 8 <= a.width; x += 4, ++windows) {
      double ma = 0, mb = 0, va = 0, vb = 0, cov = 0;
      for (int j = 0; j < 8; ++j)
        for (int i = 0; i < 8; ++i) ma += luma(a, x + i, y + j), mb += luma(b, x + i, y + j);
      ma /= 64, mb /= 64;
      for (int j = 0; j < 8; ++j)
        for (int i = 0; i < 8; ++i) {
          const double da = luma(a, x + i, y + j) - ma, db = luma(b, x + i, y + j) - mb;
          va += da * da, vb += db * db, cov += da * db;
        }
      va /= 63, vb /= 63, cov /= 63;
      sum += (2 * ma * mb + c1) * (2 * cov + c2) / ((ma * ma + mb * mb + c1) * (va + vb + c2));
    }
  return sum / windows;
}
