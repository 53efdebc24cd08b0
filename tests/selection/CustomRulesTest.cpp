// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <climits>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>

#include "Groups.h"
#include "selection/CustomMarking.h"
#include "selection/CustomRuleMatch.h"
#include "selection/CustomSettingsText.h"
#include "selection/KeepOptions.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Marks = std::vector<std::int64_t>;

namespace {

void setModified(const std::string& path, DateTime when) {
    const timespec times[2] = {{static_cast<time_t>(when), 0}, {static_cast<time_t>(when), 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

struct CustomRuleMatch : ::testing::Test {
    TempTree tree;
    SettingsManager s;

    bool match(const std::string& path, std::uint64_t size = 1000, const std::string& ext = "jpg") {
        return matchCustomRules(s, DuplicateFile(path, "", 0), size, ext);
    }
};

} // namespace

TEST_F(CustomRuleMatch, FileTypeRuleLooksAtTheGroupsExtension) {
    const std::string p = tree.write("b.jpeg", "x");
    s.customFileTypesState = 1;
    EXPECT_TRUE(match(p)); // an empty list is met
    s.customFileExtensions = {"png", "jpg"};
    EXPECT_TRUE(match(p, 1000, "jpg")); // the member's own name plays no part
    EXPECT_FALSE(match(p, 1000, "jpeg"));
    s.matchState = 1;
    EXPECT_TRUE(match(p, 1000, "jpeg"));
    // Canonically equivalent extensions are equal: composed and decomposed "é".
    s.matchState = 0;
    s.customFileExtensions = {"caf\xC3\xA9"};
    EXPECT_TRUE(match(p, 1000, "cafe\xCC\x81"));
}

TEST_F(CustomRuleMatch, SizeRulesIncludeTheLimitAndCombine) {
    const std::string p = tree.write("c.jpg", "x");
    s.firstFileSizeState = 1; // Smaller than 200 KB
    EXPECT_TRUE(match(p, 204800));
    EXPECT_FALSE(match(p, 204801));
    s.firstFileSizeComparisonItem = 0; // Larger
    EXPECT_TRUE(match(p, 204800));
    EXPECT_FALSE(match(p, 204799));

    s.secondFileSizeState = 1; // and larger than 100 GB: both can't hold
    EXPECT_FALSE(match(p, 204800));
    s.secondFileSizeComparisonItem = 1; // and smaller than 100 GB
    EXPECT_TRUE(match(p, 204800));
    EXPECT_TRUE(match(p, 107374182400ULL));
    EXPECT_FALSE(match(p, 107374182401ULL));

    // A negative limit: every size is larger, none smaller.
    s.secondFileSizeState = 0;
    s.firstFileSize = -1;
    EXPECT_TRUE(match(p, 0));
    s.firstFileSizeComparisonItem = 1;
    EXPECT_FALSE(match(p, 0));
    // Units beyond the window's, and limits too large for bytes.
    EXPECT_EQ(sizeInBytes(3, 2), 3 * 1048576);
    EXPECT_EQ(sizeInBytes(1, 99), 1073741824); // any other unit is GB
    EXPECT_EQ(sizeInBytes(INT64_MAX, 3), INT64_MAX);
    EXPECT_EQ(sizeInBytes(INT64_MIN, 1), INT64_MIN);
}

TEST_F(CustomRuleMatch, DateRulesCompareDaysOnly) {
    const std::string p = tree.write("d.jpg", "x");
    setModified(p, day("01/01/2017") + 23 * 3600 + 59 * 60);
    s.firstDateState = 1;
    s.firstDateSelectedItem = 1;   // modification date
    s.firstDateComparisonItem = 0; // Earlier than 01/01/2017: the same day passes
    EXPECT_TRUE(match(p));
    s.firstDateComparisonItem = 1; // Later passes too
    EXPECT_TRUE(match(p));
    s.firstDate = day("02/01/2017");
    EXPECT_FALSE(match(p));
    EXPECT_EQ(fileDay(DuplicateFile(p, "", 0), DateKind::Modification), day("01/01/2017"));

    // The creation date of a file made now is later than 2017.
    s.firstDate = day("01/01/2017");
    s.firstDateSelectedItem = 0;
    EXPECT_TRUE(match(p));
    s.firstDateComparisonItem = 0;
    EXPECT_FALSE(match(p));

    // A second date rule narrows further; a file that can't be read meets both.
    s.firstDateComparisonItem = 1;
    s.secondDateState = 1;
    s.secondDateComparisonItem = 0;
    s.secondDate = day("01/01/2000");
    EXPECT_FALSE(match(p));
    EXPECT_TRUE(match(tree.path("gone.jpg")));
    EXPECT_FALSE(fileDay(DuplicateFile(tree.path("gone.jpg"), "", 0), DateKind::Creation));
}

TEST_F(CustomRuleMatch, FolderRuleWithAndWithoutSubfolders) {
    s.customFilePathState = 1;
    s.customFilePath = "";
    EXPECT_FALSE(match("/Users/a/x.jpg"));
    s.matchState = 1; // an empty folder fails every member, so don't-match marks all
    EXPECT_TRUE(match("/Users/a/x.jpg"));
    s.matchState = 0;

    s.customFilePath = "/Users/a/Doc"; // a plain text prefix
    EXPECT_TRUE(match("/Users/a/Documents/x.jpg"));
    EXPECT_FALSE(match("/Users/b/Doc/x.jpg"));
    s.subfoldersState = 0;
    EXPECT_FALSE(match("/Users/a/Documents/x.jpg"));
    EXPECT_TRUE(match("/Users/a/Doc/x.jpg"));
    EXPECT_FALSE(match("/Users/a/Doc/sub/x.jpg"));
    s.customFilePath = "/Users/a/Doc/";
    EXPECT_FALSE(match("/Users/a/Doc/x.jpg"));
    s.customFilePath = "/";
    EXPECT_TRUE(match("/x.jpg"));

    // Decomposed on disk, composed in the rule; and names that are not UTF-8.
    s.customFilePath = "/m/\xC3\xA9t\xC3\xA9";
    EXPECT_TRUE(match("/m/e\xCC\x81te\xCC\x81/x.jpg"));
    s.customFilePath = "/m/\xFF\xFE";
    EXPECT_TRUE(match("/m/\xFF\xFE/x.jpg"));
    s.subfoldersState = 1;
    EXPECT_TRUE(match("/m/\xFF\xFE\n/x.jpg"));
    EXPECT_FALSE(match("/m/\xFF/x.jpg"));
}

TEST_F(CustomRuleMatch, AllRulesTogetherAndDontMatch) {
    const std::string in = tree.write("pics/e.jpg", "x");
    setModified(in, day("10/06/2015"));
    // With no rule on nothing is marked, whatever the match choice.
    EXPECT_FALSE(match(in));
    s.matchState = 1;
    s.firstDateState = 2; // only 1 counts as on
    EXPECT_FALSE(match(in));
    s.matchState = 0;
    s.firstDateState = 1;
    s.firstDateSelectedItem = 1;
    s.firstDateComparisonItem = 0; // modified on or before 01/01/2017
    s.firstFileSizeState = 1;      // at most 200 KB
    s.customFileTypesState = 1;
    s.customFileExtensions = {"jpg"};
    s.customFilePathState = 1;
    s.customFilePath = tree.path("pics");
    s.subfoldersState = 0;
    EXPECT_TRUE(match(in, 1000, "jpg"));
    EXPECT_FALSE(match(in, 300000, "jpg"));
    EXPECT_FALSE(match(in, 1000, "png"));
    s.matchState = 1;
    EXPECT_FALSE(match(in, 1000, "jpg"));
    EXPECT_TRUE(match(in, 1000, "png"));
}

namespace {

// Rules that mark what lies under the "remove" folder; ResultsUpdate checks
// that nothing is marked unless the rules window said OK.
struct CustomMarking : ::testing::Test {
    TempTree tree;
    SettingsManager s;
    FilePtr mixed = makeGroup({{tree.write("keep/a.jpg", "1"), "17-01-01 01:00:00"},
                               {tree.write("remove/a.jpg", "1"), "16-01-01 01:00:00"},
                               {tree.write("remove/b.jpg", "1"), "18-01-01 01:00:00"}});
    FilePtr allIn = makeGroup({{tree.write("remove/c.txt", "2"), "17-01-01 01:00:00"},
                               {tree.write("remove/d/c.txt", "2"), "16-01-01 01:00:00"},
                               {tree.write("remove/e/c.txt", "2"), "18-01-01 01:00:00"}});
    FilePtr hidden = makeGroup({{tree.write("remove/f.mp3", "3"), "17-01-01 01:00:00"},
                                {tree.write("remove/g.mp3", "3"), "17-01-01 01:00:00"}});

    void SetUp() override {
        s.customFilePathState = 1;
        s.customFilePath = tree.path("remove/");
        s.customSettingsOption = "OK";
        s.duplicateFileList = {mixed, allIn, hidden};
    }
};

} // namespace

TEST_F(CustomMarking, OneGroupSparesNothingAndStoresTheRules) {
    ASSERT_TRUE(applyCustomRules(*mixed, s));
    EXPECT_EQ(mixed->keepOption, 4);
    EXPECT_EQ(marks(*mixed), (Marks{0, 1, 1}));
    EXPECT_EQ(mixed->customSettings.str(), customSettingsText(s));

    ASSERT_TRUE(applyCustomRules(*allIn, s)); // every member passes: all marked
    EXPECT_EQ(marks(*allIn), (Marks{1, 1, 1}));
    allIn->duplicates[1]->isProtected = true; // but never a protected one
    applyCustomRules(*allIn, s);
    EXPECT_EQ(marks(*allIn), (Marks{1, 0, 1}));
    EXPECT_EQ(hidden->keepOption, 0);
    EXPECT_EQ(markedCount(*hidden), 0);

    // A second record with the group's path follows, measured by the group.
    auto twin = makeGroup({{mixed->path, ""}, {tree.write("remove/z.jpg", "1"), ""}});
    s.duplicateFileList.push_back(twin);
    s.customFileTypesState = 1;
    s.customFileExtensions = {"jpg"};
    twin->ext = "png";
    applyCustomRules(*mixed, s);
    EXPECT_EQ(twin->keepOption, 4);
    EXPECT_EQ(marks(*twin), (Marks{0, 1}));
}

TEST_F(CustomMarking, AllListedGroupsWithTheKeepOneAnswer) {
    s.customMessageRespone = 1; // keep the oldest
    ASSERT_TRUE(applyCustomRulesToAll({mixed, allIn}, s));
    EXPECT_EQ(marks(*mixed), (Marks{0, 1, 1})); // not all passed: as the rules say
    EXPECT_EQ(marks(*allIn), (Marks{1, 0, 1})); // the oldest is spared
    EXPECT_EQ(allIn->keepOption, 4);
    EXPECT_EQ(allIn->customSettings.str(), customSettingsText(s));
    // A hidden category's group keeps its option, marks and text.
    EXPECT_EQ(hidden->keepOption, 0);
    EXPECT_EQ(marks(*hidden), (Marks{0, 0}));
    EXPECT_EQ(hidden->customSettings.str(), defaultRuleText());

    s.customMessageRespone = 2; // keep the newest
    applyCustomRulesToAll({mixed, allIn}, s);
    EXPECT_EQ(marks(*allIn), (Marks{1, 1, 0}));

    s.customMessageRespone = 3; // no
    applyCustomRulesToAll({mixed, allIn, hidden}, s);
    EXPECT_EQ(marks(*allIn), (Marks{1, 1, 1}));
    EXPECT_EQ(marks(*hidden), (Marks{1, 1}));
}
