// Day and month names of another language, from the system's locale data.
#pragma once
#include "cli/cli_common.h"

// With --locale NAME: puts the locale's day names and (stand-alone, where the
// locale has them) month names into the settings that hold them, as the
// setup sheet's Titles tab would. -1 when done or when there is no --locale;
// otherwise an exit code after a message on stderr naming the locale.
int ApplyLocaleOption(const Arguments& args);
