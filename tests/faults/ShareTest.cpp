// SPDX-License-Identifier: GPL-3.0-or-later
// Sharing storage (copy-on-write) on real Btrfs and XFS images: the copy
// keeps its path, owner, mode and bytes, and ends up on the kept copy's
// extents; what was shared already frees nothing, a copy changed after the
// comparison is left to the kernel's answer, and a file system that can't
// share is refused before anything starts.
#include <cstdlib>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "CoreSupport.h"
#include "removal/Fd.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

// A fresh image made by mkfs, mounted at tree/mnt in this process's own
// mount namespace; null with why set where that is refused.
std::shared_ptr<void> mountImage(const TempTree& tree, const std::string& mkfs, std::string& why) {
    if (!privateMounts()) {
        why = "no private mount namespace (not root?)";
        return nullptr;
    }
    const std::string img = tree.path("fs.img");
    const std::string mnt = tree.mkdir("mnt");
    const std::string make = "truncate -s 320M '" + img + "' && " + mkfs + " '" + img +
                             "' >/dev/null 2>&1 && mount -o loop '" + img + "' '" + mnt +
                             "' 2>/dev/null";
    if (std::system(make.c_str()) != 0) {
        why = "can't make and loop-mount an image with " + mkfs;
        return nullptr;
    }
    return std::shared_ptr<void>(new std::string(mnt), [](void* p) {
        const auto* at = static_cast<std::string*>(p);
        ::umount2(at->c_str(), MNT_DETACH);
        delete at;
    });
}

// The first extent of a file: its physical address and whether it is shared.
std::pair<std::uint64_t, bool> firstExtent(const std::string& path) {
    const Fd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::vector<char> buf(sizeof(fiemap) + sizeof(fiemap_extent));
    auto* map = reinterpret_cast<fiemap*>(buf.data());
    map->fm_length = FIEMAP_MAX_OFFSET;
    map->fm_flags = FIEMAP_FLAG_SYNC;
    map->fm_extent_count = 1;
    if (!fd.ok() || ::ioctl(fd.get(), FS_IOC_FIEMAP, map) != 0 || map->fm_mapped_extents != 1) {
        return {0, false};
    }
    return {map->fm_extents[0].fe_physical,
            (map->fm_extents[0].fe_flags & FIEMAP_EXTENT_SHARED) != 0};
}

