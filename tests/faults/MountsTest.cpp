// Removal across odd mounts, through the real command-line tool, in a mount
// namespace of the test's own.
#include <gtest/gtest.h>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "FaultSupport.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

TEST(Mounts, OddMountsNeverCostAFile) {
    if (!privateMounts()) {
        GTEST_SKIP() << "no mount namespace here (needs root and unshare)";
    }
    TempTree tree;
    std::vector<std::string> mounts;
    const auto mount = [&](const std::string& src, const std::string& at, const char* type,
                           unsigned long flags, const std::string& data) {
        mounts.insert(mounts.begin(), at);
        return ::mount(src.c_str(), at.c_str(), type, flags,
                       data.empty() ? nullptr : data.c_str()) == 0;
    };
    const std::vector<std::string> clean = {"--any-location", "--keep", "oldest", "--delete",
                                            "--yes"};
    const auto cleaning = [&](std::vector<std::string> extra) {
        extra.insert(extra.begin(), clean.begin(), clean.end());
        return runCli(extra);
    };

    // One file seen twice: bind-mounted onto a second name (link count 1),
    // and a folder with an overlay view of it. Neither is its own copy.
    tree.write("bind/a/file", "only copy");
    tree.write("bind/b/file", "");
    ASSERT_TRUE(mount(tree.path("bind/a/file"), tree.path("bind/b/file"), nullptr, MS_BIND, ""));
    tree.write("ovl/lower/only", "the only copy under an overlay");
    for (const char* d : {"ovl/upper", "ovl/work", "ovl/view"}) {
        tree.mkdir(d);
    }
    ASSERT_TRUE(mount("overlay", tree.path("ovl/view"), "overlay", 0,
                      "lowerdir=" + tree.path("ovl/lower") + ",upperdir=" + tree.path("ovl/upper") +
                          ",workdir=" + tree.path("ovl/work")));
    for (const auto& roots : std::vector<std::vector<std::string>>{
             {tree.path("bind")}, {tree.path("ovl/lower"), tree.path("ovl/view")}}) {
        const Snapshot before = snapshot(tree.root());
        const CliOutcome r = cleaning(roots);
        EXPECT_EQ(listed(r.out, "removed: "), std::vector<std::string>{}) << r.out << r.err;
        EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
        EXPECT_EQ(runCli({"--any-location", roots[0], roots.back()}).out, "");
    }

    // A package deleted for good never reaches into a file system mounted in
    // it; what stays is reported and not counted as freed.
    for (const std::string& pkg : {"pkgs/p1.app", "pkgs/p2.app"}) {
        tree.write(pkg + "/Contents/main", "package bytes");
        tree.write(pkg + "/mnt/data", "mounted data");
    }
    const CliOutcome dry =
        runCli({"--any-location", "--include-packages", "--keep", "oldest", tree.path("pkgs")});
    const std::vector<std::string> m = listed(dry.out, "would remove: ");
    ASSERT_EQ(m.size(), 1u) << dry.out;
    ASSERT_TRUE(mount("tmpfs", m[0] + "/mnt", "tmpfs", 0, "size=1m"));
    tree.write(rel(tree.root(), m[0]) + "/mnt/data", "mounted data");
    Snapshot before = snapshot(tree.root());
    CliOutcome r = cleaning({"--include-packages", tree.path("pkgs")});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(says(r.err, "Error:  " + m[0] +
                                ": removed only in part, what remains: mnt: another file "
                                "system is mounted there, left alone"));
    EXPECT_TRUE(says(r.out, "freed 13 B (13 bytes) from 0 files"));
    const std::string pkg = rel(tree.root(), m[0]);
    EXPECT_TRUE(
        nothingLost(before, snapshot(tree.root()), {pkg + "/Contents/main", pkg + "/Contents"}));

    // A file on another file system goes to the Trash at the top of its
    // mount, never to one there that belongs to someone else.
    tree.mkdir("full");
    ASSERT_TRUE(mount("tmpfs", tree.path("full"), "tmpfs", 0, "size=64k"));
    tree.write("full/a/x", "twin");
    tree.write("full/b/x", "twin");
    const std::string uid = std::to_string(::geteuid());
    ::chmod(tree.mkdir("full/.Trash").c_str(), 01777);
    for (const std::string& d : {"full/.Trash/" + uid, "full/.Trash-" + uid}) {
        ASSERT_EQ(::chown(tree.mkdir(d).c_str(), 65534, 65534), 0);
    }
    CliRun trash{{"--any-location", "--keep", "oldest", "--trash", tree.path("full")}};
    before = snapshot(tree.root());
    r = runCli(trash);
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(says(r.err, tree.path("full/.Trash-" + uid) + " does not belong to you"));
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
    ::rmdir(tree.path("full/.Trash-" + uid).c_str());
    r = runCli(trash);
    ASSERT_EQ(r.status, 0) << r.err;
    const std::vector<std::string> gone = listed(r.out, "removed: ");
    ASSERT_EQ(gone.size(), 1u);
    EXPECT_EQ(snapshot(tree.path("full/.Trash-" + uid + "/files")).at("x"), fileEntry("twin"));
    EXPECT_TRUE(says(slurp(tree.path("full/.Trash-" + uid + "/info/x.trashinfo")),
                     "\nPath=" + rel(tree.path("full"), gone[0]) + "\n"));

    // The disk fills: the Trash record can't be written and nothing moves.
    tree.write(rel(tree.root(), gone[0]), "twin");
    tree.writeSized("full/filler", 1 << 20);
    before = snapshot(tree.root());
    r = runCli(trash);
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(says(r.err, "(No space left on device); nothing was removed"));
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
    for (const std::string& at : mounts) {
        ::umount2(at.c_str(), MNT_DETACH);
    }
}
