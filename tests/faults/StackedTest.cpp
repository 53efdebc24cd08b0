// SPDX-License-Identifier: GPL-3.0-or-later
// A view through an overlay is never a second copy of the file under it,
// however the overlay's layers were named.
#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include "FaultSupport.h"

using namespace twinsweep::testing;

TEST(Stacked, AnOverlayViewNeverVouchesForItsOwnLowerFile) {
    if (!privateMounts()) {
        GTEST_SKIP() << "no mount namespace here (needs root and unshare)";
    }
    TempTree tree;
    const std::shared_ptr<void> unmount = mountTmpfs(tree.root());
    ASSERT_TRUE(unmount);
    for (const char* d : {"rel/upper", "rel/work", "rel/view", "abs/upper", "abs/work", "abs/view",
                          "bound", "renamed/upper", "renamed/work", "renamed/view"}) {
        tree.mkdir(d);
    }
    // Real files in an upper layer (as after a copy-up), older than their
    // real twins: one outside every overlay, one in the lower layer under it.
    tree.write("abs/upper/sub/twin", "real twin bytes");
    tree.write("abs/upper/sub/up", "copied up");
    ::sleep(1); // creation times a second apart: the keep option keeps the upper ones
    tree.write("outside/twin", "real twin bytes");
    tree.write("abs/lower/sub/up", "copied up");

    // Layers named relative to the folder the mount was made from.
    tree.write("rel/lower/only", "the only copy, relative layers");
    const int cwd = ::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::chdir(tree.root().c_str()), 0);
    const bool relMounted = mountAt("overlay", tree.path("rel/view"), "overlay",
                                    "lowerdir=rel/lower,upperdir=rel/upper,workdir=rel/work");
    ASSERT_EQ(::fchdir(cwd), 0);
    ::close(cwd);
    ASSERT_TRUE(relMounted);
    // A bind mount of a folder inside an overlay.
    tree.write("abs/lower/sub/only", "the only copy, seen through a bind mount");
    const std::string abs = tree.path("abs/");
    ASSERT_TRUE(
        mountAt("overlay", abs + "view", "overlay",
                "lowerdir=" + abs + "lower,upperdir=" + abs + "upper,workdir=" + abs + "work"));
    ASSERT_TRUE(mountAt(abs + "view/sub", tree.path("bound"), nullptr, ""));
    // A layer named through a link that is renamed afterwards.
    tree.write("renamed/a-real/only", "the only copy, layer link renamed");
    tree.symlink("a-real", "renamed/alias");
    const std::string ren = tree.path("renamed/");
    ASSERT_TRUE(
        mountAt("overlay", ren + "view", "overlay",
                "lowerdir=" + ren + "alias,upperdir=" + ren + "upper,workdir=" + ren + "work"));
    ASSERT_EQ(::rename((ren + "alias").c_str(), (ren + "z-elsewhere").c_str()), 0);

    const Snapshot before = snapshot(tree.root());
    const CliOutcome r = runCli({"--any-location", "--keep", "oldest", "--delete", "--yes",
                                 tree.path("rel"), tree.path("abs/lower"), tree.path("bound"),
                                 tree.path("renamed"), tree.path("outside")});
    EXPECT_EQ(r.status, 1) << r.out << r.err;
    // The views of the upper files are kept and vouch for their real twins;
    // the views of the only copies never vouch for them.
    const std::vector<std::string> removed = listed(r.out, "removed: ");
    EXPECT_EQ(std::set<std::string>(removed.begin(), removed.end()),
              (std::set<std::string>{tree.path("abs/lower/sub/up"), tree.path("outside/twin")}))
        << r.out << r.err;
    for (const char* only : {"rel/lower/only", "abs/lower/sub/only", "renamed/a-real/only"}) {
        EXPECT_TRUE(says(r.err, tree.path(only))) << only;
    }
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {"abs/lower/sub/up", "outside/twin"}));
}
