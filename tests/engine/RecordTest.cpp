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

TEST(RecordText, TextsOfAnyLengthSurviveCopiesMovesAndAssignments) {
    for (const std::string& text : std::vector<std::string>{
             "", "jpg", std::string(15, 'a'), std::string(16, 'b'), std::string(254, 'c')}) {
        SCOPED_TRACE(text.size());
        const File file("/x/name." + text);
        EXPECT_EQ(file.ext, text);
        ShortText copy = file.ext;
        ShortText moved = std::move(copy);
        EXPECT_EQ(moved, text);
        EXPECT_EQ(copy, ""); // a moved-from text is empty, not dangling
        ShortText assigned = "other text, long enough for the heap";
        assigned = moved;
        const ShortText& self = assigned;
        assigned = self; // self-assignment keeps the text
        EXPECT_EQ(std::string(assigned), text);
        assigned = assigned.view().substr(0, text.size() / 2); // a view of itself
        EXPECT_EQ(assigned, text.substr(0, text.size() / 2));
    }
}
