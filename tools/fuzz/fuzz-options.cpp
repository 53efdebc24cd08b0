// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds arbitrary command lines to the command-line tool's option parser (the
// bytes split at NUL into arguments) and arbitrary texts to its size reader.
// A size it accepts must be exactly the number written, times its unit; a
// command line it accepts must give a usable, consistent set of options.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "cli/Options.h"

namespace {

void checkSize(const std::string& text) {
    const auto parsed = twinsweep::cli::parseSize(text);
    // Recompute with a wider type: digits, then at most one unit letter.
    unsigned __int128 value = 0;
    std::size_t k = 0;
    bool overflow = false;
    for (; k < text.size() && text[k] >= '0' && text[k] <= '9'; ++k) {
        value = value * 10 + static_cast<unsigned>(text[k] - '0');
        overflow = overflow || value > UINT64_MAX;
    }
    bool wellFormed = k > 0;
    if (wellFormed && k < text.size()) {
        int shift = -1;
        switch (text[k]) {
        case 'K':
        case 'k':
            shift = 10;
            break;
        case 'M':
        case 'm':
            shift = 20;
            break;
        case 'G':
        case 'g':
            shift = 30;
            break;
        case 'T':
        case 't':
            shift = 40;
            break;
        default:
            break;
        }
        wellFormed = shift >= 0 && k + 1 == text.size();
        if (wellFormed && !overflow) {
            value <<= shift;
            overflow = value > UINT64_MAX;
        }
    }
    const bool shouldAccept = wellFormed && !overflow;
    if (parsed.has_value() != shouldAccept) {
        std::abort();
    }
    if (parsed && *parsed != static_cast<std::uint64_t>(value)) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    checkSize(bytes);

    std::vector<std::string> args;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= bytes.size(); ++i) {
        if (i == bytes.size() || bytes[i] == '\0') {
            args.push_back(bytes.substr(start, i - start));
            start = i + 1;
        }
    }
    const auto result = twinsweep::cli::parseOptions(args, "/");
    if (result.error) {
        // One line, never empty.
        if (result.error->empty()) {
            std::abort();
        }
        return 0;
    }
    const auto& o = result.options;
    if (o.help || o.version) {
        return 0;
    }
    if (o.folders.empty() || o.minimumSize > o.maximumSize) {
        std::abort();
    }
    for (const std::string& f : o.folders) {
        // Absolute and clean: no empty, "." or ".." component, no trailing "/".
        if (f.empty() || f.front() != '/' || (f.size() > 1 && f.back() == '/') ||
            f.find("//") != std::string::npos || f.find("/./") != std::string::npos ||
            f.find("/../") != std::string::npos || f.ends_with("/.") || f.ends_with("/..")) {
            std::abort();
        }
    }
    // Removal needs a marking, and only one way of marking is taken.
    if ((o.keepOption && !o.rulesFile.empty()) || ((o.removalGiven || o.yes) && !marks(o)) ||
        (o.keepOneGiven && o.rulesFile.empty()) ||
        (o.keepOption && (*o.keepOption < 0 || *o.keepOption > 3))) {
        std::abort();
    }
    for (const std::string& e : o.extensions) {
        for (const char c : e) {
            if (c >= 'A' && c <= 'Z') {
                std::abort();
            }
        }
        if (e.empty()) {
            std::abort();
        }
    }
    return 0;
}
