#include "editors/choosers_win32.h"

#include <shlobj.h>

#include "colours/colour_dialog_win32.h"
#include "editors/font_box_win32.h"
#include "pictures/page_picture_win32.h"
#include "pictures/paint_round_trip_win32.h"
#include "pictures/picture_open_dialog_win32.h"

namespace {

std::string MyPictures() {
  char pictures[MAX_PATH] = "";
  if (FAILED(SHGetFolderPathA(nullptr, CSIDL_MYPICTURES, nullptr, SHGFP_TYPE_CURRENT, pictures))) pictures[0] = 0;
  return pictures;
}

}  // namespace

Choosers Win32Choosers(HWND tab) {
  Choosers c;
  c.font = [tab](char* face, int32_t* weight, int32_t* italic, int32_t* size, int minimum, int maximum) {
    return ChooseFontBox(tab, face, weight, italic, size, minimum, maximum) != 0;
  };
  c.colour = [tab](Colour* colour) {
    COLORREF chosen = *colour;
    if (!ChooseColourWithTable(tab, &chosen)) return false;
    *colour = static_cast<Colour>(chosen);
    return true;
  };
  c.openPicture = [tab](char* path) { return OpenPictureFile(tab, path) != 0; };
  c.picturesFolder = MyPictures();
  c.readPicture = [tab](const char* path, Colour background) { return LoadPagePicture(tab, path, background); };
  // The sheet takes no input until the program ends.
  c.paint = [tab](const char* program, BlockHandle dib, bool maximized) {
    PaintedPicture painted;
    if (GetFileAttributesA(program) == INVALID_FILE_ATTRIBUTES) {
      painted.noProgram = true;
      return painted;
    }
    painted.dib = PaintRoundTrip(GetParent(tab) ? GetParent(tab) : tab, program, dib, maximized);
    return painted;
  };
  return c;
}
