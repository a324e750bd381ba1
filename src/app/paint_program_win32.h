// The external paint program: found once at start-up when the settings do
// not name one that exists.
#pragma once
#include <cstddef>
#include <cstdint>

// When `search` is set and `path` (a buffer of `size`) is empty or names no
// existing file, looks for `name` in the Windows folder, the system folder
// and the folders of PATH, and stores the full path found in `path`. A path
// that is not found leaves `path` as it was. True when `path` names an
// existing file afterwards.
bool FindPaintProgram(char* path, size_t size, const char* name, uint32_t search);
