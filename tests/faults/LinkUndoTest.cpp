// Replacing copies with hard links (undo: UndoTest.cpp).
#include <filesystem>
#include <sys/stat.h>

#include "FaultSupport.h"

using namespace twinsweep;
using namespace twinsweep::testing;
namespace fs = std::filesystem;

TEST(Links, CopiesBecomeLinksToTheKeptCopyAndNothingElseIsTouched) {
    TempTree tree;
    for (const char* p : {"a/x.jpg", "b/x.jpg", "c/x.jpg"}) {
        tree.write(p, "one picture, three names");
    }
    tree.write("d/pkg.app/inside", "a package");
    tree.write("e/pkg.app/inside", "a package");
    const Snapshot before = snapshot(tree.root());
    const CliOutcome r =
        runCli({"--any-location", "--include-packages", "--keep", "oldest", "--link", tree.root()});
    EXPECT_EQ(r.status, 1) << r.err; // the package is left alone
    EXPECT_EQ(listed(r.out, "linked: ").size(), 2u) << r.out;
    EXPECT_TRUE(says(r.err, "a package (folder) can't be replaced by a hard link"));
    EXPECT_TRUE(says(r.out, "freed 48 B (48 bytes) from 2 files"));
    // Every path is still there with its bytes: now one file under three names.
    EXPECT_EQ(snapshot(tree.root()), before);
    EXPECT_TRUE(fs::equivalent(tree.path("b/x.jpg"), tree.path("a/x.jpg")));
    EXPECT_TRUE(fs::equivalent(tree.path("c/x.jpg"), tree.path("a/x.jpg")));
    EXPECT_FALSE(fs::equivalent(tree.path("d/pkg.app/inside"), tree.path("e/pkg.app/inside")));

    // A kept copy on another file system: nothing to link to.
    struct stat shm {};
    struct stat here {};
    if (::stat("/dev/shm", &shm) != 0 || ::stat(tree.root().c_str(), &here) != 0 ||
        ::access("/dev/shm", W_OK) != 0 || shm.st_dev == here.st_dev) {
        GTEST_SKIP() << "no second writable file system at /dev/shm";
    }
    TempTree far("/dev/shm");
    far.write("k.jpg", "elsewhere");
    tree.write("m/c.jpg", "elsewhere");
    const Snapshot nearBefore = snapshot(tree.path("m"));
    const Snapshot farBefore = snapshot(far.root());
    // Whichever copy is kept, the other is on the other file system.
    const CliOutcome other =
        runCli({"--any-location", "--keep", "oldest", "--link", far.root(), tree.path("m")});
    EXPECT_EQ(other.status, 1);
    EXPECT_TRUE(says(other.err, "on another file system than every kept copy, left alone"));
    EXPECT_EQ(snapshot(tree.path("m")), nearBefore);
    EXPECT_EQ(snapshot(far.root()), farBefore);
}
