// SPDX-License-Identifier: GPL-3.0-or-later
#include "selection/CleaningSummary.h"

#include <algorithm>
#include <unordered_map>

namespace twinsweep {

namespace {

// The reason of a copy's removal failure, without the paths that make every
// copy's reason different.
std::string reasonOf(const CleanedCopy& c) {
    const std::string& path = c.member->path;
    std::string text = c.result.error;
    if (text.starts_with(path + ": ")) {
        text.erase(0, path.size() + 2);
    }
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        const bool pathStarts = text[i] == '/' && (i == 0 || text[i - 1] == ' ' ||
                                                   text[i - 1] == '(' || text[i - 1] == '"');
        if (!pathStarts) {
            out += text[i++];
            continue;
        }
        std::size_t end = i;
        // Names often hold parentheses (" (1)"): a path ends at ", ", ": "
        // or the end only.
        while (end < text.size() && text.compare(end, 2, ", ") != 0 &&
               text.compare(end, 2, ": ") != 0) {
            ++end;
        }
        // ... but the parenthesis the reason opened before it closes there.
        if (end > i + 1 && text[end - 1] == ')' &&
            std::count(out.begin(), out.end(), '(') > std::count(out.begin(), out.end(), ')')) {
            --end;
        }
        out += text.compare(i, end - i, path) == 0 ? "it" : "a kept copy";
        i = end;
    }
    return out.empty() ? "not removed" : out;
}

} // namespace

std::vector<std::pair<std::string, std::int64_t>>
reasonsLeftInPlace(const std::vector<CleanedCopy>& attempted) {
    std::vector<std::pair<std::string, std::int64_t>> reasons;
    std::unordered_map<std::string, std::size_t> at;
    for (const CleanedCopy& c : attempted) {
        if (!c.leftInPlace) {
            continue;
        }
        const std::string reason = reasonOf(c);
        const auto [it, added] = at.try_emplace(reason, reasons.size());
        if (added) {
            reasons.emplace_back(reason, 0);
        }
        ++reasons[it->second].second;
    }
    std::stable_sort(reasons.begin(), reasons.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    return reasons;
}

std::string fillCounts(const std::string& pattern, const std::vector<std::string>& args) {
    // One pass over the pattern: a filled-in text holding "%2" stays as it is.
    std::string out;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        const auto n = static_cast<std::size_t>(next - '1');
        if (pattern[i] == '%' && next >= '1' && next <= '9' && n < args.size()) {
            out += args[n];
            ++i;
        } else {
            out += pattern[i];
        }
    }
    return out;
}

std::string leftInPlaceHeading(std::int64_t total) {
    return total == 1 ? "%1 marked copy was left in place, still listed and marked:"
                      : "%1 marked copies were left in place, still listed and marked:";
}

AlertText leftInPlaceAlert(const std::vector<CleanedCopy>& attempted) {
    const auto reasons = reasonsLeftInPlace(attempted);
    std::int64_t total = 0;
    for (const auto& r : reasons) {
        total += r.second;
    }
    if (total == 0) {
        return {};
    }
    std::string text = fillCounts(leftInPlaceHeading(total), {std::to_string(total)});
    for (std::size_t i = 0; i < reasons.size() && i < kReasonsShown; ++i) {
        text +=
            "\n" + fillCounts(kReasonLine, {std::to_string(reasons[i].second), reasons[i].first});
    }
    if (const std::int64_t rest = otherReasonsCount(reasons); rest > 0) {
        text += "\n" + fillCounts(kOtherReasonsLine, {std::to_string(rest)});
    }
    return {text, {"Show Them", "OK"}};
}

std::int64_t otherReasonsCount(const std::vector<std::pair<std::string, std::int64_t>>& reasons) {
    std::int64_t rest = 0;
    for (std::size_t i = kReasonsShown; i < reasons.size(); ++i) {
        rest += reasons[i].second;
    }
    return rest;
}

std::string stoppedPattern(std::int64_t done, std::int64_t marked, const CleaningChoice& choice) {
    const bool one = done == 1;
    const std::string verb =
        choice.sharing
            ? (one ? " now shares" : " now share") + std::string(" storage with a kept copy")
        : choice.linking ? (one ? " was replaced by a hard link" : " were replaced by hard links")
                         : std::string(one ? " was" : " were") +
                               (choice.toTrash ? " moved to the Trash" : " deleted");
    return std::string("Cleaning was stopped: %1 of the %2") +
           (marked == 1 ? " marked copy" : " marked copies") + verb +
           " before the stop; the others were left as they are.";
}

} // namespace twinsweep
