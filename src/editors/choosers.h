// The sub-dialogs that a tab of the page and year sheets opens, as plain
// functions with in/out arguments: the font box, the colour dialog, the
// picture-open dialog with the reading of the file chosen, and the paint
// program. The sheets open the real ones; a tab's buttons take them as an
// argument, so what a tab does with their answers runs without a window.
#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "base/geometry.h"
#include "base/global_block.h"

// The paint program's answer: the picture as it left it, a new Dib; none
// when the program named is not there or a step of the round trip failed.
struct PaintedPicture {
  BlockHandle dib = 0;
  bool noProgram = false;
};

struct Choosers {
  // The font box on `face` (261 bytes) and those of the other fields given
  // (`size` may be null; the range 0..0 takes the size away). True after
  // OK, the face and the fields given then holding the choice.
  std::function<bool(char* face, int32_t* weight, int32_t* italic, int32_t* size, int minimum, int maximum)> font;
  // The colour dialog on `colour`; true after OK, the colour then chosen.
  std::function<bool(Colour* colour)> colour;
  // The picture-open dialog: `path` (260 characters) names the folder to
  // start in; true when a file was chosen, its full path then in `path`.
  std::function<bool(char* path)> openPicture;
  // Where the picture-open dialog starts while no folder has been used
  // (nor the program's own): the user's pictures; empty when unknown.
  std::string picturesFolder;
  // The file chosen read as a picture for a page of `background`: a new
  // Dib, or 0 after telling the user why not.
  std::function<BlockHandle(const char* path, Colour background)> readPicture;
  // `dib` edited in the paint program `program`, started maximized or not.
  std::function<PaintedPicture(const char* program, BlockHandle dib, bool maximized)> paint;
};
