// SPDX-License-Identifier: GPL-3.0-or-later
// Replacing copies with hard links: every path keeps its bytes, and a link
// never gives a copy's path another owner, group, mode, label or a protected
// file, and is made to the very file that was compared.
#include <filesystem>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "CoreSupport.h"
#include "removal/Fd.h"
#include "removal/HardLink.h"

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

TEST(Links, NeverMergeOwnersModesOrProtection) {
    TempTree tree;
    const auto pair = [&](const std::string& dir, gid_t gid, mode_t mode) {
        for (const std::string name : {"/a", "/b"}) {
            const std::string p = tree.write(dir + name, "shared bytes of " + dir);
            EXPECT_EQ(::chown(p.c_str(), 2001, name == "/a" ? 2001 : gid), 0);
            EXPECT_EQ(::chmod(p.c_str(), name == "/a" ? 0644 : mode), 0);
        }
    };
    pair("same", 2001, 0644);  // linked
    pair("mode", 2001, 0600);  // alice's private file never becomes a readable one
    pair("group", 2002, 0644); // nor another group's
    pair("label", 2001, 0644);
    const bool labels =
        ::setxattr(tree.path("label/b").c_str(), "security.twinsweep", "x", 1, 0) == 0;
    // A protected archive, never linked to (editing the copy would rewrite it).
    tree.write("prot/archive/b", "shared bytes of prot");
    tree.write("prot/b", "shared bytes of prot");
    const Snapshot before = snapshot(tree.root());
    const CliOutcome r = runCli({"--any-location", "--keep", "oldest", "--link", "--protect",
                                 tree.path("prot/archive"), tree.root()});
    EXPECT_EQ(r.status, 1) << r.err;
    const std::vector<std::string> linked = listed(r.out, "linked: ");
    ASSERT_EQ(linked.size(), 1u) << r.out << r.err;
    EXPECT_EQ(rel(tree.root(), parentOf(linked[0])), "same");
    EXPECT_TRUE(fs::equivalent(tree.path("same/a"), tree.path("same/b")));
    for (const std::string dir : {"mode", "group", "label", "prot"}) {
        if (dir == "label" && !labels) {
            continue; // no security labels on this file system
        }
        const std::string a = dir == "prot" ? "/archive/b" : "/a";
        EXPECT_FALSE(fs::equivalent(tree.path(dir + a), tree.path(dir + "/b"))) << dir;
        EXPECT_TRUE(says(r.err, "/" + dir + "/")) << dir;
    }
    EXPECT_TRUE(says(r.err, ": owner or mode differ from the kept copy, left alone"));
    EXPECT_TRUE(says(r.err, tree.path("prot/b") + ": kept copy is protected, left alone"));
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
}

// An editor saves the kept file by rename between the last check and the
// link: the link still names the bytes that were compared, never the new ones.
TEST(Links, MadeFromTheComparedFile) {
    for (const bool backup : {true, false}) {
        SCOPED_TRACE(backup ? "the old file kept as a backup" : "the old file replaced");
        TempTree tree;
        tree.write("kept/doc.txt", "the compared bytes");
        tree.write("copy/doc.txt", "the compared bytes");
        const auto settings = SettingsManager::shared();
        const FileList groups = searchJob(tree.root(), 0);
        ASSERT_EQ(groups.size(), 1u);
        for (const DuplicateFilePtr& m : groups[0]->duplicates) {
            m->checkState = m->path == tree.path("copy/doc.txt") ? 1 : 0;
        }
        CleaningRun run;
        run.action = [&](const RemovalTarget& target) {
            if (backup) {
                ::rename(tree.path("kept/doc.txt").c_str(), tree.path("kept/doc.txt~").c_str());
            }
            ::rename(tree.write("kept/.doc.txt.new", "the EDITED bytes!!").c_str(),
                     tree.path("kept/doc.txt").c_str());
            return replaceWithHardLink(target);
        };
        SayYes yes;
        PlatformRemover remover;
        const CleaningReport report = clean(groups, *settings, yes, remover, run);
        EXPECT_EQ(report.removed, backup ? 1 : 0);
        const Snapshot after = snapshot(tree.root());
        EXPECT_EQ(after.at("copy/doc.txt"),
                  fileEntry("the compared bytes", tree.path("copy/doc.txt")));
        EXPECT_EQ(after.at("kept/doc.txt"),
                  fileEntry("the EDITED bytes!!", tree.path("kept/doc.txt")));
        EXPECT_EQ(after.size(), backup ? 5u : 4u); // two folders and their files
        if (backup) {
            EXPECT_TRUE(fs::equivalent(tree.path("copy/doc.txt"), tree.path("kept/doc.txt~")));
        }
        settings->duplicateFileList.clear();
    }
}

TEST(Links, ASetThatHoldsAHardLinkEndsAsOneFileInOnePass) {
    TempTree tree;
    // c is the oldest copy, so it is kept; a and b are one file under two
    // names, which the search lists once; p is a third name of it, protected.
    tree.write("c/f", "one file, four names");
    ::sleep(1);
    tree.write("a/f", "one file, four names");
    fs::create_directories(tree.path("b"));
    fs::create_directories(tree.path("p"));
    ASSERT_EQ(::link(tree.path("a/f").c_str(), tree.path("b/f").c_str()), 0);
    ASSERT_EQ(::link(tree.path("a/f").c_str(), tree.path("p/f").c_str()), 0);
    const Snapshot before = snapshot(tree.root());
    const std::vector<std::string> base{"--any-location", "--keep",       "oldest",   "--link",
                                        "--protect",      tree.path("p"), tree.root()};
    std::vector<std::string> dry = base;
    dry.insert(dry.begin(), "--dry-run");
    const CliOutcome preview = runCli(dry);
    EXPECT_EQ(listed(preview.out, "would link: "),
              (std::vector<std::string>{tree.path("a/f"), tree.path("b/f")}))
        << preview.out;
    EXPECT_EQ(snapshot(tree.root()), before);

    const CliOutcome r = runCli(base);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(listed(r.out, "linked: "),
              (std::vector<std::string>{tree.path("a/f"), tree.path("b/f")}))
        << r.out;
    EXPECT_EQ(snapshot(tree.root()), before);
    struct stat kept {};
    ASSERT_EQ(::stat(tree.path("c/f").c_str(), &kept), 0);
    EXPECT_EQ(kept.st_nlink, 3u);
    EXPECT_EQ(inodeOf(tree.path("a/f")), inodeOf(tree.path("c/f")));
    EXPECT_EQ(inodeOf(tree.path("b/f")), inodeOf(tree.path("c/f")));
    // The protected name keeps the old file, now alone.
    struct stat prot {};
    ASSERT_EQ(::stat(tree.path("p/f").c_str(), &prot), 0);
    EXPECT_EQ(prot.st_nlink, 1u);
    EXPECT_NE(inodeOf(tree.path("p/f")), inodeOf(tree.path("c/f")));

    // A second pass finds nothing left to link.
    const CliOutcome again = runCli(base);
    EXPECT_EQ(listed(again.out, "linked: ").size(), 0u) << again.out;
}
