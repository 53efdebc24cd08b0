// Our freedesktop Trash and removal for good, through open folders, with real
// files; interop with trash-cli when it is installed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <regex>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/PlatformRemover.h"
#include "platform/Trash.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

bool exists(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

// The Path= value of a .trashinfo text, with its %XX escapes undone.
std::string trashedPath(const std::string& info) {
    const auto at = info.find("\nPath=");
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

// Acts on path through its open folder, as cleaning does.
RemovalResult act(const std::string& path, bool toTrash) {
    RemovalTarget t;
    const int fd = ::open(path.substr(0, path.rfind('/')).c_str(), O_RDONLY | O_DIRECTORY);
    t.folderFd = fd;
    t.entry = t.name = path.substr(path.rfind('/') + 1);
    t.path = path;
    PlatformRemover remover;
    RemovalResult r = toTrash ? remover.moveToTrash(t) : remover.removeForGood(t);
    ::close(fd);
    return r;
}

std::string run(const std::string& command) {
    std::string out;
    if (FILE* p = ::popen(command.c_str(), "r")) {
        char buf[4096];
        for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) {
            out.append(buf, n);
        }
        ::pclose(p);
    }
    return out;
}

// The home Trash lives in a data home inside the test's own tree, not made yet.
struct TrashTest : ::testing::Test {
    TempTree tree;
    std::string dataHome = tree.path("new/share");
    std::string trash = dataHome + "/Trash";
    void SetUp() override { ::setenv("XDG_DATA_HOME", dataHome.c_str(), 1); }
    void TearDown() override { ::unsetenv("XDG_DATA_HOME"); }
};

} // namespace

