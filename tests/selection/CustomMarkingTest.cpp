#include <gtest/gtest.h>

#include "Groups.h"
#include "selection/CustomMarking.h"
#include "selection/CustomSettingsText.h"
#include "selection/KeepOptions.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Marks = std::vector<std::int64_t>;

namespace {

// Rules that mark what lies under the "remove" folder.
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

TEST_F(CustomMarking, NothingChangesUnlessTheRulesWindowSaidOK) {
    s.customSettingsOption = "Cancel";
    EXPECT_FALSE(applyCustomRules(*mixed, s));
    EXPECT_FALSE(applyCustomRulesToAll({mixed, allIn}, s));
    s.customSettingsOption = "ok";
    EXPECT_FALSE(applyCustomRules(*mixed, s));
    for (const auto& g : s.duplicateFileList) {
        EXPECT_EQ(g->keepOption, 0);
        EXPECT_EQ(g->customSettings.str(), defaultRuleText());
        EXPECT_EQ(markedCount(*g), 0);
    }
}

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
