#include "pictures/page_picture_win32.h"

#include <cstdio>
#include <string>

#include "base/program_win32.h"
#include "config/settings.h"
#include "pictures/picture_import.h"
#include "pictures/wic_picture_win32.h"
#include "res/string_ids.h"

void WarnAboutPalette(HWND owner) {
  if (Settings.WarnPaletteColour &&
      !WarningWithCheckBox(owner, "PaletteWarningBox", MAKEINTRESOURCEA(32516), StringTableText(IDS_PALETTE_WARNING),
                           true))  // IDI_INFORMATION; unticked: no more warnings
    Settings.WarnPaletteColour = 0;
}

namespace {

ImportRequest PageRequest(Colour background) {
  ImportRequest request;
  request.background = background;
  return request;
}

// The picture, or 0 after the message that says why it cannot be had.
BlockHandle Taken(HWND owner, const ImportedPicture& picture, bool dropped) {
  switch (picture.dib ? ImportError::kNone : picture.error) {
    case ImportError::kNone: break;
    case ImportError::kTooLarge: {
      char text[512];
      std::snprintf(text, sizeof text, StringTableText(IDS_PICTURE_TOO_LARGE).c_str(),
                    std::to_string((picture.filePixels + 999999) / 1000000).c_str(),
                    std::to_string(picture.maxPixels / 1000000).c_str());
      MessageBoxA(owner, text, "Message", MB_OK | MB_ICONINFORMATION);
      return 0;
    }
    case ImportError::kOutOfMemory: ShowMessage(owner, IDS_MEMORY_FAILED); return 0;
    case ImportError::kNotAPicture:
    case ImportError::kUnsupported:
      ShowMessage(owner, dropped ? IDS_NOT_A_PICTURE : IDS_IMAGE_LOAD_FAILED);
      return 0;
    default: ShowMessage(owner, IDS_IMAGE_LOAD_FAILED); return 0;
  }
  if (picture.paletteWarning) WarnAboutPalette(owner);
  return picture.dib;
}

}  // namespace

BlockHandle LoadPagePicture(HWND owner, const char* path, Colour background) {
  return Taken(owner, ImportPictureFile(path, PageRequest(background)), false);
}

// A dropped file is read by its content, so a .jpeg or a misnamed PNG meets
// the program's own readers; what they do not read goes to WIC.
BlockHandle LoadDroppedPicture(HWND owner, const char* path, Colour background) {
  ImportRequest request = PageRequest(background);
  request.formats = ImportFormats::kByContent;
  ImportedPicture picture = ImportPictureFile(path, request);
  if (!picture.dib && (picture.error == ImportError::kNotAPicture || picture.error == ImportError::kUnsupported)) {
    DecodedPixels pixels = DecodeWithWic(path, kMaxDecodedPixels);
    picture = ImportDecodedPixels(pixels, PageRequest(background));
  }
  return Taken(owner, picture, true);
}