TEST_F(TrashTest, EveryNameIsRecordedExactlyAndCanBePutBack) {
    const std::vector<std::string> names = {"My Report.txt",    "100% sure", "new\nline",
                                            "bad\xff\xfe name", "again",     std::string(250, 'n')};
    for (const std::string& n : names) {
        const std::string path = tree.write("docs/" + n, "bytes of " + n);
        const RemovalResult r = act(path, true);
        ASSERT_TRUE(r.ok) << r.error;
        EXPECT_FALSE(exists(path));
        EXPECT_EQ(r.trashed.originalPath, path);
        EXPECT_EQ(slurp(r.trashed.filesPath), "bytes of " + n);
        const std::string info = slurp(r.trashed.infoPath);
        EXPECT_TRUE(std::regex_match(info, std::regex("\\[Trash Info\\]\nPath=[^\n]+\n"
                                                      "DeletionDate=\\d{4}-\\d\\d-\\d\\dT\\d\\d:"
                                                      "\\d\\d:\\d\\d\n")))
            << info;
        EXPECT_EQ(trashedPath(info), path);
    }
    // Made with its parents, private; a second "again" gets a name of its own.
    struct stat st {};
    ASSERT_EQ(::stat(trash.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u);
    const std::string again = tree.write("other/again", "second");
    const RemovalResult second = act(again, true);
    ASSERT_TRUE(second.ok) << second.error;
    EXPECT_NE(second.trashed.filesPath, trash + "/files/again");
    EXPECT_EQ(slurp(trash + "/files/again"), "bytes of again");

    // A folder goes whole, and its size is noted for file managers.
    tree.write("pkg.app/Contents/a", "12345");
    tree.write("pkg.app/b", "678");
    ASSERT_TRUE(act(tree.path("pkg.app"), true).ok);
    EXPECT_TRUE(
        std::regex_match(slurp(trash + "/directorysizes"), std::regex("8 \\d+ pkg\\.app\n")))
        << slurp(trash + "/directorysizes");

    if (::system("command -v trash-list >/dev/null && command -v trash-restore >/dev/null") != 0) {
        GTEST_SKIP() << "trash-cli is not installed: interop not checked";
    }
    const std::string env = "XDG_DATA_HOME='" + dataHome + "' ";
    const std::string listed = run(env + "trash-list");
    for (const char* n : {"My Report.txt", "100% sure", "again"}) {
        EXPECT_NE(listed.find(" " + tree.path(std::string("docs/") + n) + "\n"), std::string::npos)
            << listed;
    }
    EXPECT_NE(listed.find(" " + tree.path("other/again") + "\n"), std::string::npos) << listed;
    run("cd '" + tree.path("docs") + "' && echo 0 | " + env + "trash-restore '" +
        tree.path("docs/100% sure") + "'");
    EXPECT_EQ(slurp(tree.path("docs/100% sure")), "bytes of 100% sure");
}

TEST_F(TrashTest, AnUnusableTrashFailsAtOnceAndLosesNothing) {
    // No home for the Trash in the current folder: a relative data home is
    // ignored, as the base directory rules say.
    ::setenv("XDG_DATA_HOME", "relative", 1);
    const std::string home = tree.mkdir("home");
    const char* oldHome = std::getenv("HOME");
    const std::string savedHome = oldHome ? oldHome : "";
    ::setenv("HOME", home.c_str(), 1);
    const std::string cwd = tree.mkdir("cwd");
    char* cwdNow = ::get_current_dir_name();
    const std::string savedCwd = cwdNow != nullptr ? cwdNow : "/";
    std::free(cwdNow);
    ASSERT_EQ(::chdir(cwd.c_str()), 0);
    const RemovalResult r = act(tree.write("f/a", "a"), true);
    ASSERT_EQ(::chdir(savedCwd.c_str()), 0);
    ::setenv("HOME", savedHome.c_str(), 1);
    ASSERT_TRUE(r.ok) << r.error;
    EXPECT_EQ(r.trashed.filesPath, home + "/.local/share/Trash/files/a");
    EXPECT_FALSE(exists(cwd + "/files"));
    EXPECT_FALSE(exists(cwd + "/info"));
    ::setenv("XDG_DATA_HOME", dataHome.c_str(), 1);

    // A file too large for the disk: the record can't be written. Nothing
    // moves and no empty record stays behind.
    const std::string full = tree.write("f/full", "x");
    ASSERT_TRUE(act(tree.write("f/first", "x"), true).ok); // the Trash exists now
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit tiny{16, 16};
        ::setrlimit(RLIMIT_FSIZE, &tiny);
        const RemovalResult r2 = act(full, true);
        ::_exit(!r2.ok && r2.error.find("File too large") != std::string::npos ? 0 : 1);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_TRUE(exists(full));
    EXPECT_FALSE(exists(trash + "/info/full.trashinfo"));
    EXPECT_FALSE(exists(trash + "/files/full"));

    // A read-only info folder: a clear failure at once, no retries.
    tree.openToEveryone();
    ASSERT_EQ(::chmod(dataHome.c_str(), 0777), 0);
    const std::string mine = tree.path("shared/mine");
    tree.write("shared/mine", "mine");
    ASSERT_EQ(::chmod(tree.path("shared").c_str(), 0777), 0);
    const int outcome = runUnprivileged([&] {
        ::setenv("XDG_DATA_HOME", (dataHome + "/nobody").c_str(), 1);
        const std::string other = mine + "2";
        std::ofstream(other) << "x";
        if (!act(other, true).ok) {
            return 1;
        }
        ::chmod((dataHome + "/nobody/Trash/info").c_str(), 0500);
        const RemovalResult r3 = act(mine, true);
        return r3.ok ? 2 : r3.error.find("Permission denied") == std::string::npos ? 3 : 0;
    });
    if (outcome == -1) {
        GTEST_SKIP() << "cannot run as an ordinary user here";
    }
    EXPECT_EQ(outcome, 0);
    EXPECT_EQ(slurp(mine), "mine");
}

TEST_F(TrashTest, AFolderDeletedInPartSaysWhatRemainsAndFreesOnlyWhatWent) {
    tree.write("pkg.app/a", "12345");
    tree.write("pkg.app/locked/b", "678");
    tree.symlink(tree.path("outside"), "pkg.app/link");
    const std::string outside = tree.write("outside/keep", "keep");
    tree.openToEveryone();
    ASSERT_EQ(::chmod(tree.path("pkg.app").c_str(), 0777), 0);
    ASSERT_EQ(::chmod(tree.path("pkg.app/locked").c_str(), 0555), 0);
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
    EXPECT_FALSE(exists(tree.path("pkg.app/a")));
    EXPECT_TRUE(exists(tree.path("pkg.app/locked/b")));
    EXPECT_EQ(slurp(outside), "keep");
}
