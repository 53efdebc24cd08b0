// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace twinsweep {

// A modal warning alert as the desktop layer shows it: an empty message text,
// this informative text and these buttons, in order.
struct AlertText {
    std::string informativeText;
    std::vector<std::string> buttons;
};

} // namespace twinsweep
