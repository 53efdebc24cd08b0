// SPDX-License-Identifier: GPL-3.0-or-later
// Our freedesktop Trash and removal for good, through open folders.
#include <fcntl.h>
#include <regex>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "faults/FaultSupport.h"
#include "removal/PlatformRemover.h"
#include "removal/Trash.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

// The Path= value of a .trashinfo text, with its %XX escapes undone.
std::string trashedPath(const std::string& info) {
    std::string out;
    for (std::size_t i = info.find("\nPath=") + 6; i < info.size() && info[i] != '\n'; ++i) {
        const bool escape = info[i] == '%';
        out += escape ? static_cast<char>(std::stoi(info.substr(i + 1, 2), nullptr, 16)) : info[i];
        i += escape ? 2 : 0;
    }
    return out;
}

// Acts on path through its open folder, as cleaning does.
RemovalResult act(const std::string& path, bool toTrash = true) {
    RemovalTarget t;
    t.folderFd = ::open(path.substr(0, path.rfind('/')).c_str(), O_RDONLY | O_DIRECTORY);
    t.entry = t.name = path.substr(path.rfind('/') + 1);
    t.path = path;
    PlatformRemover remover;
    RemovalResult r = toTrash ? remover.moveToTrash(t) : remover.removeForGood(t);
    ::close(t.folderFd);
    return r;
}

// The home Trash lives in a data home inside the test's own tree, not made yet.
struct TrashTest : ::testing::Test {
    TempTree tree;
    std::string dataHome = tree.path("new/share");
    std::string trash = dataHome + "/Trash";
    void SetUp() override {
        ::setenv("XDG_DATA_HOME", dataHome.c_str(), 1);
        ::setenv("XDG_STATE_HOME", tree.path("state").c_str(), 1); // the undo records
    }
    void TearDown() override {
        ::unsetenv("XDG_DATA_HOME");
        ::unsetenv("XDG_STATE_HOME");
    }
};

} // namespace

TEST_F(TrashTest, EveryNameIsRecordedExactlyAndNothingInTheTrashIsOverwritten) {
    const std::vector<std::string> names = {"My Report.txt",    "100% sure", "new\nline",
                                            "bad\xff\xfe name", "again",     std::string(250, 'n')};
    for (const std::string& n : names) {
        const std::string path = tree.write("docs/" + n, "bytes of " + n);
        const RemovalResult r = act(path);
        ASSERT_TRUE(r.ok) << r.error;
        EXPECT_NE(::access(path.c_str(), F_OK), 0);
        EXPECT_EQ(r.trashed.originalPath, path);
        EXPECT_EQ(slurp(r.trashed.filesPath), "bytes of " + n);
        const std::string info = slurp(r.trashed.infoPath);
        EXPECT_TRUE(
            std::regex_match(info, std::regex("\\[Trash Info\\]\nPath=[^\n]+\nDeletionDate="
                                              "\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\n")))
            << info;
        EXPECT_EQ(trashedPath(info), path);
    }
    // A name taken by a record, or by a leftover in files/, gets another.
    tree.write("new/share/Trash/files/leftover", "not ours");
    for (const char* n : {"again", "leftover"}) {
        const RemovalResult r = act(tree.write(std::string("other/") + n, "second"));
        ASSERT_TRUE(r.ok) << r.error;
        EXPECT_NE(r.trashed.filesPath, trash + "/files/" + n);
        EXPECT_EQ(slurp(r.trashed.filesPath), "second");
    }
    EXPECT_EQ(slurp(trash + "/files/again"), "bytes of again");
    EXPECT_EQ(slurp(trash + "/files/leftover"), "not ours");

    // A folder goes whole, and its size is noted for file managers.
    tree.write("pkg.app/Contents/a", "12345");
    tree.write("pkg.app/b", "678");
    ASSERT_TRUE(act(tree.path("pkg.app")).ok);
    EXPECT_TRUE(
        std::regex_match(slurp(trash + "/directorysizes"), std::regex("8 \\d+ pkg\\.app\n")));
}

TEST_F(TrashTest, AnUnusableTrashFailsAtOnceAndLosesNothing) {
    // A relative data home is ignored: the Trash is made, private, in the home.
    const std::string home = tree.mkdir("home");
    const std::string cwd = tree.mkdir("cwd");
    const pid_t pid = ::fork();
    if (pid == 0) { // free to change its environment and folder
        ::setenv("XDG_DATA_HOME", "relative", 1);
        ::setenv("HOME", home.c_str(), 1);
        ::_exit(::chdir(cwd.c_str()) == 0 && act(tree.write("f/a", "a")).ok ? 0 : 1);
    }
    int status = -1;
    ::waitpid(pid, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(slurp(home + "/.local/share/Trash/files/a"), "a");
    for (const char* f : {"/.local", "/.local/share/Trash", "/.local/share/Trash/info"}) {
        struct stat st {};
        ASSERT_EQ(::stat((home + f).c_str(), &st), 0) << f;
        EXPECT_EQ(st.st_mode & 0777, 0700u) << f;
    }
    EXPECT_EQ(::rmdir(cwd.c_str()), 0) << "something was made in the current folder";

    // A Trash that belongs to someone else is never used.
    const std::string file = tree.write("f/b", "b");
    ASSERT_EQ(::chown(tree.mkdir("new/share/Trash").c_str(), 65534, 65534), 0);
    const Snapshot before = snapshot(tree.root());
    const RemovalResult r = act(file);
    EXPECT_FALSE(r.ok);
    EXPECT_NE(r.error.find(trash + " does not belong to you"), std::string::npos) << r.error;
    EXPECT_EQ(snapshot(tree.root()), before);
}

TEST_F(TrashTest, AFolderDeletedInPartSaysWhatRemainsAndFreesOnlyWhatWent) {
    tree.write("pkg.app/a", "12345");
    tree.write("pkg.app/locked/b", "678");
    tree.symlink(tree.path("outside"), "pkg.app/link");
    tree.write("outside/keep", "keep");
    tree.openToEveryone();
    ASSERT_EQ(::chmod(tree.path("pkg.app/locked").c_str(), 0555), 0);
    const Snapshot before = snapshot(tree.root());
    const int outcome = runUnprivileged([&] {
        const RemovalResult r = act(tree.path("pkg.app"), false);
        return r.ok                                                               ? 1
               : !r.partial                                                       ? 2
               : r.bytesFreed != 5                                                ? 3
               : r.error.find("removed only in part") == std::string::npos        ? 4
               : r.error.find("locked/b: Permission denied") == std::string::npos ? 5
                                                                                  : 0;
    });
    if (outcome == -1) {
        GTEST_SKIP() << "cannot run as an ordinary user here";
    }
    EXPECT_EQ(outcome, 0);
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {"pkg.app/a", "pkg.app/link"}));
}
