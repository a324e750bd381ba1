#include "pictures/page_picture.h"

BlockHandle ReadPagePicture(const char* path, const ImportRequest& request, PagePictureHost& host) {
  ImportedPicture picture = ImportPictureFile(path, request);
  if (!picture.dib && request.formats == ImportFormats::kByContent &&
      (picture.error == ImportError::kNotAPicture || picture.error == ImportError::kUnsupported)) {
    DecodedPixels pixels;
    if (host.DecodeOther(path, &pixels)) picture = ImportDecodedPixels(pixels, request);
  }
  if (!picture.dib) {
    host.Failed(path, picture);
    return 0;
  }
  if (picture.paletteWarning) host.WarnAboutPalette(path);
  return picture.dib;
}
