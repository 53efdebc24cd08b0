// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace twinsweep {

// Appends text with control bytes and the backslash written as C escapes
// (\n, \t, \r, \\, \xNN). A name may hold a line feed or other control
// bytes; written raw they would split a line or drive the terminal, escaped
// every line stays one line and reads back unambiguously.
void appendEscaped(std::string& out, std::string_view text);

// Writes one diagnostic line to standard output: the prefix ("Ooops! Something
// went wrong: " or "Error: ") followed by the error's description, which names
// the path ("PATH: No such file or directory"). Control bytes and backslashes
// in the description are written as C escapes (\n, \\, \x1b), so a line is
// always one line. Lines from several threads never interleave.
void printErrorLine(std::string_view prefix, std::string_view path, int err);

// The same with a ready-made description.
void printErrorLine(std::string_view prefix, std::string_view description);

} // namespace twinsweep
