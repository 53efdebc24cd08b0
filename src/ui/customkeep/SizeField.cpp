#include "ui/customkeep/SizeField.h"

#include <cmath>
#include <cstdlib>
#include <string>

namespace twinsweep::ui {

namespace {

bool parseDecimal(const QString& text, double& value) {
    const std::string bytes = text.toStdString();
    if (bytes.empty()) {
        return false;
    }
    for (char c : bytes) {
        const bool allowed =
            (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E';
        if (!allowed) {
            return false;
        }
    }
    char* end = nullptr;
    value = std::strtod(bytes.c_str(), &end);
    return end == bytes.c_str() + bytes.size() && std::isfinite(value);
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
