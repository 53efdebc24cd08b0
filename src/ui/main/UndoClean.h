#pragma once

#include <vector>

#include "removal/TrashRecord.h"

namespace twinsweep::ui {

// What the last clean to the Trash since the application started moved
// there (the results window fills it; Edit > Undo Clean puts it back).
std::vector<TrashedCopy>& lastCleanTrashed();

} // namespace twinsweep::ui
