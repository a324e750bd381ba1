// Shared helpers of the unit tests: a private folder per test, whole-file
// reads and writes, and a fixture that starts from the compiled-in settings
// and fails a test that leaves memory blocks behind.
#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "base/global_block.h"
#include "calendar/calendar_model.h"

class TempDir {
 public:
  TempDir();
  ~TempDir();
  const std::string& path() const { return path_; }
  // path() joined with `name` by the platform's separator.
  std::string File(const std::string& name) const;

 private:
  std::string path_;
};

void WriteFile(const std::string& path, const std::string& bytes);
std::string ReadFile(const std::string& path);
bool FileExists(const std::string& path);
// `text` as a file written in text mode holds it: CR LF line ends on Windows.
std::string AsTextFile(const std::string& text);

class QuernalTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Blocks the code under test keeps on purpose, not a leak of the test's.
  void AllowBlocksLeftBehind(uint32_t blocks) { liveBlocks_ += blocks; }
  TempDir dir_;

 private:
  uint32_t liveBlocks_ = 0;
};

// The value of the settings row `key` as text (a number in decimal), or "?"
// when there is no such row.
std::string SettingText(const char* key);

// A Dib of the given size whose pixels follow a pattern from `seed`.
BlockHandle MakePatternDib(int width, int height, int bits, uint32_t seed);
std::vector<uint8_t> BlockBytes(BlockHandle block);

// The zlib stream of a 24-bit Dib of the given size with black pixels, and
// the Dib's size in bytes: a large picture in a small stream.
std::string BlankPictureStream(int32_t width, int32_t height, uint32_t* dataSize);
// The bytes of a new calendar file whose first `count` pictures (the cover,
// then January on) are all `stream`.
std::string CalendarFileWithPictures(int count, const std::string& stream, uint32_t dataSize);
// A calendar whose records hold `value` in every 32-bit word (as a damaged
// or hostile file may), with `year`, a small picture on every page and the
// drop shadow on: the numbers no editor makes, at the ends of their ranges.
CalendarDocument HostileCalendar(uint32_t value, int32_t year);
