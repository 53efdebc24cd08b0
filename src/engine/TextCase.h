// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace twinsweep {

// The one lower-casing of extensions, for every layer that stores or compares
// one (walk, command line, windows, rules): each Unicode letter by its simple
// lower-case mapping (utf8proc), so "ÉPS" becomes "éps" wherever it is typed
// or found. Bytes that are not valid UTF-8 (a name in another encoding) keep
// their value; only their ASCII letters are lowered.
std::string lowerCased(std::string_view text);

} // namespace twinsweep
