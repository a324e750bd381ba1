#include "editors/picture_tab_win32.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/program_win32.h"
#include "config/settings.h"
#include "editors/control_binding.h"
#include "editors/crop_dialog_win32.h"
#include "editors/dialog_controls_win32.h"
#include "editors/picture_on_page.h"
#include "pictures/resampler.h"
#include "print/printer_win32.h"
#include "render/primitives_win32.h"
#include "res/string_ids.h"

namespace {

BlockHandle* PictureOf(void* record, const SheetTab& sheet) {
  return reinterpret_cast<BlockHandle*>(static_cast<char*>(record) + sheet.picture->picture);
}

// The current printer's printable page and its pixels per inch; A4 at the
// layout's resolution (and false) without a printer.
bool PrinterPage(Rect* page, int* dpi) {
  if (PrinterDC) {
    *page = {0, 0, GetDeviceCaps(PrinterDC, HORZRES), GetDeviceCaps(PrinterDC, VERTRES)};
    *dpi = GetDeviceCaps(PrinterDC, LOGPIXELSX);
    if (page->right > 0 && page->bottom > 0 && *dpi > 0) return true;
  }
  *page = PaperPage(*FindPaper("a4"), kLayoutDpi);
  *dpi = kLayoutDpi;
  return false;
}

// "Crop...": the frame has the shape of the picture's box on the printer's
// page, as the tab's controls lay it out now.
void CropPicture(HWND tab, void* record, const SheetTab& sheet) {
  BlockHandle* picture = PictureOf(record, sheet);
  Rect page;
  int dpi;
  PrinterPage(&page, &dpi);
  PagePicture laid;
  if (!*picture || !TabPictureOnPage(sheet, record, Win32DialogControls(tab), page, &laid)) return;
  if (CropPictureDialog(tab, picture, laid.box.right - laid.box.left, laid.box.bottom - laid.box.top))
    ApplyPictureState(tab, record, sheet);
}

}  // namespace

void ApplyPictureState(HWND tab, const void* record, const SheetTab& sheet) {
  Win32DialogControls controls(tab);
  ApplyPictureRules(sheet, record, controls);
  RepaintPicture(tab, record, sheet);
}

void RepaintPicture(HWND tab, const void* record, const SheetTab& sheet) {
  InvalidateRect(GetDlgItem(tab, IDC_PICTURE_SAMPLE), nullptr, TRUE);
  ShowPrintNote(tab, record, sheet);
}

void ShowPrintNote(HWND tab, const void* record, const SheetTab& sheet) {
  HWND note = GetDlgItem(tab, IDC_PICTURE_PRINT);
  if (!note) return;
  Rect page;
  int dpi;
  const bool printer = PrinterPage(&page, &dpi);
  PagePicture picture;
  char text[256] = "";
  bool blurry = false;
  if (*PictureOf(const_cast<void*>(record), sheet) &&
      TabPictureOnPage(sheet, record, Win32DialogControls(tab), page, &picture)) {
    const int ppi = PicturePpi(picture, dpi);
    blurry = ppi < kBlurryBelowPpi;
    std::snprintf(text, sizeof text, StringTableText(blurry ? IDS_PRINTS_BLURRY : IDS_PRINTS_AT).c_str(), ppi,
                  printer ? "" : StringTableText(IDS_PRINTS_WITHOUT_PRINTER).c_str());
  }
  SetWindowTextA(note, text);
  SetWindowLongPtrA(note, GWLP_USERDATA, blurry);
  InvalidateRect(note, nullptr, TRUE);
}

void DrawPrintNote(const DRAWITEMSTRUCT* item) {
  constexpr COLORREF kWarning = RGB(192, 0, 0);
  char text[256] = "";
  GetWindowTextA(item->hwndItem, text, sizeof text);
  RECT r = item->rcItem;
  FillRect(item->hDC, &r, GetSysColorBrush(COLOR_BTNFACE));
  HGDIOBJ old = SelectObject(item->hDC, reinterpret_cast<HFONT>(SendMessageA(item->hwndItem, WM_GETFONT, 0, 0)));
  SetBkMode(item->hDC, TRANSPARENT);
  const bool blurry = GetWindowLongPtrA(item->hwndItem, GWLP_USERDATA) != 0;
  SetTextColor(item->hDC, blurry ? kWarning : GetSysColor(COLOR_BTNTEXT));
  DrawTextA(item->hDC, text, -1, &r, DT_LEFT | DT_WORDBREAK | DT_NOPREFIX);
  SelectObject(item->hDC, old);
}

void DrawPicturePreview(const DRAWITEMSTRUCT* item, BlockHandle picture) {
  if ((item->itemState & ODS_DISABLED) || !picture) return;
  int64_t w, h;
  {
    BlockLock lock(picture);
    DibInfo info;
    if (!ReadDib(picture, lock, &info)) return;
    w = info.header.biWidth, h = std::abs(info.header.biHeight);
  }
  const int64_t W = item->rcItem.right - item->rcItem.left, H = item->rcItem.bottom - item->rcItem.top;
  if (W <= 0 || H <= 0) return;
  // The scale in thousandths, the drawn size, and the offsets that centre it.
  const int64_t f = std::min(W * 1000 / w, H * 1000 / h);
  const int sw = static_cast<int>(w * f / 1000), sh = static_cast<int>(h * f / 1000);
  const int dx = static_cast<int>((W - sw) / 2), dy = static_cast<int>((H - sh) / 2);
  if (sw < 1 || sh < 1) return;
  HDC dc = item->hDC;
  SetViewportOrgEx(dc, item->rcItem.left + dx, item->rcItem.top + dy, nullptr);
  // The picture resampled to the preview's size as printing resamples it,
  // drawn pixel for pixel: a 1-bit picture's fine lines show as the grey
  // they print as, where a stretch by the device would drop or keep them.
  const BlockHandle shown = ResampleDib(picture, sw, sh);
  if (shown) {
    BlockLock lock(shown);
    DibInfo info;
    if (const void* bits = ReadDib(shown, lock, &info))
      SetDIBitsToDevice(dc, 0, 0, static_cast<DWORD>(sw), static_cast<DWORD>(sh), 0, 0, 0, static_cast<UINT>(sh), bits,
                        reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS);
  }
  if (shown) GlobalBlockFree(shown);
  RECT frame{0, 0, sw, sh};
  FrameRect(dc, &frame, GetSysColorBrush(COLOR_BTNSHADOW));
}

bool PictureTabCommand(HWND tab, int command, void* record, const SheetTab& sheet) {
  return command == IDC_PICTURE_CROP && (CropPicture(tab, record, sheet), true);
}
