// Moving a finished temporary file over its target in one step, so a save
// that fails half-way never destroys the previous file.
#pragma once

// Replaces `target` by `temporary` (same folder); false leaves both as they were.
bool ReplaceFileWith(const char* temporary, const char* target);
