// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace twinsweep {

class SettingsManager;

// The local day of when as "dd/MM/yyyy", the form rule dates are written in.
std::string dayText(double when);

// The custom rules as a text of one field per line, the form in which a group
// remembers the rules it was last marked with (File::customSettings).
std::string customSettingsText(const SettingsManager& settings);

// Reads such a text into the rule fields of settings. A text that is not
// well formed (a bad number or date, fewer lines than it announces) changes
// nothing and returns false. customSettingsOption and customMessageRespone are
// never touched.
bool loadCustomSettings(SettingsManager& settings, const std::string& text);

// Puts the rule fields back to their initial values, except that the folder
// becomes the empty text, and sets customSettingsOption to "Cancel". Groups
// keep their stored rule texts.
void resetCustomSettings(SettingsManager& settings);

} // namespace twinsweep
