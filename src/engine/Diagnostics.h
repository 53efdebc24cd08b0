#pragma once

#include <string_view>

namespace twinsweep {

// Writes one diagnostic line to standard output: the prefix ("Ooops! Something
// went wrong: " or "Error: ") followed by the error's description, which names
// the path ("PATH: No such file or directory"). Control bytes and backslashes
// in the description are written as C escapes (\n, \\, \x1b), so a line is
// always one line. Lines from several threads never interleave.
void printErrorLine(std::string_view prefix, std::string_view path, int err);

// The same with a ready-made description.
void printErrorLine(std::string_view prefix, std::string_view description);

} // namespace twinsweep
