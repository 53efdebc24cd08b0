// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "Groups.h"
#include "selection/CustomSettingsText.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

// Every rule field away from its initial value.
void setEverything(SettingsManager& s) {
    s.firstDateState = 1;
    s.firstDateSelectedItem = 1;
    s.firstDateComparisonItem = 0;
    s.firstDate = day("29/02/2024") + 15 * 3600 + 7; // the time of day is not kept
    s.secondDateState = 1;
    s.secondDateSelectedItem = 1;
    s.secondDateComparisonItem = 1;
    s.secondDate = day("05/03/0217");
    s.firstFileSizeState = 1;
    s.firstFileSizeComparisonItem = 0;
    s.firstFileSize = 100000;
    s.firstFileSizeUnit = 0;
    s.secondFileSizeState = 1;
    s.secondFileSizeComparisonItem = 1;
    s.secondFileSize = -3;
    s.secondFileSizeUnit = 2;
    s.customFileTypesState = 1;
    s.customFileType = "tar gz";
    s.customFilePathState = 1;
    s.customFilePath = "/home/me/My Pictures/été";
    s.subfoldersState = 0;
    s.matchState = 1;
    s.customFileExtensions = {"jpg", "my ext", ""};
}

void expectSameRules(const SettingsManager& a, const SettingsManager& b) {
    EXPECT_EQ(customSettingsText(a), customSettingsText(b));
    EXPECT_EQ(a.firstDate, b.firstDate);
    EXPECT_EQ(a.secondDate, b.secondDate);
    EXPECT_EQ(a.customFilePath, b.customFilePath);
    EXPECT_EQ(a.customFileExtensions, b.customFileExtensions);
}

} // namespace

TEST(CustomSettingsText, RoundTripKeepsEveryFieldAndDatesToTheDayAndResetClears) {
    SettingsManager written;
    setEverything(written);
    const std::string text = customSettingsText(written);
    EXPECT_NE(text.find("\n29/02/2024\n"), std::string::npos);
    EXPECT_NE(text.find("\n3\njpg\nmy ext\n\n"), std::string::npos);

    SettingsManager read;
    read.customSettingsOption = "OK";
    read.customMessageRespone = 2;
    ASSERT_TRUE(loadCustomSettings(read, text));
    written.firstDate = day("29/02/2024");
    expectSameRules(read, written);
    // Not part of the text.
    EXPECT_EQ(read.customSettingsOption, "OK");
    EXPECT_EQ(read.customMessageRespone, 2);

    // A reset gives the initial values with an empty folder, and closes the rules.
    resetCustomSettings(read);
    SettingsManager fresh;
    fresh.customFilePath = "";
    expectSameRules(read, fresh);
    EXPECT_EQ(read.customSettingsOption, "Cancel");
    EXPECT_EQ(read.customMessageRespone, 2);
}

TEST(CustomSettingsText, MalformedTextChangesNothing) {
    SettingsManager good;
    setEverything(good);
    const std::string base = customSettingsText(good);
    auto withLine = [&](int index, const std::string& value) {
        std::string t = base;
        std::size_t start = 0;
        for (int i = 0; i < index; ++i) {
            start = t.find('\n', start) + 1;
        }
        t.replace(start, t.find('\n', start) - start, value);
        return t;
    };
    const std::vector<std::string> bad = {
        "",
        "0\n0\n1\n",
        withLine(0, "1.0"),
        withLine(0, " 1"),
        withLine(1, ""),
        withLine(2, "+"),
        withLine(2, "0x1"),
        withLine(10, "9223372036854775808"),
        withLine(3, "31/02/2017"), // dates are read strictly: a real day, two-digit parts
        withLine(3, "29/02/2019"),
        withLine(3, "1/1/2017"),
        withLine(3, "00/01/2017"),
        withLine(7, "01-01-2017"),
        withLine(22, "4"),  // announces more extensions than there are lines
        withLine(22, "-1"), // a negative count
        base.substr(0, base.find("my ext")),
    };
    SettingsManager s;
    setEverything(s);
    s.customFilePath = "untouched";
    const std::string before = customSettingsText(s);
    for (const std::string& text : bad) {
        EXPECT_FALSE(loadCustomSettings(s, text)) << text;
        EXPECT_EQ(customSettingsText(s), before) << text;
    }
    // The extreme integers are read.
    SettingsManager edge;
    EXPECT_TRUE(loadCustomSettings(edge, withLine(10, "-9223372036854775808")));
    EXPECT_EQ(edge.firstFileSize, INT64_MIN);
}
