// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/customkeep/SizeField.h"

#include <charconv>
#include <cmath>
#include <string>

namespace twinsweep::ui {

namespace {

bool parseDecimal(const QString& text, double& value) {
    const std::string bytes = text.toStdString();
    for (char c : bytes) {
        const bool allowed =
            (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E';
        if (!allowed) {
            return false;
        }
    }
    // "." is the decimal point whatever the locale says; one leading "+" is
    // allowed, as a user may type it.
    const char* first = bytes.data();
    const char* last = first + bytes.size();
    if (first != last && *first == '+' && last - first > 1 && first[1] != '-' && first[1] != '+') {
        ++first;
    }
    if (first == last) {
        return false;
    }
    const auto [end, error] = std::from_chars(first, last, value);
    return error == std::errc() && end == last && std::isfinite(value);
}

} // namespace

QString normalisedSizeText(const QString& text, const QString& fallback) {
    double value = 0;
    if (!parseDecimal(text, value)) {
        return fallback;
    }
    if (value < 0) {
        return QStringLiteral("0");
    }
    if (value > 100000) {
        return QStringLiteral("100000");
    }
    return text;
}

} // namespace twinsweep::ui
