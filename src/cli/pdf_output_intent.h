// An sRGB output intent added to a PDF that Cairo wrote, so a print shop
// knows the colours are sRGB: Cairo writes plain DeviceRGB and cannot say so.
#pragma once
#include <string>

// Appends to the PDF at `path` an incremental update: Little CMS's sRGB
// profile as an ICC stream, an output intent naming it, and a new catalog
// that lists the intent. The file must end in a classic cross-reference table
// and trailer, as Cairo writes them; anything else is left alone and false
// returned with the reason in *problem.
bool AddSrgbOutputIntent(const std::string& path, std::string* problem);
