#include "pictures/picture_open_dialog_win32.h"

#include <commdlg.h>

#include <string>

#include "base/dib.h"
#include "base/text.h"
#include "config/settings.h"
#include "pictures/image_files.h"
#include "pictures/picture_import.h"
#include "pictures/picture_preview.h"
#include "res/picture_dialog_ids.h"

namespace {

constexpr UINT kCentre = WM_USER + 1;  // posted on initialisation
// Over the preview box's size on any display, and quick to decode.
constexpr int32_t kPreviewLongestSide = 512;

struct PreviewState {
  BlockHandle picture = 0;
};

PreviewState* State(HWND hook) { return reinterpret_cast<PreviewState*>(GetWindowLongPtrA(hook, GWLP_USERDATA)); }

void FreePicture(PreviewState* state) {
  if (state->picture) GlobalBlockFree(state->picture);
  state->picture = 0;
}

void CentreOnScreen(HWND dialog) {
  RECT r;
  GetWindowRect(dialog, &r);
  SetWindowPos(dialog, nullptr, (GetSystemMetrics(SM_CXSCREEN) - (r.right - r.left)) / 2,
               (GetSystemMetrics(SM_CYSCREEN) - (r.bottom - r.top)) / 2, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

// The three controls keep their left edges and go to fixed heights, given
// for 96 dots per inch and scaled to the display's, as their sizes are.
void PlaceControls(HWND hook) {
  const struct {
    int id, top;
  } places[] = {{IDC_PICTURE_PREVIEW, 38}, {IDC_PICTURE_SHOW_PREVIEW, 183}, {IDC_PICTURE_FACTS, 204}};
  HDC dc = GetDC(hook);
  const int dpi = GetDeviceCaps(dc, LOGPIXELSY);
  ReleaseDC(hook, dc);
  for (const auto& p : places) {
    HWND control = GetDlgItem(hook, p.id);
    RECT r;
    GetWindowRect(control, &r);
    MapWindowPoints(nullptr, hook, reinterpret_cast<POINT*>(&r), 2);
    SetWindowPos(control, nullptr, r.left, MulDiv(p.top, dpi, 96), 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  }
}

void SelectionChanged(HWND hook, PreviewState* state) {
  char path[MAX_PATH] = "";
  const LRESULT length =
      SendMessageA(GetParent(hook), CDM_GETFILEPATH, sizeof path, reinterpret_cast<LPARAM>(path));
  if (length <= 0 || length > MAX_PATH) return;
  FreePicture(state);
  // The preview is small: the import decodes large photographs smaller
  // from the start. The facts describe the file, upright.
  ImportRequest request;
  request.longestSide = kPreviewLongestSide;
  const ImportedPicture picture = ImportPictureFile(path, request);
  state->picture = picture.dib;
  std::string facts;
  if (state->picture) facts = PictureFacts(picture.fileWidth, picture.fileHeight, picture.fileBitCount);
  SetDlgItemTextA(hook, IDC_PICTURE_FACTS, facts.c_str());
  InvalidateRect(GetDlgItem(hook, IDC_PICTURE_PREVIEW), nullptr, TRUE);
}

// A sunken white box, and in it the picture scaled to fit and centred.
void DrawPreview(HWND hook, const DRAWITEMSTRUCT& item, const PreviewState* state) {
  RECT box = item.rcItem;
  DrawEdge(item.hDC, &box, EDGE_SUNKEN, BF_RECT);
  RECT inside = item.rcItem;
  InflateRect(&inside, -2, -2);
  FillRect(item.hDC, &inside, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  if (!state->picture || IsDlgButtonChecked(hook, IDC_PICTURE_SHOW_PREVIEW) != BST_CHECKED) return;
  BitmapInfoHeader h{};
  {
    BlockLock lock(state->picture);
    if (!lock) return;
    h = *lock.as<BitmapInfoHeader>();
  }
  const int32_t rows = h.biHeight < 0 ? -h.biHeight : h.biHeight;
  const int32_t percent = FitPercent(inside.right - inside.left, inside.bottom - inside.top, h.biWidth, rows);
  BlockHandle shown = DibScaledByPercent(state->picture, percent);
  if (!shown) return;
  {
    BlockLock lock(shown);
    const auto& s = *lock.as<BitmapInfoHeader>();
    const int itemW = item.rcItem.right - item.rcItem.left, itemH = item.rcItem.bottom - item.rcItem.top;
    const int x = item.rcItem.left + (s.biWidth < itemW ? (itemW - s.biWidth) / 2 : 0);
    const int y = item.rcItem.top + (s.biHeight < itemH ? (itemH - s.biHeight) / 2 : 0);
    const int saved = SaveDC(item.hDC);
    IntersectClipRect(item.hDC, inside.left, inside.top, inside.right, inside.bottom);
    SetDIBitsToDevice(item.hDC, x, y, static_cast<DWORD>(s.biWidth), static_cast<DWORD>(s.biHeight), 0, 0, 0,
                      static_cast<UINT>(s.biHeight), DibBits(lock.bytes()), reinterpret_cast<const BITMAPINFO*>(&s),
                      DIB_RGB_COLORS);
    RestoreDC(item.hDC, saved);
  }
  GlobalBlockFree(shown);
}

UINT_PTR CALLBACK PreviewHook(HWND hook, UINT message, WPARAM wParam, LPARAM lParam) {
  PreviewState* state = State(hook);
  switch (message) {
    case WM_INITDIALOG: {
      const auto* ofn = reinterpret_cast<const OPENFILENAMEA*>(lParam);
      SetWindowLongPtrA(hook, GWLP_USERDATA, static_cast<LONG_PTR>(ofn->lCustData));
      PostMessageA(hook, kCentre, 0, 0);
      return TRUE;
    }
    case kCentre: CentreOnScreen(GetParent(hook)); return TRUE;
    case WM_NOTIFY:
      if (!state) return FALSE;
      switch (reinterpret_cast<const NMHDR*>(lParam)->code) {
        case CDN_INITDONE:
          CheckDlgButton(hook, IDC_PICTURE_SHOW_PREVIEW, Settings.ShowFileOpenPreview ? BST_CHECKED : BST_UNCHECKED);
          FreePicture(state);
          PlaceControls(hook);
          return TRUE;
        case CDN_SELCHANGE: SelectionChanged(hook, state); return TRUE;
      }
      return FALSE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDC_PICTURE_SHOW_PREVIEW && HIWORD(wParam) == BN_CLICKED) {
        Settings.ShowFileOpenPreview = IsDlgButtonChecked(hook, IDC_PICTURE_SHOW_PREVIEW) == BST_CHECKED;
        InvalidateRect(GetDlgItem(hook, IDC_PICTURE_PREVIEW), nullptr, TRUE);
        return TRUE;
      }
      return FALSE;
    case WM_DRAWITEM:
      if (state && wParam == IDC_PICTURE_PREVIEW) {
        DrawPreview(hook, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam), state);
        return TRUE;
      }
      return FALSE;
    case WM_DESTROY:
      if (state) FreePicture(state);
      return FALSE;
  }
  return FALSE;
}

}  // namespace

int OpenPictureFile(HWND owner, char* path) {
  // The dialog opens in the starting path's folder, with an empty name.
  const std::string start(path);
  const size_t cut = start.find_last_of("\\/:");
  std::string folder = cut == std::string::npos ? "" : start.substr(0, cut + 1);
  if (!folder.empty() && folder.back() != '\\') folder += '\\';
  path[0] = '\0';
  char title[261] = "";
  PreviewState state;
  OPENFILENAMEA ofn{};
  ofn.lStructSize = sizeof ofn;
  ofn.hwndOwner = owner;
  ofn.hInstance = GetModuleHandleA(nullptr);
  const std::string filter = ImageFormatDialogFilter();
  ofn.lpstrFilter = filter.c_str();
  ofn.nFilterIndex = Settings.ImageFileOpenIndex;
  ofn.lpstrFile = path;
  ofn.nMaxFile = MAX_PATH;
  ofn.lpstrFileTitle = title;
  ofn.nMaxFileTitle = sizeof title;
  ofn.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
  ofn.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST |
              OFN_ENABLEHOOK | OFN_ENABLETEMPLATE;
  ofn.lpfnHook = PreviewHook;
  ofn.lpTemplateName = "CommonOpenFileNameEx";
  ofn.lCustData = reinterpret_cast<LPARAM>(&state);
  const BOOL chosen = GetOpenFileNameA(&ofn);
  FreePicture(&state);
  if (chosen) Settings.ImageFileOpenIndex = ofn.nFilterIndex;
  return chosen;
}
