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
  // Which pixels come back is the picture tabs' test, painting from the sheet.
  ASSERT_NE(painted, 0u);
  EXPECT_EQ(GlobalBlockSize(painted), GlobalBlockSize(photo));
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
