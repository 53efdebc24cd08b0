#include <gtest/gtest.h>

#include "Groups.h"
#include "selection/Breakdown.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

// Hidden categories and the space saved are checked through ResultsUpdate.
TEST(Breakdown, PercentagesCountEveryMemberWhateverIsMarkedAndRoundTiesToEven) {
    TempTree tree;
    const FileTools tools;
    // A group of count copies of name, each standing for size bytes.
    const auto group = [&](const std::string& name, std::uint64_t size, int count) {
        std::vector<std::pair<std::string, std::string>> members;
        for (int i = 0; i < count; ++i) {
            members.push_back({tree.write(std::to_string(i) + "/" + name, ""), ""});
        }
        FilePtr g = makeGroup(members);
        g->size = size;
        return g;
    };
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
