// SPDX-License-Identifier: GPL-3.0-or-later
#include "selection/CanonicalText.h"

#include <cstdlib>
#include <utf8proc.h>

namespace twinsweep {

std::string canonicalText(std::string_view text) {
    bool ascii = true;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            ascii = false;
            break;
        }
    }
    if (ascii || text.empty()) {
        return std::string(text); // ASCII is its own normal form
    }
    utf8proc_uint8_t* out = nullptr;
    const utf8proc_ssize_t n =
        utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                     static_cast<utf8proc_ssize_t>(text.size()), &out,
                     static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
    if (n < 0) {
        return std::string(text);
    }
    std::string result(reinterpret_cast<const char*>(out), static_cast<std::size_t>(n));
    std::free(out);
    return result;
}

} // namespace twinsweep
