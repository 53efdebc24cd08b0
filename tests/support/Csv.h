// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace twinsweep::testing {

// Reads RFC 4180 text back into rows of fields: lines end in CR LF, a quoted
// field may hold commas, CR, LF and doubled quotes. Returns false on text
// that breaks those rules.
inline bool parseCsv(const std::string& text, std::vector<std::vector<std::string>>& rows) {
    rows.clear();
    std::vector<std::string> row;
    std::string field;
    bool quoted = false;
    bool wasQuoted = false;
    for (std::size_t k = 0; k < text.size(); ++k) {
        const char c = text[k];
        if (quoted) {
            if (c != '"') {
                field.push_back(c);
            } else if (k + 1 < text.size() && text[k + 1] == '"') {
                field.push_back('"');
                ++k;
            } else {
                quoted = false;
            }
        } else if (c == '"' && field.empty() && !wasQuoted) {
            quoted = wasQuoted = true;
        } else if (c == ',') {
            row.push_back(field);
            field.clear();
            wasQuoted = false;
        } else if (c == '\r' && k + 1 < text.size() && text[k + 1] == '\n') {
            row.push_back(field);
            rows.push_back(row);
            row.clear();
            field.clear();
            wasQuoted = false;
            ++k;
        } else if (c == '"' || c == '\r' || c == '\n' || wasQuoted) {
            return false;
        } else {
            field.push_back(c);
        }
    }
    return !quoted && field.empty() && row.empty();
}

} // namespace twinsweep::testing
