// quernal-cli render: pages of a calendar as PNG, PDF, SVG or a dump of the
// drawing operations.
#pragma once
#include "cli/cli_common.h"

int RenderCommand(const Arguments& args);
