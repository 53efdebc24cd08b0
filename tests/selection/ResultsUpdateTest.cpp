// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "Groups.h"
#include "selection/Breakdown.h"
#include "selection/CustomMarking.h"
#include "selection/CustomSettingsText.h"
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
    // count copies of name in folders a, b, ..., each standing for size bytes.
    FilePtr group(const std::string& name, std::uint64_t size = 5, int count = 2) {
        std::vector<std::pair<std::string, std::string>> members;
        for (int i = 0; i < count; ++i) {
            members.push_back(
                {tree.write(std::string(1, static_cast<char>('a' + i)) + "/" + name, "12345"),
                 "1" + std::to_string(7 - i) + "-01-01 01:00:00"});
        }
        FilePtr g = makeGroup(members);
        g->size = size;
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
    EXPECT_EQ(out.figures.texts[0], "shown");                            // passed on unchanged
    EXPECT_EQ(out.spaceSaved, (SpaceSaved{0, "0 B", kPlainTextColour})); // music's are hidden
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
    for (const char* answer : {"Cancel", "ok"}) { // the rules window said no
        s.customSettingsOption = answer;
        for (bool all : {false, true}) {
            r.applyForAll = all;
            computeResults(r, s);
            EXPECT_EQ(pic1->keepOption, 0);
            EXPECT_EQ(markedCount(*pic1), 0);
            EXPECT_EQ(pic1->customSettings.str(), defaultRuleText());
        }
    }
    s.customSettingsOption = "OK";
    EXPECT_EQ(computeResults(r, s).spaceSaved.bytes, 15u);
    for (const FilePtr& g : s.duplicateFileList) {
        EXPECT_EQ(g->keepOption, kKeepCustom);
        EXPECT_EQ(marks(*g), (Marks{0, 1}));
    }
}

TEST_F(ResultsUpdate, PercentagesCountEveryMemberWhateverIsMarkedAndRoundTiesToEven) {
    const FileTools tools;
    EXPECT_EQ(categoryPercentages(tools, {}), CategoryFigures{});
    FilePtr photo = group("a.JPG", 10, 3);
    photo->duplicates[0]->checkState = 1;
    CategoryFigures pictures;
    pictures.bars[0] = 100.0;
    pictures.texts[0] = "100%";
    EXPECT_EQ(categoryPercentages(tools, {photo}), pictures);

    // 30 bytes of pictures, 10 of music, 200 of other, 0 of documents:
    // 12.5% (to even: 12%), 4.2% and 83.3%.
    FilePtr empty = group("d.pdf", 0, 4);
    const CategoryFigures f =
        categoryPercentages(tools, {photo, group("b.ogg", 5, 2), group("c.xyz", 100, 2), empty});
    EXPECT_DOUBLE_EQ(f.bars[0], 12.5);
    EXPECT_EQ(f.texts,
              (std::array<std::string, kCategoryCount>{"12%", "4%", "0%", "0%", "0%", "83%"}));
    // Groups of empty files only: nothing to divide.
    EXPECT_EQ(categoryPercentages(tools, {empty}), CategoryFigures{});
    EXPECT_EQ(percentText(13.5), "14%");
    EXPECT_EQ(percentText(99.6), "100%");
}
