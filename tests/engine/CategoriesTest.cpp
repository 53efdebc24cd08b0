#include <gtest/gtest.h>

#include "engine/FileTools.h"
#include "settings/SettingsManager.h"
#include "support/TempTree.h"

using namespace twinsweep;
using twinsweep::testing::TempTree;

namespace {

FilePtr group(const TempTree& tree, const std::string& name, std::uint64_t size, int members) {
    auto head = std::make_shared<File>(tree.write(name, "x"));
    head->size = size;
    for (int k = 0; k < members; ++k) {
        head->duplicates.push_back(
            std::make_shared<DuplicateFile>(head->path + std::to_string(k), "", 0));
    }
    return head;
}

} // namespace

TEST(Categories, FirstListThatHoldsTheExtensionWins) {
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
}

TEST(Categories, MeasuresCountEveryMemberIncludingTheHeadsOwnEntry) {
    TempTree tree;
    FileTools tools;
    auto& shared = tools.settingsManager->duplicateFileList;
    const FileList saved = shared;
    shared.clear();
    EXPECT_EQ(tools.listedSize(), 0U);
    EXPECT_EQ(tools.categorySize(1), 0U);
    EXPECT_EQ(tools.markedSize({}), 0U);

    const FilePtr pictures = group(tree, "p.jpg", 10, 3);
    const FilePtr music = group(tree, "m.ogg", 1000, 2);
    const FilePtr other = group(tree, "o.xyz", 7, 2);
    shared = {pictures, music, other};
    EXPECT_EQ(tools.categorySize(1), 30U);
    EXPECT_EQ(tools.categorySize(2), 2000U);
    EXPECT_EQ(tools.categorySize(3), 0U);
    EXPECT_EQ(tools.categorySize(6), 14U);
    EXPECT_EQ(tools.listedSize(), 2044U);

    pictures->duplicates[1]->checkState = 1;
    pictures->duplicates[2]->checkState = 1;
    other->duplicates[0]->checkState = 2; // only 1 means marked
    EXPECT_EQ(tools.markedSize({pictures}), 20U);
    EXPECT_EQ(tools.markedSize({pictures, music, other}), 20U);
    shared = saved;
}
