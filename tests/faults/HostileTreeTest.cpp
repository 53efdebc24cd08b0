// Trees a real disk may hold, through the real command-line tool.
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "FaultSupport.h"

using namespace twinsweep;
using namespace twinsweep::testing;

TEST(Faults, AHostileTreeIsWalkedOnceWithoutBlockingAndWhatCantBeReadIsReported) {
    TempTree tree;
    const std::string home = "Users/b";
    tree.write(home + "/data/file.txt", "payload");
    tree.write(home + "/data/copy.txt", "payload");
    tree.write(home + "/locked/c.txt", "payload");
    // Its name holds a line feed: the diagnostic still is one line.
    tree.write(home + "/u\nu", "payload");
    tree.write("outside/o.txt", "payload");
    tree.symlink(tree.path(home), home + "/data/up");          // back to an ancestor
    tree.symlink(tree.path(home + "/loop2"), home + "/loop1"); // a loop of links
    tree.symlink(tree.path(home + "/loop1"), home + "/loop2");
    tree.symlink(tree.path("outside"), home + "/outside");          // a folder out of the roots
    tree.symlink(tree.path("outside/o.txt"), home + "/o-link.txt"); // a file out of the roots
    ASSERT_EQ(::link(tree.path(home + "/data/file.txt").c_str(), tree.path(home + "/hard").c_str()),
              0);
    ASSERT_EQ(::mkfifo(tree.path(home + "/fifo").c_str(), 0644), 0);
    // Like /dev/zero, which never ends when read; only root may make one.
    ::mknod(tree.path(home + "/zero").c_str(), S_IFCHR | 0666, makedev(1, 5));
    tree.openToEveryone();
    ::chmod(tree.path(home + "/locked").c_str(), 0);
    ::chmod(tree.path(home + "/u\nu").c_str(), 0);
    const Snapshot before = snapshot(tree.root());

    // Every real file once: hard link and loops add nothing, the folder out of the roots
    // is found under the link's path (the gate looks at paths), a link to a file is no
    // file, and the unreadable file counts as empty.
    CliRun run{{"--location-root", tree.root(), tree.path("Users")}};
    run.unprivileged = true;
    const CliOutcome r = runCli(run);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(relSet(tree.root(), lines(r.out)),
              (std::set<std::string>{home + "/data/copy.txt", home + "/data/file.txt",
                                     home + "/outside/o.txt"})); // one group: no blank line
    const std::string ooops = "Ooops! Something went wrong: " + tree.path(home);
    EXPECT_EQ(lines(r.err), (std::vector<std::string>{ooops + "/locked: Permission denied",
                                                      ooops + "/u\\nu: Permission denied"}));
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
}
