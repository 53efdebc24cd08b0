// Replacing copies with hard links, and undoing a clean to the Trash.
#include <filesystem>
#include <sys/stat.h>

#include "FaultSupport.h"
#include "removal/TrashRecord.h"

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

TEST(Undo, PutsTheLastCleanBackAndRefusesATakenPath) {
    TempTree tree;
    for (const std::string side : {"files/a/", "files/b/"}) {
        tree.write(side + "x", "twin");
        tree.write(side + "odd %\n\xff", "odd twin");
    }
    const std::vector<std::string> env = {"XDG_DATA_HOME=" + tree.path("data"),
                                          "XDG_STATE_HOME=" + tree.path("state")};
    const Snapshot before = snapshot(tree.path("files"));
    CliRun clean{{"--any-location", "--keep", "oldest", "--trash", tree.path("files")}};
    clean.env = env;
    CliRun undo{{"--undo"}};
    undo.env = env;
    for (const bool blocked : {false, true}) {
        const CliOutcome trashed = runCli(clean);
        ASSERT_EQ(trashed.status, 0) << trashed.err;
        EXPECT_TRUE(says(trashed.err, "to put them back, run: twinsweep-cli --undo"));
        EXPECT_EQ(listed(trashed.out, "removed: ").size(), 2u);
        std::vector<TrashedCopy> record;
        ASSERT_EQ(loadTrashRecord(tree.path("state/twinsweep/last-trash"), record), "");
        ASSERT_EQ(record.size(), 2u);
        if (blocked) {
            // Something new at one original path is never replaced.
            const std::string taken = record[0].where.originalPath;
            tree.write(rel(tree.root(), taken), "new");
            const CliOutcome refused = runCli(undo);
            EXPECT_EQ(refused.status, 1);
            EXPECT_TRUE(says(refused.err, "its path is taken by another file, not restored"));
            EXPECT_EQ(listed(refused.out, "restored: ").size(), 1u);
            EXPECT_EQ(slurp(taken), "new");
            ASSERT_EQ(::unlink(taken.c_str()), 0);
        }
        EXPECT_EQ(runCli(undo).status, 0);
        EXPECT_EQ(snapshot(tree.path("files")), before);
        EXPECT_TRUE(snapshot(tree.path("data/Trash/files")).empty());
        EXPECT_TRUE(snapshot(tree.path("data/Trash/info")).empty());
    }
    const CliOutcome again = runCli(undo);
    EXPECT_EQ(again.status, 1);
    EXPECT_TRUE(says(again.err, "there is no clean to the Trash to undo"));
}
