#include "base/replace_file.h"

#include <windows.h>

bool ReplaceFileWith(const char* temporary, const char* target) {
  return MoveFileExA(temporary, target, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}
