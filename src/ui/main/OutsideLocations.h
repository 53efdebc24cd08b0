// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <string>
#include <vector>

namespace twinsweep {
struct LocationGate;
}

namespace twinsweep::ui {

// The line the main window shows under its folder table when some listed
// folders lie outside the locations the search looks under (the search
// itself skips everything there): it names those locations and the folders.
// Empty when every folder lies inside, or when the gate lets everything pass.
QString outsideLocationsText(const LocationGate& gate, const std::vector<std::string>& folders);

} // namespace twinsweep::ui
