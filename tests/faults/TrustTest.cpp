// SPDX-License-Identifier: GPL-3.0-or-later
// Root cleaning users' trees acts only where the folders given lead, whatever
// links the users plant.
#include <unistd.h>

#include "CoreSupport.h"
#include "engine/FolderRegistry.h"

using namespace twinsweep;
using namespace twinsweep::testing;

TEST(Trust, LinksPlantedByAnotherUserNeverLeadAnAct) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root, to plant links as another user";
    }
    TempTree tree;
    // The kept copies, oldest, all root's: only the way to the others differs.
    tree.write("home/bob/notes.txt", "root's notes");
    tree.write("home/bob/more.txt", "root's other notes");
    tree.write("home/alice/data.bin", "root's data");
    tree.write("home/alice/a.txt", "root's twin inside");
    ::sleep(1); // creation times a second apart: the keep option keeps those above
    tree.write("etc/notes.txt", "root's notes");
    tree.write("etc/sub/more.txt", "root's other notes");
    tree.write("srv/data.bin", "root's data");
    tree.write("home/carol/stuff/a.txt", "root's twin inside");
    // bob's link out of the tree, and a link of root's that bob may have
    // moved: it leads out too. Root's link inside the tree is followed.
    ASSERT_EQ(::chown(tree.path("home/bob").c_str(), 2001, 2001), 0);
    ASSERT_EQ(::lchown(tree.symlink("../../etc", "home/bob/etc-view").c_str(), 2001, 2001), 0);
    tree.symlink("../../srv", "home/alice/root-view");
    tree.symlink("../carol/stuff", "home/alice/shortcut");

    const FileList groups = searchJob(tree.path("home"), 0);
    std::map<std::string, bool> foreign;
    for (const FilePtr& g : groups) {
        for (const DuplicateFilePtr& m : g->duplicates) {
            foreign[rel(tree.root(), m->path)] = FolderRegistry::at(m->folder).foreignLink;
        }
    }
    EXPECT_EQ(foreign, (std::map<std::string, bool>{{"home/alice/a.txt", false},
                                                    {"home/alice/data.bin", false},
                                                    {"home/alice/root-view/data.bin", true},
                                                    {"home/alice/shortcut/a.txt", false},
                                                    {"home/bob/etc-view/notes.txt", true},
                                                    {"home/bob/etc-view/sub/more.txt", true},
                                                    {"home/bob/more.txt", false},
                                                    {"home/bob/notes.txt", false}}));

    const Snapshot before = snapshot(tree.root());
    const CliOutcome r =
        runCli({"--any-location", "--keep", "oldest", "--delete", "--yes", tree.path("home")});
    EXPECT_EQ(r.status, 1) << r.out << r.err;
    EXPECT_EQ(listed(r.out, "removed: "),
              std::vector<std::string>{tree.path("home/alice/shortcut/a.txt")})
        << r.out << r.err;
    for (const char* left : {"home/alice/root-view/data.bin", "home/bob/etc-view/notes.txt",
                             "home/bob/etc-view/sub/more.txt"}) {
        EXPECT_TRUE(says(r.err, tree.path(left)));
    }
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {"home/carol/stuff/a.txt"}));
}
