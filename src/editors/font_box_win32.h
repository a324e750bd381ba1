// "FontBox": the program's own font chooser. A page element's font is four
// fields (face, weight, italic, size in percent) that the box edits at once.
#pragma once
#include <windows.h>

#include <cstdint>

struct FontRequest {
  char face[261];
  int32_t weight;   // 400 normal, 700 bold, ... as the chosen style reports it
  int32_t italic;   // the chosen style's italic byte (the system may say 255)
  int32_t size;     // percent of the element's box
  int32_t minimum, maximum;  // the size arrows' range; 0..0 disables the size
};

// Opens the box on `face` (in and out, 261 bytes) and those of `weight`,
// `italic` and `size` that are present (any may be null). After OK the face
// and the present fields hold the choice and the result is non-zero; after
// Cancel nothing is touched.
int ChooseFontBox(HWND owner, char* face, int32_t* weight, int32_t* italic, int32_t* size, int minimum, int maximum);
