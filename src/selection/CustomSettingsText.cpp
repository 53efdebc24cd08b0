// SPDX-License-Identifier: GPL-3.0-or-later
#include "selection/CustomSettingsText.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string_view>
#include <vector>

#include "settings/SettingsManager.h"

namespace twinsweep {

std::string dayText(DateTime when) {
    const auto t = static_cast<std::time_t>(std::floor(when));
    std::tm tm{};
    if (::localtime_r(&t, &tm) == nullptr) {
        return {};
    }
    // Four year digits always, so that years before 1000 read back.
    char buf[48];
    std::snprintf(buf, sizeof buf, "%02d/%02d/%04d", tm.tm_mday, tm.tm_mon + 1, tm.tm_year + 1900);
    return buf;
}

namespace {

// Length of the line break that starts at text[i], or 0: line feed, carriage
// return, vertical tab, form feed, and NEL, LS, PS in UTF-8.
std::size_t lineBreakAt(std::string_view text, std::size_t i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c == '\n' || c == '\r' || c == '\v' || c == '\f') {
        return 1;
    }
    if (c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) == 0x85) {
        return 2;
    }
    if (c == 0xE2 && i + 2 < text.size() && static_cast<unsigned char>(text[i + 1]) == 0x80) {
        const auto c2 = static_cast<unsigned char>(text[i + 2]);
        if (c2 == 0xA8 || c2 == 0xA9) {
            return 3;
        }
    }
    return 0;
}

std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size();) {
        if (const std::size_t n = lineBreakAt(text, i)) {
            lines.push_back(text.substr(start, i - start));
            i += n;
            start = i;
        } else {
            ++i;
        }
    }
    // The piece after a final line break is empty and is never read.
    if (start < text.size()) {
        lines.push_back(text.substr(start));
    }
    return lines;
}

// An optional sign followed by decimal digits only, within 64 bits.
std::optional<std::int64_t> readInteger(std::string_view s) {
    bool negative = false;
    if (!s.empty() && (s.front() == '+' || s.front() == '-')) {
        negative = s.front() == '-';
        s.remove_prefix(1);
    }
    if (s.empty()) {
        return std::nullopt;
    }
    std::uint64_t magnitude = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), magnitude);
    if (ec != std::errc() || end != s.data() + s.size()) {
        return std::nullopt;
    }
    constexpr std::uint64_t maxPositive = INT64_MAX;
    if (magnitude > maxPositive + (negative ? 1 : 0)) {
        return std::nullopt;
    }
    if (negative) {
        return magnitude == maxPositive + 1 ? INT64_MIN : -static_cast<std::int64_t>(magnitude);
    }
    return static_cast<std::int64_t>(magnitude);
}

// The rule fields, read into a scratch copy first so that a bad text changes
// nothing.
struct RuleFields {
    std::int64_t firstDateState, firstDateSelectedItem, firstDateComparisonItem;
    DateTime firstDate;
    std::int64_t secondDateState, secondDateSelectedItem, secondDateComparisonItem;
    DateTime secondDate;
    std::int64_t firstFileSizeState, firstFileSizeComparisonItem, firstFileSize, firstFileSizeUnit;
    std::int64_t secondFileSizeState, secondFileSizeComparisonItem, secondFileSize,
        secondFileSizeUnit;
    std::int64_t customFileTypesState;
    std::string customFileType;
    std::int64_t customFilePathState;
    std::string customFilePath;
    std::int64_t subfoldersState, matchState;
    std::vector<std::string> customFileExtensions;
};

std::optional<RuleFields> readRuleFields(const std::vector<std::string_view>& lines) {
    constexpr std::size_t fixedLines = 23;
    if (lines.size() < fixedLines) {
        return std::nullopt;
    }
    RuleFields f;
    bool ok = true;
    std::size_t next = 0;
    auto integer = [&](std::int64_t& out) {
        const auto v = readInteger(lines[next++]);
        ok = ok && v.has_value();
        out = v.value_or(0);
    };
    auto date = [&](DateTime& out) {
        out = 0;
        ok = ok && parseDayText(std::string(lines[next++]), out);
    };
    auto text = [&](std::string& out) { out = std::string(lines[next++]); };

    integer(f.firstDateState);
    integer(f.firstDateSelectedItem);
    integer(f.firstDateComparisonItem);
    date(f.firstDate);
    integer(f.secondDateState);
    integer(f.secondDateSelectedItem);
    integer(f.secondDateComparisonItem);
    date(f.secondDate);
    integer(f.firstFileSizeState);
    integer(f.firstFileSizeComparisonItem);
    integer(f.firstFileSize);
    integer(f.firstFileSizeUnit);
    integer(f.secondFileSizeState);
    integer(f.secondFileSizeComparisonItem);
    integer(f.secondFileSize);
    integer(f.secondFileSizeUnit);
    integer(f.customFileTypesState);
    text(f.customFileType);
    integer(f.customFilePathState);
    text(f.customFilePath);
    integer(f.subfoldersState);
    integer(f.matchState);
    std::int64_t count = 0;
    integer(count);
    if (!ok || count < 0 || static_cast<std::uint64_t>(count) > lines.size() - fixedLines) {
        return std::nullopt;
    }
    f.customFileExtensions.assign(lines.begin() + fixedLines, lines.begin() + fixedLines + count);
    return f;
}

} // namespace

