#include "base/replace_file.h"

#include <cstdio>

bool ReplaceFileWith(const char* temporary, const char* target) {
  return std::rename(temporary, target) == 0;
}
