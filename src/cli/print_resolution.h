// How sharp each page's picture prints: the picture's pixels over the inches
// the renderer gives it on a paper. Below kBlurryBelowPpi a photograph looks
// soft on paper, and the commands say so.
#pragma once
#include <string>
#include <vector>

#include "calendar/calendar_model.h"

constexpr int kBlurryBelowPpi = 150;

// The inches of a paper named "a4" or "letter"; false for any other name.
bool PaperInches(const std::string& name, double* width, double* height);

struct PrintedPicture {
  int page;  // 0..11 the months, 13 the cover
  int ppi;   // pixels of the picture per inch of paper, across
};
// The pictures `pages` draw on a page of width x height inches, as the
// renderer lays them out (the year page has none).
std::vector<PrintedPicture> PrintedPictures(CalendarDocument document, double widthInches, double heightInches,
                                            const std::vector<int>& pages);
