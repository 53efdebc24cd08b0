// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "selection/AlertText.h"
#include "selection/Cleaning.h"

namespace twinsweep {

// Why copies were left in place, each reason once with how many it held back,
// the most frequent first (ties in the order met). A reason is the removal's
// own text less the copy's path; other paths in it (kept copies) read "a kept
// copy", so that copies held back for the same cause count together.
std::vector<std::pair<std::string, std::int64_t>>
reasonsLeftInPlace(const std::vector<CleanedCopy>& attempted);

// The alert after the done alert when copies were left in place (none when
// nothing was: empty informative text): how many and why; its first button,
// "Show Them", asks to be shown them, its second is "OK".
AlertText leftInPlaceAlert(const std::vector<CleanedCopy>& attempted);

// The alert that stands for the done alert when the user stopped the clean:
// how many of the marked copies were acted on before the stop.
AlertText stoppedAlert(std::int64_t done, std::int64_t marked, const CleaningChoice& choice);

} // namespace twinsweep
