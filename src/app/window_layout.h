// The arithmetic of the main window, apart from the windows themselves: its
// default size, where it reopens, the page rectangle the view draws into,
// the title, the folder the file dialogs start in, and which commands the
// page shown allows.
#pragma once
#include <cstdint>
#include <string>

#include "base/geometry.h"
#include "print/page_shape.h"

// 95 percent of the screen's height, shaped like a calendar page (360 : 460).
void DefaultWindowSize(int32_t screenHeight, int32_t* width, int32_t* height);

struct StoredEdges {
  uint32_t left, top, right, bottom;  // 4294967295: none stored
};
// Where the window reopens: the stored left and top, pulled back so that a
// 620 x 460 window fits the present screen, never below 0. False when no
// position was stored.
bool RestoredPosition(const StoredEdges& edges, int32_t screenWidth, int32_t screenHeight, int32_t* x, int32_t* y);
// The edges kept at exit for a window at `r`: left and top not below 0, right
// and bottom not beyond the screen.
StoredEdges EdgesToStore(const Rect& r, int32_t screenWidth, int32_t screenHeight);

// A window dragged to within `distance` pixels of an edge of the work area
// is moved onto it, keeping its size: left before right, top before bottom.
Rect SnappedToEdges(const Rect& window, const Rect& work, int32_t distance);

// The page at a zoom of `percent` (the page itself: PageRectForClient).
Rect ZoomedPage(const Rect& page, int32_t percent);

// "Quernal [ label ]"
std::string WindowTitle(const std::string& productName, const std::string& label);
// "Untitled.CLN – January": the file's name, an en dash (0x96 in Windows-1252)
// and the page's name.
std::string DocumentLabel(const std::string& path, const std::string& pageName);

// Edit month, Replicate and Events act on a month page only; every other
// command acts on any page (0..11 months, 12 the year, 13 the cover).
bool CommandActsOnPage(int command, int page);
