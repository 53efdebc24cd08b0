// What a record derives from its name: its category, and its compact text
// fields, which behave like the std::string they stand for at both sides of
// the in-place limit.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "engine/FileTools.h"
#include "support/TempTree.h"

using namespace twinsweep;
using twinsweep::testing::TempTree;

TEST(Categories, FirstListThatHoldsTheExtensionWins) {
    TempTree tree;
    const FileTools tools;
    const std::pair<const char*, int> cases[] = {
        {"a.JPG", 1},  {"a.mng", 1}, {"a.cpt", 1}, {"a.ogg", 2},   {"a.flac", 2},
        {"a.mkv", 3},  {"a.zip", 4}, {"a.pdf", 5}, {"a.pages", 5}, {"a.xyz", 6},
        {"README", 6}, {"a.wmf", 6}, {"a.dot", 5},
    };
    for (const auto& [name, code] : cases) {
        EXPECT_EQ(tools.categoryOf(File(tree.write(name, ""))), code) << name;
    }
}
