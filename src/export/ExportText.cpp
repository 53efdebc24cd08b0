// SPDX-License-Identifier: GPL-3.0-or-later
// The escapings of the exports: JSON string literals and CSV path texts.
#include <cstdio>

#include "export/ResultsExport.h"

namespace twinsweep {

namespace {

void appendHex(std::string& out, const char* prefix, unsigned value, int digits) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%s%0*x", prefix, digits, value);
    out += buf;
}

// Length of the valid UTF-8 sequence at s[k], or 0 when it is not one.
std::size_t utf8Length(std::string_view s, std::size_t k) {
    const auto b = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
    const unsigned char c = b(k);
    std::size_t len = 0;
    unsigned min = 0;
    unsigned cp = 0;
    if (c >= 0xC2 && c <= 0xDF) {
        len = 2;
        cp = c & 0x1F;
        min = 0x80;
    } else if (c >= 0xE0 && c <= 0xEF) {
        len = 3;
        cp = c & 0x0F;
        min = 0x800;
    } else if (c >= 0xF0 && c <= 0xF4) {
        len = 4;
        cp = c & 0x07;
        min = 0x10000;
    } else {
        return 0;
    }
    if (k + len > s.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < len; ++i) {
        if ((b(k + i) & 0xC0) != 0x80) {
            return 0;
        }
        cp = (cp << 6) | (b(k + i) & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        return 0;
    }
    return len;
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

} // namespace

std::string jsonString(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() + 2);
    out.push_back('"');
    for (std::size_t k = 0; k < bytes.size();) {
        const auto c = static_cast<unsigned char>(bytes[k]);
        if (c < 0x80) {
            switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\b':
                out += "\\b";
                break;
            case '\f':
                out += "\\f";
                break;
            default:
                if (c < 0x20) {
                    appendHex(out, "\\u", c, 4);
                } else {
                    out.push_back(static_cast<char>(c));
                }
            }
            ++k;
            continue;
        }
        if (const std::size_t len = utf8Length(bytes, k); len > 0) {
            out.append(bytes.substr(k, len));
            k += len;
            continue;
        }
        appendHex(out, "\\udc", c, 2);
        ++k;
    }
    out.push_back('"');
    return out;
}

std::string csvPathText(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (std::size_t k = 0; k < bytes.size();) {
        const auto c = static_cast<unsigned char>(bytes[k]);
        if (c == '\\') {
            out += "\\\\";
            ++k;
        } else if (c < 0x80) {
            out.push_back(static_cast<char>(c));
            ++k;
        } else if (const std::size_t len = utf8Length(bytes, k); len > 0) {
            out.append(bytes.substr(k, len));
            k += len;
        } else {
            appendHex(out, "\\udc", c, 2);
            ++k;
        }
    }
    return out;
}

bool csvPathBytes(std::string_view text, std::string& bytes) {
    bytes.clear();
    for (std::size_t k = 0; k < text.size(); ++k) {
        if (text[k] != '\\') {
            bytes.push_back(text[k]);
        } else if (k + 1 < text.size() && text[k + 1] == '\\') {
            bytes.push_back('\\');
            ++k;
        } else if (text.substr(k, 4) == "\\udc" && k + 5 < text.size() &&
                   hexValue(text[k + 4]) >= 0 && hexValue(text[k + 5]) >= 0) {
            bytes.push_back(static_cast<char>(hexValue(text[k + 4]) * 16 + hexValue(text[k + 5])));
            k += 5;
        } else {
            return false;
        }
    }
    return true;
}

} // namespace twinsweep
