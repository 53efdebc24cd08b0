// Replacing copies with hard links, and putting back a clean to the Trash,
// through the real tool and the core, with snapshots of the tree.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "CoreSupport.h"
#include "FaultSupport.h"
#include "selection/KeepOptions.h"
#include "selection/TrashRecord.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

ino_t inodeOf(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 ? st.st_ino : 0;
}

std::vector<std::string> linesAfter(const std::string& text, const std::string& prefix) {
    std::vector<std::string> out;
    for (const std::string& l : nonEmptyLines(text)) {
        if (l.rfind(prefix, 0) == 0) {
            out.push_back(l.substr(prefix.size()));
        }
    }
    return out;
}

} // namespace

TEST(Links, CopiesBecomeLinksToTheKeptCopyWithTheSameBytes) {
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
    EXPECT_EQ(linesAfter(r.out, "linked: ").size(), 2u) << r.out;
    EXPECT_TRUE(anyLineHas(r.err, "a package (folder) can't be replaced by a hard link")) << r.err;
    EXPECT_TRUE(anyLineHas(r.out, "freed 48 B (48 bytes) from 2 files")) << r.out;
    // Every path is still there with its bytes: now one file under three names.
    EXPECT_EQ(snapshot(tree.root()), before);
    const ino_t one = inodeOf(tree.path("a/x.jpg"));
    EXPECT_EQ(inodeOf(tree.path("b/x.jpg")), one);
    EXPECT_EQ(inodeOf(tree.path("c/x.jpg")), one);
    EXPECT_NE(inodeOf(tree.path("d/pkg.app/inside")), inodeOf(tree.path("e/pkg.app/inside")));
}

TEST(Links, ChangedCopiesAndOtherFileSystemsAreLeftAlone) {
    TempTree tree;
    const std::string kept = tree.write("a/x.jpg", "same bytes");
    const std::string changed = tree.write("b/x.jpg", "same bytes");
    const std::string copy = tree.write("c/x.jpg", "same bytes");
    const FileList groups = searchJob(tree.root(), 0);
    ASSERT_EQ(groups.size(), 1u);
    for (const DuplicateFilePtr& m : groups[0]->duplicates) {
        m->checkState = m->path == kept ? 0 : 1;
    }
    rewriteInPlace(changed, "SAME BYTES");
    const Snapshot before = snapshot(tree.root());
    const auto settings = SettingsManager::shared();
    settings->replaceWithHardLinks = true;
    SayYes yes;
    PlatformRemover remover;
    const CleaningReport report = clean(settings->duplicateFileList, *settings, yes, remover);
    settings->replaceWithHardLinks = false;
    EXPECT_EQ(report.removed, 1);
    EXPECT_EQ(report.failed, 1);
    EXPECT_EQ(snapshot(tree.root()), before);
    EXPECT_EQ(inodeOf(copy), inodeOf(kept));
    EXPECT_NE(inodeOf(changed), inodeOf(kept));

    // A kept copy on another file system: nothing to link to.
    struct stat shm {};
    struct stat tmp {};
    if (::stat("/dev/shm", &shm) != 0 || ::stat(tree.root().c_str(), &tmp) != 0 ||
        shm.st_dev == tmp.st_dev || ::access("/dev/shm", W_OK) != 0) {
        GTEST_SKIP() << "no second writable file system at /dev/shm";
    }
    TempTree near;
    const std::string far = "/dev/shm/twinsweep-link-test-" + std::to_string(::getpid());
    ::mkdir(far.c_str(), 0700);
    FILE* f = std::fopen((far + "/k.jpg").c_str(), "w");
    std::fputs("elsewhere", f);
    std::fclose(f);
    near.write("m/c.jpg", "elsewhere");
    const Snapshot nearBefore = snapshot(near.root());
    const Snapshot farBefore = snapshot(far);
    // Whichever copy is kept, the other is on the other file system.
    const CliOutcome r = runCli({"--any-location", "--keep", "oldest", "--link", far, near.root()});
    const Snapshot farAfter = snapshot(far);
    removeTree(far);
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(anyLineHas(r.err, "on another file system than every kept copy, left alone"))
        << r.err << r.out;
    EXPECT_EQ(snapshot(near.root()), nearBefore);
    EXPECT_EQ(farAfter, farBefore);
}

TEST(Undo, PutsTheLastCleanBackAndRefusesATakenPath) {
    TempTree tree;
    tree.write("files/a/x", "twin");
    tree.write("files/b/x", "twin");
    tree.write("files/a/odd %\n\xff", "odd twin");
    tree.write("files/b/odd %\n\xff", "odd twin");
    const std::vector<std::string> env = {"XDG_DATA_HOME=" + tree.path("data"),
                                          "XDG_STATE_HOME=" + tree.path("state")};
    const Snapshot before = snapshot(tree.path("files"));
    CliRun clean;
    clean.args = {"--any-location", "--keep", "oldest", "--trash", tree.path("files")};
    clean.env = env;
    CliRun undo;
    undo.args = {"--undo"};
    undo.env = env;

    for (int round = 0; round < 2; ++round) {
        const CliOutcome trashed = runCli(clean);
        ASSERT_EQ(trashed.status, 0) << trashed.err;
        EXPECT_TRUE(anyLineHas(trashed.err, "to put them back, run: twinsweep-cli --undo"));
        const std::vector<std::string> gone = linesAfter(trashed.out, "removed: ");
        ASSERT_EQ(gone.size(), 2u);
        std::vector<TrashedCopy> record;
        ASSERT_EQ(loadTrashRecord(tree.path("state/twinsweep/last-trash"), record), "");
        ASSERT_EQ(record.size(), 2u);
        std::string blocked;
        if (round == 1) {
            // Something new at one original path is never replaced.
            blocked = record[0].where.originalPath;
            FILE* f = std::fopen(blocked.c_str(), "w");
            std::fputs("new", f);
            std::fclose(f);
            const CliOutcome refused = runCli(undo);
            EXPECT_EQ(refused.status, 1);
            EXPECT_TRUE(anyLineHas(refused.err, "its path is taken by another file, not restored"))
                << refused.err;
            EXPECT_EQ(linesAfter(refused.out, "restored: ").size(), 1u);
            ASSERT_EQ(::unlink(blocked.c_str()), 0);
        }
        const CliOutcome restored = runCli(undo);
        EXPECT_EQ(restored.status, 0) << restored.err;
        EXPECT_EQ(snapshot(tree.path("files")), before);
        EXPECT_TRUE(snapshot(tree.path("data/Trash/files")).empty());
        EXPECT_TRUE(snapshot(tree.path("data/Trash/info")).empty());
    }
    // Nothing left to undo.
    const CliOutcome again = runCli(undo);
    EXPECT_EQ(again.status, 1);
    EXPECT_TRUE(anyLineHas(again.err, "there is no clean to the Trash to undo"));
}
