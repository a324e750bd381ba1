// quernal-cli events: holidays from iCalendar files into events files, and
// what an events file shows on each day.
#include "cli/commands.h"

int EventsCommand(const Arguments&) { return Usage("events is not built yet"); }
