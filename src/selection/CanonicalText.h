// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace twinsweep {

// The composed (NFC) form of a UTF-8 text, so that canonically equivalent
// texts (a precomposed "é" and "e" + combining acute) compare equal byte for
// byte. A text that is not valid UTF-8 (a file name in another encoding) is
// returned unchanged and then only equals itself.
std::string canonicalText(std::string_view text);

} // namespace twinsweep
