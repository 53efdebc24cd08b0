#include <gtest/gtest.h>

#include <tuple>

#include "engine/FileTools.h"
#include "settings/SettingsManager.h"
#include "support/TempTree.h"

using namespace twinsweep;
using twinsweep::testing::TempTree;

TEST(Categories, FirstListThatHoldsTheExtensionWinsAndSizesCountEveryMember) {
    TempTree tree;
    FileTools tools;
    const std::pair<const char*, int> cases[] = {
        {"a.JPG", 1},  {"a.mng", 1}, {"a.cpt", 1}, {"a.ogg", 2},   {"a.flac", 2},
        {"a.mkv", 3},  {"a.zip", 4}, {"a.pdf", 5}, {"a.pages", 5}, {"a.xyz", 6},
        {"README", 6}, {"a.wmf", 6}, {"a.dot", 5},
    };
    for (const auto& [name, code] : cases) {
        EXPECT_EQ(tools.categoryOf(File(tree.write(name, ""))), code) << name;
    }

    auto& shared = tools.settingsManager->duplicateFileList;
    const FileList saved = shared;
    shared.clear();
    EXPECT_EQ(tools.listedSize(), 0U);
    // Groups of 10 bytes x 3 pictures, 1000 x 2 music and 7 x 2 other.
    for (const auto& [name, size, members] :
         {std::tuple{"p.jpg", 10, 3}, {"m.ogg", 1000, 2}, {"o.xyz", 7, 2}}) {
        shared.push_back(std::make_shared<File>(tree.write(name, "x")));
        shared.back()->size = size;
        for (int k = 0; k < members; ++k) {
            shared.back()->duplicates.push_back(std::make_shared<DuplicateFile>("", "", 0));
        }
    }
    EXPECT_EQ(tools.categorySize(1), 30U);
    EXPECT_EQ(tools.categorySize(3), 0U);
    EXPECT_EQ(tools.categorySize(6), 14U);
    EXPECT_EQ(tools.listedSize(), 2044U);
    shared = saved;
}
