#include "editors/picture_on_page.h"

#include <cstring>
#include <vector>

bool TabPictureOnPage(const SheetTab& tab, const void* record, const DialogControls& controls, const Rect& page,
                      PagePicture* out) {
  const PictureBinding& picture = *tab.picture;
  std::vector<uint8_t> shown(picture.recordSize);
  std::memcpy(shown.data(), record, shown.size());
  // Only numbers, check boxes and radios: nothing that owns a block.
  ReadControls(tab.controls, tab.controlCount, shown.data(), controls);
  return picture.onPage(page, shown.data(), out);
}
