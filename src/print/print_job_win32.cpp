#include "print/print_job_win32.h"

#include "base/program_win32.h"
#include "config/settings.h"
#include "res/print_dialog_ids.h"
#include "print/print_plan.h"
#include "print/printer_win32.h"
#include "print/status_box_win32.h"
#include "render/page_renderer_win32.h"

namespace {

PRINTDLGA PrintDialog(HWND window, DWORD flags, WORD maxPage) {
  PRINTDLGA dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = window;
  dialog.hInstance = GetModuleHandleA(nullptr);
  dialog.Flags = flags;
  dialog.nFromPage = dialog.nToPage = dialog.nMinPage = 1;
  dialog.nMaxPage = maxPage;
  dialog.nCopies = 1;
  dialog.lpPrintTemplateName = MAKEINTRESOURCEA(IDD_PRINT);
  OfferConfirmedPrinter(&dialog);
  return dialog;
}

// Asks for the printer and makes it the PrinterDC. False when cancelled
// (silently) or when the printer cannot be had (message 118); the dialog's
// handles are freed either way.
bool ChoosePrinter(HWND window, PRINTDLGA* dialog) {
  if (!PrintDlgA(dialog)) {
    FreeDialogHandles(dialog);
    return false;
  }
  const bool made = AdoptDialogPrinter(*dialog);
  FreeDialogHandles(dialog);
  if (!made) ShowMessage(window, IDS_PRINTER_INIT_FAILED);
  return made;
}

bool Validate(HWND window, CalendarDocument document) {
  CalendarHeader header;
  if (GetHeader(document, &header)) return true;
  ShowMessage(window, IDS_PAGE_ACCESS_FAILED);
  return false;
}

void DrawSide(HWND window, CalendarDocument document, const PrintedSide& side) {
  const RECT page{0, 0, GetDeviceCaps(PrinterDC, HORZRES), GetDeviceCaps(PrinterDC, VERTRES)};
  if (side.lower < 0) {
    DrawCalendarPage(window, PrinterDC, &page, document, side.upper, 1, 1, 1);
  } else {
    DrawCalendarPage(window, PrinterDC, &page, document, side.upper, 1, 1, 0);
    DrawCalendarPage(window, PrinterDC, &page, document, side.lower, 1, 0, 1);
  }
}

// One spooler document of the plan's sides; message 112 when the printer
// refuses it, after ending the document.
bool PrintPass(HWND window, CalendarDocument document, const char* documentName, const PrintPlan& plan) {
  DOCINFOA info{};
  info.cbSize = sizeof info;
  info.lpszDocName = documentName;
  if (StartDocA(PrinterDC, &info) <= 0) {
    ShowMessage(window, IDS_PRINT_FAILED);
    return false;
  }
  HCURSOR previous = SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32514)));  // IDC_WAIT
  if (plan.progress) {
    ShowPrintStatus(window, StringTableText(IDS_PRINTING).c_str());
  }
  for (const PrintedSide& side : plan.sides) {
    if (StartPage(PrinterDC) <= 0) {
      ClosePrintStatus();
      SetCursor(previous);
      EndDoc(PrinterDC);
      ShowMessage(window, IDS_PRINT_FAILED);
      return false;
    }
    DrawSide(window, document, side);
    EndPage(PrinterDC);
    if (plan.progress) UpdatePrintStatus(plan.total, side.current);
  }
  ClosePrintStatus();
  EndDoc(PrinterDC);
  SetCursor(previous);
  return true;
}

// "Face up" shows and sets the InkJet setting.
UINT_PTR CALLBACK FaceUpHook(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_INITDIALOG) {
    CheckDlgButton(dialog, IDC_FACE_UP, Settings.InkJet ? BST_CHECKED : BST_UNCHECKED);
    return TRUE;
  }
  if (message == WM_COMMAND && LOWORD(wParam) == IDC_FACE_UP && HIWORD(wParam) == BN_CLICKED)
    Settings.InkJet = IsDlgButtonChecked(dialog, IDC_FACE_UP) == BST_CHECKED ? 1 : 0;
  return FALSE;
}

// TURNOVERPAPERBOX (Continue / Abort) and PRINTFINISHEDBOX (Done).
INT_PTR CALLBACK ButtonBoxProc(HWND box, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_INITDIALOG) return TRUE;
  if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
    EndDialog(box, LOWORD(wParam));
    return TRUE;
  }
  return FALSE;
}

}  // namespace

int PrintSingleSided(HWND window, CalendarDocument document, const char* documentName) {
  if (!Validate(window, document)) return 0;
  PRINTDLGA dialog = PrintDialog(window, PD_ENABLEPRINTTEMPLATE | PD_DISABLEPRINTTOFILE, 14);
  if (!ChoosePrinter(window, &dialog)) return 0;
  CalendarHeader header;
  GetHeader(document, &header);
  const PrintPlan plan =
      SingleSidedPlan(PageChoiceFromFlags(dialog.Flags), dialog.nFromPage, dialog.nToPage, header.CurrentPage);
  return PrintPass(window, document, documentName, plan) ? 1 : 0;
}

int PrintDoubleSided(HWND window, CalendarDocument document, const char* documentName) {
  if (!Validate(window, document)) return 0;
  PRINTDLGA dialog = PrintDialog(window,
                                 PD_NOSELECTION | PD_NOPAGENUMS | PD_ENABLEPRINTHOOK | PD_ENABLEPRINTTEMPLATE |
                                     PD_DISABLEPRINTTOFILE,
                                 12);
  dialog.lpfnPrintHook = FaceUpHook;
  if (!ChoosePrinter(window, &dialog)) return 0;
  if (!PrintPass(window, document, documentName, BookletPassPlan(0, false))) return 0;
  // The user puts the printed stack back into the tray for the backs.
  HINSTANCE instance = GetModuleHandleA(nullptr);
  if (DialogBoxParamA(instance, "TURNOVERPAPERBOX", window, ButtonBoxProc, 0) != IDOK) return 0;
  if (!PrintPass(window, document, documentName, BookletPassPlan(1, Settings.InkJet != 0))) return 0;
  DialogBoxParamA(instance, "PRINTFINISHEDBOX", window, ButtonBoxProc, 0);
  return 1;
}
