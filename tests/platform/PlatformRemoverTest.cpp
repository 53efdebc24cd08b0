#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

#include "platform/PlatformRemover.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

bool exists(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

std::string slurp(const std::string& path) {
    std::ifstream in(path);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

// The Path= value of a .trashinfo text, with any %XX escapes undone.
std::string trashedPath(const std::string& info) {
    const auto at = info.find("\nPath=");
    if (at == std::string::npos) {
        return {};
    }
    const std::string value = info.substr(at + 6, info.find('\n', at + 1) - at - 6);
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '%' && i + 2 < value.size()) {
            out += static_cast<char>(std::stoi(value.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            out += value[i];
        }
    }
    return out;
}

// The Trash lives in a data home inside the test's own tree.
struct PlatformRemoval : ::testing::Test {
    TempTree tree;
    PlatformRemover remover;
    std::string trash;
    std::string savedDataHome;
    bool hadDataHome = false;

    void SetUp() override {
        if (const char* v = std::getenv("XDG_DATA_HOME")) {
            hadDataHome = true;
            savedDataHome = v;
        }
        ::setenv("XDG_DATA_HOME", tree.mkdir("data").c_str(), 1);
        trash = tree.path("data/Trash");
    }
    void TearDown() override {
        if (hadDataHome) {
            ::setenv("XDG_DATA_HOME", savedDataHome.c_str(), 1);
        } else {
            ::unsetenv("XDG_DATA_HOME");
        }
    }
};

} // namespace

TEST_F(PlatformRemoval, TrashKeepsTheFileAndWritesItsTrashInfo) {
    const std::string path = tree.write("docs/My Report.txt", "contents");
    const RemovalResult r = remover.moveToTrash(path);
    ASSERT_TRUE(r.ok) << r.error;
    EXPECT_FALSE(exists(path));
    EXPECT_EQ(slurp(trash + "/files/My Report.txt"), "contents");
    const std::string info = slurp(trash + "/info/My Report.txt.trashinfo");
    EXPECT_EQ(info.rfind("[Trash Info]\n", 0), 0u) << info;
    EXPECT_EQ(trashedPath(info), path) << info;
    EXPECT_NE(info.find("DeletionDate="), std::string::npos);

    // A second file of the same name gets a name of its own in the Trash.
    const std::string again = tree.write("other/My Report.txt", "second");
    ASSERT_TRUE(remover.moveToTrash(again).ok);
    EXPECT_EQ(slurp(trash + "/files/My Report.txt"), "contents");
}

TEST_F(PlatformRemoval, FailuresSayWhyAndLoseNothing) {
    const RemovalResult gone = remover.moveToTrash(tree.path("missing"));
    EXPECT_FALSE(gone.ok);
    EXPECT_EQ(gone.error, tree.path("missing") + ": No such file or directory");
    EXPECT_FALSE(remover.removeForGood(tree.path("missing")).ok);

    // A name that is not UTF-8 can't be told to the Trash faithfully.
    const std::string odd = tree.write("bad\xFF name", "x");
    const RemovalResult r = remover.moveToTrash(odd);
    EXPECT_FALSE(r.ok);
    EXPECT_NE(r.error.find("not valid UTF-8"), std::string::npos);
    EXPECT_TRUE(exists(odd));
    // Permanent removal works on the bytes of the name.
    EXPECT_TRUE(remover.removeForGood(odd).ok);
    EXPECT_FALSE(exists(odd));
}

TEST_F(PlatformRemoval, PermanentRemovalTakesFoldersButNeverFollowsLinks) {
    const std::string outside = tree.write("outside/keep.txt", "keep");
    const std::string pkg = tree.write("Thing.app/Contents/a", "a");
    tree.symlink(tree.path("outside"), "Thing.app/Contents/link");
    ASSERT_TRUE(remover.removeForGood(tree.path("Thing.app")).ok);
    EXPECT_FALSE(exists(tree.path("Thing.app")));
    EXPECT_TRUE(exists(outside));

    // A link as the member itself goes, its target stays.
    const std::string link = tree.symlink(tree.path("outside"), "link.app");
    ASSERT_TRUE(remover.removeForGood(link).ok);
    EXPECT_FALSE(exists(link));
    EXPECT_TRUE(exists(outside));
    (void)pkg;
}
