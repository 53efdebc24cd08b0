// SPDX-License-Identifier: GPL-3.0-or-later
// Root cleaning many users' trees: only a twin of the same owner vouches, and
// nothing reached through another user's link is acted on.
#include <sys/stat.h>
#include <unistd.h>

#include "CoreSupport.h"
#include "engine/FolderRegistry.h"

using namespace twinsweep;
using namespace twinsweep::testing;

TEST(Owners, AnotherUsersCopyNeverVouches) {
    TempTree tree;
    // alice's only copy of her thesis, and bob's copy of it.
    own(tree.write("home/alice/thesis.pdf", "alice's thesis, every page"), 2001);
    own(tree.write("home/bob/thesis.pdf", "alice's thesis, every page"), 2002);
    // Two copies of one user's file still go.
    own(tree.write("home/carol/a.jpg", "carol's picture"), 2001);
    own(tree.write("home/carol/b.jpg", "carol's picture"), 2001);
    for (const char* removal : {"--delete", "--trash", "--link"}) {
        SCOPED_TRACE(removal);
        const Snapshot before = snapshot(tree.root());
        const CliOutcome r =
            runCli({"--any-location", "--keep", "oldest", "--yes", removal, tree.path("home")});
        EXPECT_EQ(r.status, 1) << r.err;
        const std::vector<std::string> done =
            listed(r.out, std::string(removal) == "--link" ? "linked: " : "removed: ");
        ASSERT_EQ(done.size(), 1u) << r.out << r.err;
        EXPECT_EQ(done[0].substr(0, tree.path("home/carol/").size()), tree.path("home/carol/"));
        const bool aliceMarked = says(r.err, "alice/thesis.pdf: kept copy belongs");
        const std::string thesis =
            tree.path(aliceMarked ? "home/alice" : "home/bob") + "/thesis.pdf";
        EXPECT_TRUE(
            says(r.err, "Error:  " + thesis + ": kept copy belongs to another user, not removed"));
        const std::string gone = rel(tree.root(), done[0]);
        if (std::string(removal) == "--link") {
            EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
        } else {
            EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {gone}));
            own(tree.write(gone, "carol's picture"), 2001);
        }
    }
}

TEST(Owners, ACopyReachedThroughAnotherUsersLinkIsNeverActedOn) {
    TempTree tree;
    tree.write("home/bob/etc-view/passwd", "root's file, seen through bob's link");
    tree.write("home/bob/passwd", "root's file, seen through bob's link");
    const Snapshot before = snapshot(tree.root());
    const auto settings = SettingsManager::shared();
    for (const bool markTheLinked : {true, false}) {
        SCOPED_TRACE(markTheLinked ? "marked through the link" : "kept through the link");
        const FileList groups = searchJob(tree.path("home"), 0);
        ASSERT_EQ(groups.size(), 1u);
        // The folder as the walk flags one reached through another user's link.
        struct stat view {};
        ASSERT_EQ(::stat(tree.path("home/bob/etc-view").c_str(), &view), 0);
        const std::uint32_t flagged = FolderRegistry::remember(view.st_dev, view.st_ino, true);
        for (const DuplicateFilePtr& m : groups[0]->duplicates) {
            const bool linked = m->path == tree.path("home/bob/etc-view/passwd");
            if (linked) {
                m->folder = flagged;
            }
            m->checkState = linked == markTheLinked ? 1 : 0;
        }
        const CleaningReport report = cleanForGood();
        EXPECT_EQ(report.removed, 0);
        EXPECT_EQ(report.failed, 1);
        EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
    }
    settings->duplicateFileList.clear();
}
