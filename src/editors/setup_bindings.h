// The setup sheet's controls come from the settings rows that name them:
// a flag is a check box, a text an edit of 260 characters, a ranged number
// an edit with arrows whose range also clamps what is typed. A number
// without arrows (the palette warning's row) binds nothing.
#pragma once
#include <vector>

#include "editors/control_binding.h"

// The bindings of every row with a setup control, as offsets into Settings.
std::vector<ControlBinding> SetupBindings();
