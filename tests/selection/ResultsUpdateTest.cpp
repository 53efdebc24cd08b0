#include <gtest/gtest.h>

#include "Groups.h"
#include "selection/CustomMarking.h"
#include "selection/KeepOptions.h"
#include "selection/ResultsUpdate.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Marks = std::vector<std::int64_t>;

namespace {

// Three groups of 5-byte copies: pictures, music, pictures; the head newest.
struct ResultsUpdate : ::testing::Test {
    TempTree tree;
    SettingsManager s;
    FilePtr group(const std::string& name) {
        FilePtr g = makeGroup({{tree.write("a/" + name, "12345"), "17-01-01 01:00:00"},
                               {tree.write("b/" + name, "12345"), "16-01-01 01:00:00"}});
        g->size = 5;
        return g;
    }
    FilePtr pic1 = group("1.jpg"), song = group("2.mp3"), pic2 = group("3.png");
    void SetUp() override { s.duplicateFileList = {pic1, song, pic2}; }
};

} // namespace

TEST_F(ResultsUpdate, FirstUpdateComputesEverythingAndAppliesToTheFirstGroup) {
    applyKeepOption(*pic1, kRemoveAll, s.duplicateFileList);
    applyKeepOption(*song, kRemoveAll, s.duplicateFileList);
    ResultsRequest r;
    r.firstUpdate = true;
    const ComputedResults out = computeResults(r, s);
    EXPECT_TRUE(out.listedRebuilt);
    EXPECT_EQ(out.listed, s.duplicateFileList);
    EXPECT_EQ(out.figures.texts[0], "67%");
    EXPECT_EQ(out.figures.texts[1], "33%");
    // Segment 0 went to group 0 alone.
    EXPECT_EQ(marks(*pic1), (Marks{0, 0}));
    EXPECT_EQ(marks(*song), (Marks{1, 1}));
    EXPECT_EQ(out.spaceSaved, (SpaceSaved{10, "10 B", kSavingTextColour}));
}

TEST_F(ResultsUpdate, CategoryChangeRebuildsTheListButNeverMarks) {
    applyKeepOption(*song, kKeepOldest, s.duplicateFileList);
    ResultsRequest r;
    r.listed = s.duplicateFileList;
    r.categoriesChanged = true;
    r.segment = kRemoveAll; // not applied after a category change
    r.applyForAll = true;
    r.figures.texts[0] = "shown";
    r.categoryShown[1] = false; // hide music
    ComputedResults out = computeResults(r, s);
    EXPECT_EQ(out.listed, (FileList{pic1, pic2}));
    EXPECT_EQ(out.figures.texts[0], "shown"); // passed on unchanged
    EXPECT_EQ(out.spaceSaved.bytes, 0u);      // music's marks are hidden
    EXPECT_EQ(marks(*pic1), (Marks{0, 0}));
    EXPECT_EQ(marks(*song), (Marks{1, 0}));
    r.categoryShown[1] = true; // showing it again brings its marks back
    EXPECT_EQ(computeResults(r, s).spaceSaved.bytes, 5u);
}

TEST_F(ResultsUpdate, OptionGoesToTheSelectedGroupOrEveryListedOne) {
    ResultsRequest r;
    r.listed = {pic1, pic2}; // music hidden
    r.segment = kKeepOldest;
    r.lastSelectedRow = 1;
    computeResults(r, s);
    EXPECT_EQ(marks(*pic1), (Marks{0, 0}));
    EXPECT_EQ(marks(*pic2), (Marks{1, 0}));

    r.lastSelectedRow = 7; // out of range: the first group
    r.segment = kRemoveAll;
    EXPECT_EQ(computeResults(r, s).lastSelectedRow, 0);
    EXPECT_EQ(marks(*pic1), (Marks{1, 1}));

    r.applyForAll = true;
    r.segment = kKeepNewest;
    const ComputedResults out = computeResults(r, s);
    EXPECT_FALSE(out.listedRebuilt);
    EXPECT_EQ(marks(*pic1), (Marks{0, 1}));
    EXPECT_EQ(marks(*pic2), (Marks{0, 1}));
    EXPECT_EQ(marks(*song), (Marks{0, 0})); // hidden: untouched
    EXPECT_EQ(out.spaceSaved.bytes, 10u);
}

TEST_F(ResultsUpdate, CustomOptionOnlyAfterOK) {
    s.customFilePathState = 1;
    s.customFilePath = tree.path("b/");
    ResultsRequest r;
    r.listed = s.duplicateFileList;
    r.segment = kKeepCustom;
    r.applyForAll = true;
    computeResults(r, s); // the rules window was cancelled
    EXPECT_EQ(pic1->keepOption, 0);
    EXPECT_EQ(markedCount(*pic1), 0);

    s.customSettingsOption = "OK";
    EXPECT_EQ(computeResults(r, s).spaceSaved.bytes, 15u);
    for (const FilePtr& g : s.duplicateFileList) {
        EXPECT_EQ(g->keepOption, kKeepCustom);
        EXPECT_EQ(marks(*g), (Marks{0, 1}));
    }
}
