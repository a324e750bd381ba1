// The page boxes a print shop reads, put into a PDF that Cairo wrote: Cairo
// sets only each page's MediaBox.
#pragma once
#include <string>

// A rectangle in PDF points, from the lower left corner of the MediaBox.
struct PdfBox {
  double left, bottom, right, top;
};

// Gives every page of the PDF at `path` the TrimBox `trim` and the BleedBox
// `bleed`, rewriting the file with its cross-reference table. The file must
// be one revision with a classic cross-reference table, as Cairo writes it;
// anything else is left alone and false returned with the reason in *problem.
bool SetPageBoxes(const std::string& path, const PdfBox& trim, const PdfBox& bleed, std::string* problem);

// The PDF at `path` whole, and where its last cross-reference section and its
// `startxref` keyword are; false with the reason in *problem.
bool ReadPdfWithXref(const std::string& path, std::string* pdf, size_t* xref, size_t* startxref,
                     std::string* problem);
