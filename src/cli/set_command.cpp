// quernal-cli set: fields and pictures of a calendar's pages from the command line.
#include "cli/commands.h"

int SetCommand(const Arguments&) { return Usage("set is not built yet"); }
