#include "print/progress_bar.h"

#include <algorithm>
#include <cstdio>

bool ProgressDoneRight(const char* text, int right, int* doneRight) {
  int total, current;
  if (!text || !*text || std::sscanf(text, "%d,%d", &total, &current) != 2) return false;
  total -= 1;
  current = std::min(current, total);
  total = std::max(total, 1);
  *doneRight = static_cast<int>(static_cast<long long>(current) * right / total);
  return true;
}
