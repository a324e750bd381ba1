#include "pictures/page_picture_win32.h"

#include <cstdio>
#include <string>

#include "base/program_win32.h"
#include "config/settings.h"
#include "pictures/page_picture.h"
#include "pictures/wic_picture_win32.h"
#include "res/string_ids.h"

void WarnAboutPalette(HWND owner) {
  if (Settings.WarnPaletteColour &&
      !WarningWithCheckBox(owner, "PaletteWarningBox", MAKEINTRESOURCEA(32516), StringTableText(IDS_PALETTE_WARNING),
                           true))  // IDI_INFORMATION; unticked: no more warnings
    Settings.WarnPaletteColour = 0;
}

namespace {

// Message boxes for what went wrong, the palette warning box, and Windows
// Imaging Component for what a dropped file holds beyond the six formats.
class WindowsHost : public PagePictureHost {
 public:
  WindowsHost(HWND owner, bool dropped) : owner_(owner), dropped_(dropped) {}

  void Failed(const char*, const ImportedPicture& picture) override {
    switch (picture.error) {
      case ImportError::kTooLarge: {
        char text[512];
        std::snprintf(text, sizeof text, StringTableText(IDS_PICTURE_TOO_LARGE).c_str(),
                      std::to_string((picture.filePixels + 999999) / 1000000).c_str(),
                      std::to_string(picture.maxPixels / 1000000).c_str());
        MessageBoxA(owner_, text, "Message", MB_OK | MB_ICONINFORMATION);
        break;
      }
      case ImportError::kOutOfMemory: ShowMessage(owner_, IDS_MEMORY_FAILED); break;
      case ImportError::kNotAPicture:
      case ImportError::kUnsupported: ShowMessage(owner_, dropped_ ? IDS_NOT_A_PICTURE : IDS_IMAGE_LOAD_FAILED); break;
      default: ShowMessage(owner_, IDS_IMAGE_LOAD_FAILED);
    }
  }
  void WarnAboutPalette(const char*) override { ::WarnAboutPalette(owner_); }
  bool DecodeOther(const char* path, DecodedPixels* pixels) override {
    *pixels = DecodeWithWic(path, kMaxDecodedPixels);
    return true;
  }

 private:
  HWND owner_;
  bool dropped_;
};

ImportRequest PageRequest(Colour background, ImportFormats formats) {
  ImportRequest request;
  request.background = background;
  request.formats = formats;
  return request;
}

}  // namespace

BlockHandle LoadPagePicture(HWND owner, const char* path, Colour background) {
  WindowsHost host(owner, false);
  return ReadPagePicture(path, PageRequest(background, ImportFormats::kSixRows), host);
}

// A dropped file is read by its content, so a .jpeg or a misnamed PNG meets
// the program's own readers; what they do not read goes to WIC.
BlockHandle LoadDroppedPicture(HWND owner, const char* path, Colour background) {
  WindowsHost host(owner, true);
  return ReadPagePicture(path, PageRequest(background, ImportFormats::kByContent), host);
}
