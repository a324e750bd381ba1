#include "print/printer_win32.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "base/program_win32.h"
#include "print/page_shape.h"
#include "res/print_dialog_ids.h"

HDC PrinterDC = nullptr;

namespace {

// The printer and its settings as last confirmed in a print dialog, portrait.
HGLOBAL g_confirmedMode = nullptr;
HGLOBAL g_confirmedNames = nullptr;

// A movable copy of `size` bytes, or null.
HGLOBAL CopyToGlobal(const void* bytes, SIZE_T size) {
  HGLOBAL copy = GlobalAlloc(GMEM_MOVEABLE, size);
  void* to = copy ? GlobalLock(copy) : nullptr;
  if (!to) {
    if (copy) GlobalFree(copy);
    return nullptr;
  }
  std::memcpy(to, bytes, size);
  GlobalUnlock(copy);
  return copy;
}

HGLOBAL CopyGlobal(HGLOBAL from) {
  const void* bytes = from ? GlobalLock(from) : nullptr;
  if (!bytes) return nullptr;
  HGLOBAL copy = CopyToGlobal(bytes, GlobalSize(from));
  GlobalUnlock(from);
  return copy;
}

void Keep(HGLOBAL* kept, HGLOBAL fresh) {
  if (*kept) GlobalFree(*kept);
  *kept = fresh;
}

// The DEVMODEA of the first 32-bit Windows versions: up to dmICMMethod's
// predecessors, 148 bytes, which every printer driver accepts.
constexpr WORD kDevModeSize = 148;

// The first printer's name: the default printer on the 9x series, else
// the first local printer.
bool FirstPrinterName(char name[32]) {
  const bool series9x = (GetVersion() & 0x80000000u) != 0;
  const DWORD flags = series9x ? PRINTER_ENUM_DEFAULT : PRINTER_ENUM_LOCAL;
  const DWORD level = series9x ? 5 : 4;
  DWORD needed = 0, count = 0;
  EnumPrintersA(flags, nullptr, level, nullptr, 0, &needed, &count);
  if (needed == 0) return false;
  std::unique_ptr<BYTE[]> buffer(new (std::nothrow) BYTE[needed]);
  if (!buffer || !EnumPrintersA(flags, nullptr, level, buffer.get(), needed, &needed, &count) || count == 0)
    return false;
  const char* printer = series9x ? reinterpret_cast<PRINTER_INFO_5A*>(buffer.get())->pPrinterName
                                 : reinterpret_cast<PRINTER_INFO_4A*>(buffer.get())->pPrinterName;
  if (!printer) return false;
  lstrcpynA(name, printer, 32);  // 31 characters and the terminator
  return true;
}

}  // namespace

HDC CreateDefaultPrinterDC() {
  char name[32];
  if (!FirstPrinterName(name)) return nullptr;
  std::unique_ptr<BYTE[]> memory(new (std::nothrow) BYTE[kDevModeSize]());
  if (!memory) return nullptr;
  auto* devMode = reinterpret_cast<DEVMODEA*>(memory.get());
  devMode->dmSpecVersion = 0x400;
  devMode->dmSize = kDevModeSize;
  devMode->dmFields = DM_ORIENTATION;
  devMode->dmOrientation = DMORIENT_PORTRAIT;
  std::memcpy(devMode->dmDeviceName, name, sizeof name);
  return CreateDCA(nullptr, name, nullptr, devMode);
}

bool AdoptDialogPrinter(const PRINTDLGA& dialog) {
  if (!dialog.hDevMode) return false;
  const SIZE_T size = GlobalSize(dialog.hDevMode);
  const void* chosen = GlobalLock(dialog.hDevMode);
  if (!chosen) return false;
  // The dialog's DEVMODE stays as the user left it; the copy is forced to
  // portrait, the only way a calendar page is laid out.
  const SIZE_T needed = offsetof(DEVMODEA, dmOrientation) + sizeof(short);
  void* memory = size >= needed ? std::malloc(size) : nullptr;
  if (memory) std::memcpy(memory, chosen, size);
  GlobalUnlock(dialog.hDevMode);
  if (!memory) return false;
  auto* copy = static_cast<DEVMODEA*>(memory);
  copy->dmFields |= DM_ORIENTATION;
  copy->dmOrientation = DMORIENT_PORTRAIT;
  char device[sizeof copy->dmDeviceName + 1] = "";
  std::memcpy(device, copy->dmDeviceName, sizeof copy->dmDeviceName);
  HDC dc = CreateDCA(nullptr, device, nullptr, copy);
  if (dc) {
    Keep(&g_confirmedMode, CopyToGlobal(copy, size));
    Keep(&g_confirmedNames, CopyGlobal(dialog.hDevNames));
  }
  std::free(memory);
  if (!dc) return false;
  if (PrinterDC) DeleteDC(PrinterDC);
  PrinterDC = dc;
  return true;
}

void OfferConfirmedPrinter(PRINTDLGA* dialog) {
  if (!g_confirmedMode || !g_confirmedNames) return;
  dialog->hDevMode = CopyGlobal(g_confirmedMode);
  dialog->hDevNames = CopyGlobal(g_confirmedNames);
}

void FreeDialogHandles(PRINTDLGA* dialog) {
  if (dialog->hDevMode) GlobalFree(dialog->hDevMode);
  if (dialog->hDevNames) GlobalFree(dialog->hDevNames);
  dialog->hDevMode = dialog->hDevNames = nullptr;
}

int PrinterSetup(HWND window) {
  PRINTDLGA dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = window;
  dialog.hInstance = GetModuleHandleA(nullptr);
  dialog.Flags = PD_PRINTSETUP | PD_ENABLESETUPTEMPLATE;
  dialog.lpSetupTemplateName = MAKEINTRESOURCEA(IDD_PRINT_SETUP);
  OfferConfirmedPrinter(&dialog);
  if (!PrintDlgA(&dialog)) {
    FreeDialogHandles(&dialog);
    return 0;
  }
  const bool made = AdoptDialogPrinter(dialog);
  FreeDialogHandles(&dialog);
  if (!made) ShowMessage(window, IDS_PRINTER_INIT_FAILED);
  return made ? 1 : 0;
}

int PageRectForWindow(int viewHeight, RECT* rect) {
  const bool printer = PrinterDC != nullptr;
  const Rect page = PageRectForClient(viewHeight, printer, printer ? GetDeviceCaps(PrinterDC, HORZRES) : 0,
                                      printer ? GetDeviceCaps(PrinterDC, VERTRES) : 0);
  *rect = {page.left, page.top, page.right, page.bottom};
  return printer ? 1 : 0;
}
