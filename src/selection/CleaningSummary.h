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

// The counted sentences of these alerts are patterns, "%1", "%2" standing
// for the counts, so that a window can translate a sentence before filling
// it in. fillCounts puts args[0] for "%1", args[1] for "%2" and so on.
std::string fillCounts(const std::string& pattern, const std::vector<std::string>& args);

// The alert's first line, for this many copies left in place ("%1" the count).
std::string leftInPlaceHeading(std::int64_t total);
// One line per reason ("%1" how many, "%2" the reason), the most frequent
// first and at most kReasonsShown of them; a long list of causes helps
// nobody, and the standard output has them all. The rest count together.
inline constexpr const char* kReasonLine = "%1 × %2";
inline constexpr const char* kOtherReasonsLine = "%1 × other reasons";
inline constexpr std::size_t kReasonsShown = 8;
// How many copies the reasons beyond the shown ones held back.
std::int64_t otherReasonsCount(const std::vector<std::pair<std::string, std::int64_t>>& reasons);

// The alert after the done alert when copies were left in place (none when
// nothing was: empty informative text): how many and why; its first button,
// "Show Them", asks to be shown them, its second is "OK".
AlertText leftInPlaceAlert(const std::vector<CleanedCopy>& attempted);

// The alert that stands for the done alert when the user stopped the clean:
// how many of the marked copies were acted on before the stop. Its sentence
// as a pattern: "%1" the copies acted on, "%2" the marked copies.
std::string stoppedPattern(std::int64_t done, std::int64_t marked, const CleaningChoice& choice);

} // namespace twinsweep
