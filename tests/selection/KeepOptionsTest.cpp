// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <tuple>

#include "Groups.h"
#include "selection/KeepOptions.h"
#include "settings/SettingsManager.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Marks = std::vector<std::int64_t>;

namespace {

struct KeepOptions : ::testing::Test {
    TempTree tree;
    // Head dated in the middle, then the oldest, then the newest.
    FilePtr group = makeGroup({{tree.write("a/head.jpg", "x"), "17-03-05 03:04:09"},
                               {tree.write("b/old.jpg", "x"), "16-01-01 11:00:00"},
                               {tree.write("c/new.jpg", "x"), "18-12-31 09:00:00"}});
    FileList all{group};
};

} // namespace

TEST_F(KeepOptions, EachOptionMarksAsItSaysOverridesHandMarksAndSparesProtectedCopies) {
    group->duplicates[0]->checkState = 1; // a hand mark on the head
    const std::tuple<int, Marks> cases[] = {{kKeepOldest, {1, 0, 1}},
                                            {kKeepNewest, {1, 1, 0}},
                                            {kRemoveAll, {1, 1, 1}},
                                            {kKeepAll, {0, 0, 0}}};
    for (const auto& [option, expected] : cases) {
        ASSERT_TRUE(applyKeepOption(*group, option, all));
        EXPECT_EQ(group->keepOption, option);
        EXPECT_EQ(marks(*group), expected) << option;
        EXPECT_EQ(markedCount(*group), std::count(expected.begin(), expected.end(), 1)) << option;
    }
    // The custom option is not a plain keep option; out-of-range values are ignored.
    EXPECT_FALSE(applyKeepOption(*group, kKeepCustom, all));
    EXPECT_FALSE(applyKeepOption(*group, -1, all));
    EXPECT_EQ(group->keepOption, kKeepAll);

    group->duplicates[1]->isProtected = true; // never marked by an option
    applyKeepOption(*group, kRemoveAll, all);
    EXPECT_EQ(marks(*group), (Marks{1, 0, 1}));
}

TEST_F(KeepOptions, TiesKeepTheFirstMemberOnTheTwelveHourClock) {
    // 13:05 and 01:05 of one day are written alike and compare equal.
    for (auto& m : group->duplicates) {
        m->date = "17-03-05 01:05:00";
    }
    EXPECT_EQ(oldestCopy(group->duplicates), group->duplicates[0]);
    EXPECT_EQ(newestCopy(group->duplicates), group->duplicates[0]);
    applyKeepOption(*group, kKeepNewest, all);
    EXPECT_EQ(marks(*group), (Marks{0, 1, 1}));

    // Read back, 12 o'clock comes before 1 o'clock, as the texts were written.
    group->duplicates[0]->date = "17-03-05 01:00:00";
    group->duplicates[1]->date = "17-03-05 12:30:00";
    group->duplicates[2]->date = "17-03-05 11:59:59";
    EXPECT_EQ(oldestCopy(group->duplicates), group->duplicates[1]);
    EXPECT_EQ(newestCopy(group->duplicates), group->duplicates[2]);
}

TEST_F(KeepOptions, UnreadableDatesNeverWinAndAnUnreadablePickStays) {
    group->duplicates[1]->date = ""; // the oldest can't be read: passed over
    EXPECT_EQ(oldestCopy(group->duplicates), group->duplicates[0]);
    EXPECT_EQ(newestCopy(group->duplicates), group->duplicates[2]);

    group->duplicates[0]->date = "17-03-05 3:04"; // an unreadable head stays the pick
    group->duplicates[1]->date = "16-01-01 11:00:00";
    EXPECT_EQ(oldestCopy(group->duplicates), group->duplicates[0]);
    EXPECT_EQ(newestCopy(group->duplicates), group->duplicates[0]);

    // Two-digit years fall within 80 years before and 20 after now.
    const std::time_t now = static_cast<std::time_t>(day("23/11/2026")) + 12 * 3600;
    const std::pair<const char*, int> years[] = {
        {"46-12-01 01:00:00", 1946}, {"46-11-01 01:00:00", 2046}, {"00-01-01 01:00:00", 2000}};
    for (const auto& [text, year] : years) {
        const auto t = parseMemberDate(text, now);
        std::tm out{};
        EXPECT_EQ(t && ::localtime_r(&*t, &out) ? out.tm_year + 1900 : -1, year) << text;
    }
    EXPECT_FALSE(parseMemberDate("17-03-05 13:04:09"));
    EXPECT_FALSE(parseMemberDate("17-03-05 03:04:09 "));
    EXPECT_FALSE(parseMemberDate(""));
}

TEST(KeepOptionsExact, ExactTimesFindTheTrueOriginalWhereDateTextsMislead) {
    TempTree tree;
    // The original first, its copy a moment later: creation times (or
    // modification times, where the file system keeps none) in that order.
    const std::string original = tree.write("dl/report.pdf", "r");
    // Longer than a clock tick: file times come from the coarse clock.
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    const std::string copy = tree.write("dl/report (1).pdf", "r");
    ASSERT_LT(*exactCreationTime(original), *exactCreationTime(copy));
    EXPECT_EQ(exactCreationTime(tree.path("dl/gone.pdf")), std::nullopt);

    // Three seconds apart across noon, which the 12-hour texts read as
    // 00:00:02; and two copies within one second, which the texts tie. The
    // copy is listed first.
    const std::pair<const char*, const char*> texts[] = {
        {"24-05-01 11:59:59", "24-05-01 12:00:02"}, {"24-05-01 10:00:00", "24-05-01 10:00:00"}};
    for (const auto& [originalText, copyText] : texts) {
        FilePtr group = makeGroup({{copy, copyText}, {original, originalText}});
        const FileList all{group};
        ASSERT_TRUE(applyKeepOption(*group, kKeepOldest, all));
        EXPECT_EQ(marks(*group), (Marks{0, 1})) << copyText; // the texts keep the copy
        ASSERT_TRUE(applyKeepOption(*group, kKeepOldest, all, KeepTimeBasis::ExactTime));
        EXPECT_EQ(marks(*group), (Marks{1, 0})) << copyText;
        ASSERT_TRUE(applyKeepOption(*group, kKeepNewest, all, KeepTimeBasis::ExactTime));
        EXPECT_EQ(marks(*group), (Marks{0, 1})) << copyText;
        EXPECT_EQ(oldestCopy(group->duplicates, KeepTimeBasis::ExactTime)->path, original);
    }
}
