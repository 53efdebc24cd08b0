// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace twinsweep {

// A parsed JSON value, for reading back what this program wrote. Numbers are
// whole numbers only (everything we write is), kept with their sign.
struct JsonValue {
    enum class Kind { Null, Bool, Number, String, Array, Object };
    Kind kind = Kind::Null;
    bool boolean = false;
    bool negative = false;
    std::uint64_t magnitude = 0; // of a number
    std::string text;            // of a string, as bytes
    std::vector<JsonValue> items;
    std::vector<std::pair<std::string, JsonValue>> members; // in order; keys unique

    // The member named key of an object; null when absent.
    const JsonValue* find(std::string_view key) const;
};

// Parses text as one JSON value (RFC 8259, whole numbers only, nesting at
// most 64 deep, no duplicate keys). "" when fine, else what is wrong and
// where (a byte offset).
std::string parseJson(std::string_view text, JsonValue& value);

} // namespace twinsweep
