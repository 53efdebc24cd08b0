#include <gtest/gtest.h>

#include "Groups.h"
#include "selection/Breakdown.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

struct Breakdown : ::testing::Test {
    TempTree tree;
    const FileTools tools;

    // A group of count copies of name, each standing for size bytes.
    FilePtr group(const std::string& name, std::uint64_t size, int count = 2) {
        std::vector<std::pair<std::string, std::string>> members;
        for (int i = 0; i < count; ++i) {
            members.push_back({tree.write(std::to_string(i) + "/" + name, ""), ""});
        }
        FilePtr g = makeGroup(members);
        g->size = size;
        return g;
    }
};

} // namespace

TEST_F(Breakdown, PercentagesCountEveryMemberWhateverIsMarkedAndRoundTiesToEven) {
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
        categoryPercentages(tools, {photo, group("b.ogg", 5), group("c.xyz", 100), empty});
    EXPECT_DOUBLE_EQ(f.bars[0], 12.5);
    EXPECT_EQ(f.texts,
              (std::array<std::string, kCategoryCount>{"12%", "4%", "0%", "0%", "0%", "83%"}));
    // Groups of empty files only: nothing to divide.
    EXPECT_EQ(categoryPercentages(tools, {empty}), CategoryFigures{});
    EXPECT_EQ(percentText(13.5), "14%");
    EXPECT_EQ(percentText(99.6), "100%");
}

TEST_F(Breakdown, ListedGroupsLeaveOutHiddenCategoriesInOrder) {
    FilePtr p1 = group("a.png", 1), m = group("b.mp3", 1), p2 = group("c.jpg", 1),
            none = group("README", 1);
    const FileList all{p1, m, p2, none};
    EXPECT_EQ(removeCategory(tools, 1, all), (FileList{m, none}));
    EXPECT_EQ(removeCategory(tools, 6, all), (FileList{p1, m, p2}));

    CategoryFlags shown{true, true, true, true, true, true};
    EXPECT_EQ(listedGroups(tools, all, shown), all);
    shown[1] = false; // music
    EXPECT_EQ(listedGroups(tools, all, shown), (FileList{p1, p2, none}));
    shown.fill(false);
    EXPECT_TRUE(listedGroups(tools, all, shown).empty());
}

TEST_F(Breakdown, SpaceSavedCountsMarkedMembersOfListedGroups) {
    FilePtr g = group("a.txt", 10, 3);
    EXPECT_EQ(spaceSaved(tools, {g}), (SpaceSaved{0, "0 B", kPlainTextColour}));
    g->duplicates[1]->checkState = 1;
    g->duplicates[2]->checkState = 1;
    g->duplicates[0]->checkState = 2; // only 1 means marked
    EXPECT_EQ(spaceSaved(tools, {g}), (SpaceSaved{20, "20 B", kSavingTextColour}));
    g->size = 1536;
    EXPECT_EQ(spaceSaved(tools, {g}).text, "3.0 KB");
    EXPECT_EQ(spaceSaved(tools, {}), (SpaceSaved{0, "0 B", kPlainTextColour}));
}
