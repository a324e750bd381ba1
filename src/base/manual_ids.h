// The string-table texts of the manual's launch, shared by the resource
// script and the code (plain #defines for the resource compiler).
#pragma once

#define IDS_MANUAL_NO_BROWSER 160
#define IDS_MANUAL_MISSING 161
