// SPDX-License-Identifier: GPL-3.0-or-later
// A dry run runs every check of the clean but the act: what it says would go
// is exactly what the clean then removes or links, and what it says would be
// left, the clean leaves for the same reason.
#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "FaultSupport.h"

using namespace twinsweep::testing;

namespace {

// Runs the tool while, at its first read of a file in changing/ (the search
// never reads files grouped by size alone), both files there get a new
// modification time (another at each run).
CliOutcome changingWhileCompared(const TempTree& tree, std::vector<std::string> args) {
    static time_t stamp = 1000000000;
    ++stamp;
    AccessWatch watch(tree.path("s/changing"));
    std::thread helper([&] {
        EXPECT_TRUE(watch.holdFirstAccess([&] {
            const timespec times[2] = {{stamp, 0}, {stamp, 0}};
            for (const char* f : {"s/changing/a.bin", "s/changing/b.bin"}) {
                EXPECT_EQ(::utimensat(AT_FDCWD, tree.path(f).c_str(), times, 0), 0);
            }
        }));
    });
    const CliOutcome r = runCli(args);
    helper.join();
    return r;
}

} // namespace

TEST(DryRun, PredictsExactlyWhatTheCleanDoes) {
    if (!AccessWatch::available()) {
        GTEST_SKIP() << "fanotify needs root";
    }
    constexpr std::uint64_t kBig = 100 << 20; // compared by size alone
    for (const std::string removal : {"--delete", "--link"}) {
        SCOPED_TRACE(removal);
        TempTree tree;
        // The kept copies first: keep oldest keeps these.
        tree.write("s/plain/1.txt", "plain twins");
        tree.sparse("s/big/a.bin", kBig);
        tree.write("s/pkg/p1.app/x", "aaaa");
        own(tree.write("s/owners/a.txt", "shared"), 2001);
        tree.write("prot/p.jpg", "kept safe");
        tree.sparse("s/changing/a.bin", kBig + 1);
        ::sleep(1);
        tree.write("s/plain/2.txt", "plain twins");
        tree.sparse("s/big/b.bin", kBig);
        rewriteInPlace(tree.path("s/big/b.bin"), "!"); // one byte apart, same size
        tree.write("s/pkg/p2.app/x", "bbbb");
        own(tree.write("s/owners/b.txt", "shared"), 2002);
        tree.write("s/free/p.jpg", "kept safe");
        tree.sparse("s/changing/b.bin", kBig + 1);

        const std::vector<std::string> common = {
            "--any-location", "--include-packages", "--keep",          "oldest",      "--yes",
            removal,          "--protect",          tree.path("prot"), tree.path("s")};
        std::vector<std::string> dryArgs = common;
        dryArgs.push_back("--dry-run");
        const Snapshot before = snapshot(tree.root());
        const CliOutcome dry = changingWhileCompared(tree, dryArgs);
        EXPECT_EQ(dry.status, 1) << dry.err;
        const Snapshot afterDry = snapshot(tree.root());
        const CliOutcome real = changingWhileCompared(tree, common);
        EXPECT_EQ(real.status, 1) << real.err;

        const bool linking = removal == "--link";
        const std::vector<std::string> would =
            listed(dry.out, linking ? "would link: " : "would remove: ");
        EXPECT_EQ(would, listed(real.out, linking ? "linked: " : "removed: ")) << real.out;
        const auto sorted = [](std::vector<std::string> v) {
            std::sort(v.begin(), v.end());
            return v;
        };
        std::vector<std::string> done = {tree.path("s/plain/2.txt")};
        if (!linking) {
            done.push_back(tree.path("s/free/p.jpg")); // a protected copy vouches
        }
        EXPECT_EQ(sorted(would), sorted(done)) << dry.out;

        const std::vector<std::string> left = listed(dry.out, "would be left: ");
        EXPECT_EQ(left, listed(real.err, "Error:  ")) << dry.out << real.err;
        std::vector<std::string> reasons = {
            tree.path("s/big/b.bin") + ": not byte for byte the same as " +
                tree.path("s/big/a.bin") + ", not removed",
            tree.path("s/pkg/p2.app/x") + ": not byte for byte the same as " +
                tree.path("s/pkg/p1.app/x") + ", not removed",
            tree.path("s/owners/b.txt") + ": kept copy belongs to another user, not removed",
            tree.path("s/changing/b.bin") + ": changed during the clean, not removed"};
        if (linking) {
            reasons.push_back(tree.path("s/free/p.jpg") + ": kept copy is protected, left alone");
        }
        EXPECT_EQ(sorted(left), sorted(reasons)) << dry.out;

        // The dry run changed nothing (but the times the test set).
        EXPECT_EQ(afterDry, before);
        EXPECT_TRUE(nothingLost(before, snapshot(tree.root()),
                                linking ? std::set<std::string>{}
                                        : std::set<std::string>{"s/plain/2.txt", "s/free/p.jpg"}));
    }
}