std::string customSettingsText(const SettingsManager& s) {
    std::string out;
    auto line = [&out](const std::string& value) {
        out += value;
        out += '\n';
    };
    auto integer = [&line](std::int64_t v) { line(std::to_string(v)); };

    integer(s.firstDateState);
    integer(s.firstDateSelectedItem);
    integer(s.firstDateComparisonItem);
    line(dayText(s.firstDate));
    integer(s.secondDateState);
    integer(s.secondDateSelectedItem);
    integer(s.secondDateComparisonItem);
    line(dayText(s.secondDate));
    integer(s.firstFileSizeState);
    integer(s.firstFileSizeComparisonItem);
    integer(s.firstFileSize);
    integer(s.firstFileSizeUnit);
    integer(s.secondFileSizeState);
    integer(s.secondFileSizeComparisonItem);
    integer(s.secondFileSize);
    integer(s.secondFileSizeUnit);
    integer(s.customFileTypesState);
    line(s.customFileType);
    integer(s.customFilePathState);
    line(s.customFilePath);
    integer(s.subfoldersState);
    integer(s.matchState);
    integer(static_cast<std::int64_t>(s.customFileExtensions.size()));
    for (const std::string& ext : s.customFileExtensions) {
        line(ext);
    }
    return out;
}

bool loadCustomSettings(SettingsManager& s, const std::string& text) {
    auto f = readRuleFields(splitLines(text));
    if (!f) {
        return false;
    }
    s.firstDateState = f->firstDateState;
    s.firstDateSelectedItem = f->firstDateSelectedItem;
    s.firstDateComparisonItem = f->firstDateComparisonItem;
    s.firstDate = f->firstDate;
    s.secondDateState = f->secondDateState;
    s.secondDateSelectedItem = f->secondDateSelectedItem;
    s.secondDateComparisonItem = f->secondDateComparisonItem;
    s.secondDate = f->secondDate;
    s.firstFileSizeState = f->firstFileSizeState;
    s.firstFileSizeComparisonItem = f->firstFileSizeComparisonItem;
    s.firstFileSize = f->firstFileSize;
    s.firstFileSizeUnit = f->firstFileSizeUnit;
    s.secondFileSizeState = f->secondFileSizeState;
    s.secondFileSizeComparisonItem = f->secondFileSizeComparisonItem;
    s.secondFileSize = f->secondFileSize;
    s.secondFileSizeUnit = f->secondFileSizeUnit;
    s.customFileTypesState = f->customFileTypesState;
    s.customFileType = std::move(f->customFileType);
    s.customFilePathState = f->customFilePathState;
    s.customFilePath = std::move(f->customFilePath);
    s.subfoldersState = f->subfoldersState;
    s.matchState = f->matchState;
    s.customFileExtensions = std::move(f->customFileExtensions);
    return true;
}

void resetCustomSettings(SettingsManager& s) {
    const SettingsManager fresh;
    s.firstDateState = fresh.firstDateState;
    s.firstDateSelectedItem = fresh.firstDateSelectedItem;
    s.firstDateComparisonItem = fresh.firstDateComparisonItem;
    s.firstDate = fresh.firstDate;
    s.secondDateState = fresh.secondDateState;
    s.secondDateSelectedItem = fresh.secondDateSelectedItem;
    s.secondDateComparisonItem = fresh.secondDateComparisonItem;
    s.secondDate = fresh.secondDate;
    s.firstFileSizeState = fresh.firstFileSizeState;
    s.firstFileSizeComparisonItem = fresh.firstFileSizeComparisonItem;
    s.firstFileSize = fresh.firstFileSize;
    s.firstFileSizeUnit = fresh.firstFileSizeUnit;
    s.secondFileSizeState = fresh.secondFileSizeState;
    s.secondFileSizeComparisonItem = fresh.secondFileSizeComparisonItem;
    s.secondFileSize = fresh.secondFileSize;
    s.secondFileSizeUnit = fresh.secondFileSizeUnit;
    s.customFileTypesState = fresh.customFileTypesState;
    s.customFileExtensions.clear();
    s.customFileType = fresh.customFileType;
    s.customFilePathState = fresh.customFilePathState;
    s.customFilePath.clear();
    s.subfoldersState = fresh.subfoldersState;
    s.matchState = fresh.matchState;
    s.customSettingsOption = "Cancel";
}

} // namespace twinsweep
