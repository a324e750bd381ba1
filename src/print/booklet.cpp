#include "print/booklet.h"

// Front upper, front lower, back upper, back lower. Sheet 6 is the outside:
// the cover's blank upper half with its face below, and on its back the year's
// first half over December.
const BookletSheet BookletSheets[kBookletSheetCount] = {
    {6, 4, 5, 5},    // July over May; June over June
    {7, 3, 4, 6},    // August over April; May over July
    {8, 2, 3, 7},    // September over March; April over August
    {9, 1, 2, 8},    // October over February; March over September
    {10, 0, 1, 9},   // November over January; February over October
    {11, 12, 0, 10}, // December over the year (July to December); January over November
    {13, 13, 12, 11} // the cover; the year (January to June) over December
};

int BackPassSheet(int j, bool faceUp) { return faceUp ? kBookletSheetCount - 1 - j : j; }
