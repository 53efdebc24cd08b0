// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "engine/File.h"
#include "selection/Breakdown.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

// What the results window copies on its GUI thread before an update: its
// listed groups and flags and the state of its controls. Later changes to the
// controls do not reach a running update.
struct ResultsRequest {
    FileList listed;                  // the groups the window lists now
    std::int64_t lastSelectedRow = 0; // the group a single-group option goes to
    bool firstUpdate = false;         // opened or cleaned: percentages and list anew
    bool categoriesChanged = false;   // a category box changed: new list, no marking
    CategoryFlags categoryShown{true, true, true, true, true, true};
    bool applyForAll = false;
    std::int64_t segment = 0; // the keep option the control shows, 0 to 4
    CategoryFigures figures;  // the bars and texts the window shows now
};

// What the window installs on its GUI thread when the update ends.
struct ComputedResults {
    FileList listed; // the new listed groups (the same ones if not rebuilt)
    bool listedRebuilt = false;
    std::int64_t lastSelectedRow = 0; // within the listed groups, or 0
    CategoryFigures figures;
    SpaceSaved spaceSaved;
};

// The background half of a results update. Applies the copied keep option to
// the selected group or, with apply-for-all, to every listed group (option 4
// only after the custom rules window said OK), never after a category change;
// recomputes the percentages on a first update and the listed groups on a
// first update or a category change; and measures the space saved. It writes
// marks, keep options and stored rule texts into the shared group objects, and
// never touches request.listed: the window swaps in the returned list.
ComputedResults computeResults(const ResultsRequest& request, SettingsManager& settings);

} // namespace twinsweep
