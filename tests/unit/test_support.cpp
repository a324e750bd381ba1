#include "test_support.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "base/dib.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "config/settings.h"

namespace fs = std::filesystem;

TempDir::TempDir() {
  static std::mt19937 random(std::random_device{}());
  for (;;) {
    fs::path p = fs::temp_directory_path() / ("quernal-test-" + std::to_string(random()));
    std::error_code error;
    if (fs::create_directory(p, error)) {
      path_ = p.string();
      return;
    }
  }
}

TempDir::~TempDir() {
  std::error_code error;
  fs::remove_all(path_, error);
}

std::string TempDir::File(const std::string& name) const { return JoinPath(path_, name); }

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary);
  out << bytes;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

bool FileExists(const std::string& path) { return fs::exists(path); }

std::string AsTextFile(const std::string& text) {
#ifdef _WIN32
  std::string out;
  for (char c : text) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return out;
#else
  return text;
#endif
}

void QuernalTest::SetUp() {
  ResetSettings();
  CopyText(Settings.ApplicationPath, sizeof Settings.ApplicationPath, dir_.path().c_str());
  CalendarDate today{2026, 11, 21};
  SetTodayForTesting(&today);
  liveBlocks_ = GlobalBlockLiveCount();
}

void QuernalTest::TearDown() {
  SetTodayForTesting(nullptr);
  EXPECT_EQ(GlobalBlockLiveCount(), liveBlocks_) << "the test left memory blocks behind";
}

BlockHandle MakePatternDib(int width, int height, int bits, uint32_t seed) {
  BlockHandle dib = DibCreate(width, height, static_cast<uint16_t>(bits));
  BlockLock lock(dib);
  uint8_t* p = lock.bytes() + sizeof(BitmapInfoHeader);
  uint8_t* end = lock.bytes() + GlobalBlockSize(dib);
  std::mt19937 random(seed);
  for (size_t i = 0; p < end; ++p, ++i) *p = static_cast<uint8_t>((i / 7) ^ (random() & 3));
  return dib;
}

std::vector<uint8_t> BlockBytes(BlockHandle block) {
  BlockLock lock(block);
  if (!lock) return {};
  return std::vector<uint8_t>(lock.bytes(), lock.bytes() + GlobalBlockSize(block));
}
