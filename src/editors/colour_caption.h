// The caption of a labelled colour button: readable on the colour it sits on.
#pragma once
#include <cstdint>
#include <string>

// White for a colour whose brightness (red 30 %, green 59 %, blue 11 %, each
// share truncated) is below 129, else black.
bool CaptionIsWhite(uint32_t colour);
// The colour as "red,green,blue".
std::string ColourValueText(uint32_t colour);
