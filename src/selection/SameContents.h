#pragma once

#include <string>

namespace twinsweep {

// Whether the items at a and b hold the same bytes: two regular files with
// equal contents, two folders (packages) with the same names inside and the
// same contents at every depth, or two symbolic links with the same target
// text. Links are never followed. Two paths to one and the same file are not
// "the same contents" here: removing one would remove the other. When the
// answer is no, reason says why, naming the paths.
bool sameContents(const std::string& a, const std::string& b, std::string& reason);

} // namespace twinsweep
