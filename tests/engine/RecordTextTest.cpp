// The compact text fields of a record behave like the std::string they stand
// for, at both sides of the in-place limit.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "engine/File.h"

using namespace twinsweep;

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
    File a("/x/a");
    EXPECT_TRUE(a.MD5Hash.empty());
    a.MD5Hash = std::string("1B2M2Y8AsgTpgAmY7PhCfg==");
    const DigestText copy = a.MD5Hash;
    a.MD5Hash = std::string();
    EXPECT_TRUE(a.MD5Hash.empty());
    EXPECT_EQ(copy, "1B2M2Y8AsgTpgAmY7PhCfg==");
}
