// SPDX-License-Identifier: GPL-3.0-or-later
// A file copied up into an overlay's upper layer is a file of its own: the
// view and the lower file are a real pair of copies.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include "SearchSupport.h"
#include "engine/SameFile.h"
#include "engine/SearchJob.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

TEST(SameFileTest, AFileCopiedUpIntoTheUpperLayerIsListedWithTheLowerOne) {
    if (!privateMounts()) {
        GTEST_SKIP() << "no mount namespace here (needs root and unshare)";
    }
    TempTree tree;
    const std::shared_ptr<void> unmount = mountTmpfs(tree.root());
    ASSERT_TRUE(unmount);
    for (const char* d : {"upper", "work", "view"}) {
        tree.mkdir(d);
    }
    tree.write("lower/copied", "bytes copied up");
    tree.write("lower/shown", "bytes only shown");
    ASSERT_EQ(::mount("overlay", tree.path("view").c_str(), "overlay", 0,
                      ("lowerdir=" + tree.path("lower") + ",upperdir=" + tree.path("upper") +
                       ",workdir=" + tree.path("work"))
                          .c_str()),
              0);
    // A write through the view copies the file up, same bytes.
    const int fd = ::open(tree.path("view/copied").c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    EXPECT_EQ(::pwrite(fd, "b", 1, 0), 1);
    ::close(fd);

    SettingsManager settings;
    settings.listFolderPaths = {tree.path("lower"), tree.path("view")};
    settings.minimumFileSize = 1;
    FileTools tools;
    prepare(tools, 1);
    ASSERT_TRUE(runSearchJob(settings, tools));
    std::vector<std::string> groups;
    for (const FilePtr& g : settings.duplicateFileList) {
        groups.push_back(groupLines({g}, tree.root())[0]);
    }
    // The view of a file never copied up is the lower file itself: no pair.
    EXPECT_EQ(groups, std::vector<std::string>{"lower/copied lower/copied view/copied"});
}
