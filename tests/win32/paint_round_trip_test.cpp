// A picture sent to a paint program and taken back: the stand-in program
// beside the tests paints its first pixel, or fails by throwing the file away.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "base/dib.h"
#include "base/program_win32.h"
#include "pictures/paint_round_trip_win32.h"
#include "test_support.h"

TEST_F(QuernalTest, APictureComesBackFromThePaintProgramAsItWasPainted) {
  const std::string painter = ProgramFolder() + "stand_in_paint.exe";
  BlockHandle photo = MakePatternDib(6, 4, 24, 3);
  BlockHandle painted = PaintRoundTrip(nullptr, painter.c_str(), photo, true);
  ASSERT_NE(painted, 0u);
  {
    BlockLock before(photo), after(painted);
    ASSERT_EQ(GlobalBlockSize(painted), GlobalBlockSize(photo));
    const uint8_t* bits = DibBits(after.bytes());
    EXPECT_EQ(bits[0], 0x56);
    EXPECT_EQ(bits[2], 0x12);
    // The rest as it was (rows compared without their padding).
    for (int row = 0; row < 4; ++row) {
      const int from = row == 0 ? 3 : 0;
      EXPECT_EQ(std::memcmp(bits + row * 20 + from, DibBits(before.bytes()) + row * 20 + from, 18 - from), 0) << row;
    }
  }
  // A program that leaves no picture, and no program at all, give nothing.
  BlockHandle white = DibCreate(2, 2, 24);
  {
    BlockLock lock(white);
    std::memset(DibBits(lock.bytes()), 255, 12);
  }
  EXPECT_EQ(PaintRoundTrip(nullptr, painter.c_str(), white, false), 0u);
  EXPECT_EQ(PaintRoundTrip(nullptr, (ProgramFolder() + "no_such_paint.exe").c_str(), photo, false), 0u);
  char folder[MAX_PATH];
  GetTempPathA(sizeof folder, folder);
  WIN32_FIND_DATAA found;
  HANDLE left = FindFirstFileA((std::string(folder) + "Quernal-*.bmp").c_str(), &found);
  EXPECT_EQ(left, INVALID_HANDLE_VALUE) << "a temporary picture was left behind: " << found.cFileName;
  if (left != INVALID_HANDLE_VALUE) FindClose(left);
  for (BlockHandle b : {photo, painted, white}) GlobalBlockFree(b);
}
