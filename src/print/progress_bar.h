// The progress bar of the status box: its text is "total,current"; the part
// left of the returned edge is the work done, the rest is still to do.
#pragma once

// False for an empty or unreadable text (the whole bar is still to do);
// else *doneRight is where the done part ends in a bar `right` pixels wide.
// A current equal to total - 1 fills the bar, as the callers count from 0.
bool ProgressDoneRight(const char* text, int right, int* doneRight);
