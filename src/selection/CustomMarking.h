// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "engine/File.h"
#include "selection/AlertText.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

// Keep option 4 for one group: stores the current rule text in the group,
// sets its keep option to 4 and marks each member that the rules pick, also in
// the groups of settings.duplicateFileList with the group's path. No member is
// spared: when every member passes, every member is marked. Does nothing and
// returns false unless settings.customSettingsOption is exactly "OK".
bool applyCustomRules(File& group, SettingsManager& settings);

// Keep option 4 for every listed group, in order, then the answer to "keep at
// least one copy?" (settings.customMessageRespone: 1 the oldest, 2 the newest,
// anything else no) spares one member of each group in which every member
// passed. Groups that are not listed keep everything. Does nothing and returns
// false unless settings.customSettingsOption is exactly "OK".
bool applyCustomRulesToAll(const FileList& listed, SettingsManager& settings);

// The question asked before keep option 4 goes to every listed group, and the
// value its answer stores in customMessageRespone: the first button 1 (keep
// the oldest), the second 2 (keep the newest), anything else 3 (no).
const AlertText& keepOneCopyQuestion();
std::int64_t keepOneCopyAnswer(int buttonIndex);

} // namespace twinsweep
