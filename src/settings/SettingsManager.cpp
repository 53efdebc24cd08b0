// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/SettingsManager.h"

#include <cctype>
#include <ctime>

namespace twinsweep {

bool parseDayText(const std::string& text, DateTime& out) {
    // Exactly dd/MM/yyyy: two digits, "/", two digits, "/", four digits.
    if (text.size() != 10 || text[2] != '/' || text[5] != '/') {
        return false;
    }
    for (std::size_t i : {0u, 1u, 3u, 4u, 6u, 7u, 8u, 9u}) {
        if (!std::isdigit(static_cast<unsigned char>(text[i]))) {
            return false;
        }
    }
    const int day = (text[0] - '0') * 10 + (text[1] - '0');
    const int month = (text[3] - '0') * 10 + (text[4] - '0');
    const int year = std::stoi(text.substr(6, 4));
    static const int daysIn[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12 || day < 1 || day > daysIn[month - 1]) {
        return false;
    }
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    if (month == 2 && day == 29 && !leap) {
        return false;
    }
    std::tm tm{};
    tm.tm_mday = day;
    tm.tm_mon = month - 1;
    tm.tm_year = year - 1900;
    tm.tm_isdst = -1;
    const std::time_t t = std::mktime(&tm);
    if (t == static_cast<std::time_t>(-1) && !(year == 1969 && month == 12 && day == 31)) {
        return false;
    }
    out = static_cast<DateTime>(t);
    return true;
}

SettingsManager::SettingsManager() {
    parseDayText("01/01/2017", firstDate);
    parseDayText("01/01/2017", secondDate);
}

std::shared_ptr<SettingsManager> SettingsManager::shared() {
    // A function-local static is initialised once, thread-safely.
    static const std::shared_ptr<SettingsManager> instance = std::make_shared<SettingsManager>();
    return instance;
}

} // namespace twinsweep
