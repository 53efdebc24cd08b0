// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Diagnostics.h"

#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>

namespace twinsweep {

void appendEscaped(std::string& out, std::string_view text) {
    static const char* const kHex = "0123456789abcdef";
    for (const char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '\\') {
            out += "\\\\";
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\t') {
            out += "\\t";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c < 0x20 || c == 0x7F) {
            out += "\\x";
            out.push_back(kHex[c >> 4]);
            out.push_back(kHex[c & 15]);
        } else {
            out.push_back(ch);
        }
    }
}

void printErrorLine(std::string_view prefix, std::string_view description) {
    static std::mutex lock;
    std::string line;
    line.reserve(prefix.size() + description.size() + 1);
    line.append(prefix);
    appendEscaped(line, description);
    line.push_back('\n');
    std::lock_guard guard(lock);
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

void printErrorLine(std::string_view prefix, std::string_view path, int err) {
    std::string description(path);
    description.append(": ").append(std::strerror(err));
    printErrorLine(prefix, description);
}

} // namespace twinsweep
