// The program's one printer device context: made at start-up for the
// default printer, replaced whenever the user confirms a printer.
#pragma once
#include <windows.h>
#include <commdlg.h>

// None when no printer is installed.
extern HDC PrinterDC;

// A device context for the default printer, portrait; null when there is
// no printer or no memory.
HDC CreateDefaultPrinterDC();
// The printer-setup dialog. 1 when a new PrinterDC was made; Cancel returns
// 0 silently, any other failure shows message 118.
int PrinterSetup(HWND window);
// The page on the screen at 100 percent in a page view `viewHeight` pixels
// high (the main window's client area less its toolbar strip and horizontal
// scroll bar). 1 when the PrinterDC shaped it, 0 when it has the default
// 360 : 460 shape.
int PageRectForWindow(int viewHeight, RECT* rect);

// Shared with the print jobs.
// Makes the PrinterDC from the printer chosen in a print dialog, always in
// portrait, and keeps that printer and its settings (the paper) as the ones
// the next print dialog starts from; false (the old PrinterDC kept) on any
// failure.
bool AdoptDialogPrinter(const PRINTDLGA& dialog);
// Gives a print dialog about to open copies of the printer and settings the
// user last confirmed (nothing before the first confirmation: the dialog
// starts from the default printer), so the page printed is the page shown.
void OfferConfirmedPrinter(PRINTDLGA* dialog);
// Frees the dialog's DEVMODE and DEVNAMES handles.
void FreeDialogHandles(PRINTDLGA* dialog);
