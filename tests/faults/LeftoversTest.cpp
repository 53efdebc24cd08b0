// A clean killed between setting a copy aside and acting on it leaves the
// copy under a hidden name; the next clean in that folder puts it back.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include "FaultSupport.h"
#include "support/TempTree.h"

using namespace twinsweep::testing;

TEST(Leftovers, AnotherCleanPutsBackWhatAKilledCleanLeftAside) {
    TempTree tree;
    const std::string bytes(5000, 'k');
    tree.write("d/a", bytes);
    tree.write("d/b", bytes);
    const pid_t gone = ::fork(); // a pid that no process has any more
    if (gone == 0) {
        ::_exit(0);
    }
    ::waitpid(gone, nullptr, 0);
    const std::string dead = ".twinsweep-aside-" + std::to_string(gone);
    tree.write("d/" + dead + "-0-c", "left aside");
    tree.write("d/t", "taken since");
    tree.write("d/" + dead + "-1-t", "left aside too");
    tree.write("d/.twinsweep-aside-1-0-x", "its clean still runs"); // pid 1 never ends
    const Snapshot before = snapshot(tree.root());

    const CliOutcome r =
        runCli({"--any-location", "--delete", "--yes", "--keep", "oldest", tree.path("d")});
    EXPECT_EQ(r.status, 0) << r.err;
    const std::vector<std::string> removed = listed(r.out, "removed: ");
    ASSERT_EQ(removed.size(), 1u) << r.out;
    const Snapshot after = snapshot(tree.root());
    EXPECT_TRUE(nothingLost(before, after,
                            {removed[0].substr(tree.root().size() + 1), "d/" + dead + "-0-c"}));
    EXPECT_EQ(after.at("d/c"), fileEntry("left aside"));
    EXPECT_TRUE(says(r.err, "Note:   " + tree.path("d/c") + ": put back"));
    EXPECT_TRUE(says(r.err, dead + "-1-t: left aside by a clean that was stopped, not put back"));
}
