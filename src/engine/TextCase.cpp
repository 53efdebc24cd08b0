// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/TextCase.h"

#include <utf8proc.h>

namespace twinsweep {

namespace {

char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

std::string lowerCased(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    const auto* at = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    utf8proc_ssize_t left = static_cast<utf8proc_ssize_t>(text.size());
    while (left > 0) {
        if (*at < 0x80) {
            out.push_back(lowerAscii(static_cast<char>(*at)));
            ++at;
            --left;
            continue;
        }
        utf8proc_int32_t c = 0;
        const utf8proc_ssize_t n = utf8proc_iterate(at, left, &c);
        if (n <= 0) {
            // Not UTF-8 here: the byte stays as it is.
            out.push_back(static_cast<char>(*at));
            ++at;
            --left;
            continue;
        }
        utf8proc_uint8_t encoded[4];
        const utf8proc_ssize_t m = utf8proc_encode_char(utf8proc_tolower(c), encoded);
        out.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(m));
        at += n;
        left -= n;
    }
    return out;
}

} // namespace twinsweep