void sharesOn(const std::string& mkfs) {
    TempTree outer;
    std::string why;
    const std::shared_ptr<void> mounted = mountImage(outer, mkfs, why);
    if (!mounted) {
        GTEST_SKIP() << why;
    }
    TempTree tree(outer.path("mnt"));
    std::string bytes(1024 * 1024, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>((i * 7919) >> 5);
    }
    // Written twice: two files with their own extents, another mode.
    own(tree.write("x/a.bin", bytes), 2001);
    EXPECT_EQ(::chmod(own(tree.write("x/b.bin", bytes), 2001).c_str(), 0600), 0);
    // Already sharing its storage with its twin.
    own(tree.write("y/a.bin", std::string(256 * 1024, 'y')), 2001);
    const std::string cp =
        "cp --reflink=always '" + tree.path("y/a.bin") + "' '" + tree.path("y/b.bin") + "'";
    ASSERT_EQ(std::system(cp.c_str()), 0);
    own(tree.path("y/b.bin"), 2001);
    const Snapshot before = snapshot(tree.root());

    const CliOutcome dry =
        runCli({"--any-location", "--keep", "oldest", "--share", "--dry-run", tree.root()});
    EXPECT_EQ(dry.status, 0) << dry.err;
    // Copies made within the same minute: either may be the one kept.
    const auto oneOf = [&](const std::vector<std::string>& paths, const std::string& dir) {
        return paths.size() == 1 &&
               (paths[0] == tree.path(dir + "/a.bin") || paths[0] == tree.path(dir + "/b.bin"));
    };
    EXPECT_TRUE(oneOf(listed(dry.out, "would share: "), "x")) << dry.out;
    EXPECT_TRUE(oneOf(listed(dry.out, "already shared: "), "y")) << dry.out;
    EXPECT_TRUE(says(dry.out, "would free 1.0 MB (1048576 bytes) from 1 file"));
    EXPECT_NE(firstExtent(tree.path("x/b.bin")).first, firstExtent(tree.path("x/a.bin")).first);

    const CliOutcome r =
        runCli({"--any-location", "--keep", "oldest", "--share", "--format", "json", tree.root()});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(says(r.out, "{\"dryRun\":false,\"shared\":[\"" + tree.path("x/")));
    EXPECT_TRUE(says(r.out, "\"],\"bytesFreed\":1048576,\"failed\":0,"));
    EXPECT_TRUE(says(r.out, "\"outcome\":\"already shared\","));
    // Every path, owner, mode and byte as it was; the copy on the kept extents.
    EXPECT_EQ(snapshot(tree.root()), before);
    const auto kept = firstExtent(tree.path("x/a.bin"));
    EXPECT_EQ(firstExtent(tree.path("x/b.bin")), std::make_pair(kept.first, true));
    EXPECT_TRUE(kept.second);

    // A copy rewritten after the comparison: the kernel's own answer.
    tree.write("z/a.bin", bytes);
    const std::string copy = tree.write("z/b.bin", bytes);
    const FileList groups = searchJob(tree.path("z"), 0);
    ASSERT_EQ(groups.size(), 1u);
    for (const DuplicateFilePtr& m : groups[0]->duplicates) {
        m->checkState = m->path == copy ? 1 : 0;
    }
    const auto settings = SettingsManager::shared();
    settings->shareStorage = true;
    const std::string other(bytes.size(), 'o');
    PlatformRemover remover;
    CleaningRun run;
    run.action = [&](const RemovalTarget& t) {
        rewriteInPlace(copy, other);
        return remover.shareStorage(t);
    };
    std::string error;
    run.done = [&](const DuplicateFile&, const RemovalResult& res) {
        error = res.error;
        return true;
    };
    SayYes yes;
    const CleaningReport report = clean(groups, *settings, yes, remover, run);
    settings->shareStorage = false;
    EXPECT_EQ(report.failed, 1);
    EXPECT_EQ(error, copy + ": changed since it was compared, left as it was");
    EXPECT_EQ(slurp(copy), other);
    EXPECT_FALSE(firstExtent(copy).second);
}

} // namespace

TEST(Share, OnXfsCopiesShareTheKeptExtentsAndKeepEverythingElse) {
    sharesOn("mkfs.xfs -q -m reflink=1");
}

TEST(Share, OnBtrfsCopiesShareTheKeptExtentsAndKeepEverythingElse) {
    sharesOn("mkfs.btrfs -q");
}

TEST(Share, RefusedBeforeAnythingWhereNoFileSystemCanShare) {
    TempTree tree; // ext4 or tmpfs here; neither shares storage
    tree.write("a/pic", "the same picture");
    tree.write("b/pic", "the same picture");
    const Snapshot before = snapshot(tree.root());
    for (const char* mode : {"--share", "--dry-run"}) {
        const CliOutcome r =
            runCli({"--any-location", "--keep", "oldest", "--share", mode, tree.root()});
        EXPECT_EQ(r.status, 2) << mode;
        EXPECT_EQ(r.out, "") << mode;
        EXPECT_EQ(r.err, "twinsweep-cli: none of the folders searched is on a file system that "
                         "can share storage (Btrfs, or XFS made with reflinks); nothing was "
                         "changed\n")
            << mode;
    }
    const CliOutcome both = runCli({"--keep", "oldest", "--share", "--link", tree.root()});
    EXPECT_EQ(both.status, 2);
    EXPECT_TRUE(says(both.err, "choose one of --trash, --delete, --link and --share"));
    EXPECT_EQ(snapshot(tree.root()), before);
}
