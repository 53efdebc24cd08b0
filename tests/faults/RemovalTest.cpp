// SPDX-License-Identifier: GPL-3.0-or-later
// Removal as a hostile user or system would try it, through the real tool.
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "FaultSupport.h"
#include "engine/Digest.h"
#include "removal/Fd.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

// The copies keep oldest marks under root, from a dry run.
std::vector<std::string> marked(const std::string& root) {
    const CliOutcome dry = runCli({"--any-location", "--keep", "oldest", root});
    EXPECT_EQ(dry.status, 0) << dry.err;
    return listed(dry.out, "would remove: ");
}

// Deletes for good, answering on a terminal; whenHeld runs while the first read in folder is held.
CliOutcome heldWhileComparing(CliRun run, const std::string& folder,
                              const std::function<void(pid_t)>& whenHeld) {
    run.prompt = kDeleteQuestion;
    std::unique_ptr<AccessWatch> watch;
    std::thread helper;
    run.between = [&](pid_t pid) {
        watch = std::make_unique<AccessWatch>(folder);
        helper =
            std::thread([&, pid] { EXPECT_TRUE(watch->holdFirstAccess([&] { whenHeld(pid); })); });
    };
    const CliOutcome r = runCli(run);
    if (helper.joinable()) {
        helper.join();
    }
    return r;
}

} // namespace

TEST(Removal, FilesChangedWhileTheToolAsksAreNotRemoved) {
    TempTree tree;
    for (const char* name : {"f0", "f1", "f2", "f3", "f4", "f5"}) {
        tree.write(name, "contents of the group");
    }
    tree.write("g0", "second group");
    tree.write("g1", "second group");
    // Five from the group of six, then the pair's copy.
    const std::vector<std::string> m = marked(tree.root());
    ASSERT_EQ(m.size(), 6u);
    const std::string pairKept = tree.path(rel(tree.root(), m[5]) == "g0" ? "g1" : "g0");
    Snapshot before;
    CliRun run{{"--any-location", "--keep", "oldest", "--delete", tree.root()}, kDeleteQuestion};
    run.between = [&](pid_t) {
        ::unlink(m[0].c_str());
        rewriteInPlace(m[1], "CONTENTS OF THE GROUP");
        const timespec epoch[2] = {{0, UTIME_OMIT}, {0, 0}};
        ::utimensat(AT_FDCWD, m[2].c_str(), epoch, 0);
        ::rename(tree.write("elsewhere", "contents of the group").c_str(), m[3].c_str());
        ::unlink(pairKept.c_str());
        before = snapshot(tree.root());
    };
    const CliOutcome r = runCli(run);
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_EQ(listed(r.out, "removed: "), (std::vector<std::string>{m[4]}));
    for (const std::string& line :
         {m[0] + ": No such file or directory", m[1] + ": changed since the search, not removed",
          m[2] + ": changed since the search, not removed",
          m[3] + ": replaced by another file since the search, not removed",
          m[5] + ": no kept copy is left to compare with (" + pairKept +
              ": No such file or directory), not removed",
          std::string("twinsweep-cli: 5 copies were not removed")}) {
        EXPECT_TRUE(says(r.err, line));
    }
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {rel(tree.root(), m[4])}));
}

// A clean killed between setting a copy aside and acting on it leaves the
// copy under a hidden name; the next clean in that folder puts it back.
TEST(Removal, AnotherCleanPutsBackWhatAKilledCleanLeftAside) {
    TempTree tree;
    const std::string bytes(5000, 'k');
    tree.write("d/a", bytes);
    tree.write("d/b", bytes);
    // Above any pid_max: no process has this pid.
    const std::string dead = ".twinsweep-aside-536870912";
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
    EXPECT_TRUE(nothingLost(before, after, {rel(tree.root(), removed[0]), "d/" + dead + "-0-c"}));
    EXPECT_EQ(after.at("d/c"), fileEntry("left aside", tree.path("d/c")));
    EXPECT_TRUE(says(r.err, "Note:   " + tree.path("d/c") + ": put back"));
    EXPECT_TRUE(says(r.err, dead + "-1-t: left aside by a clean that was stopped, not put back"));
}

TEST(Removal, ACopyIsRemovedOnlyThroughTheFolderTheSearchWalked) {
    TempTree tree;
    // Large twins are grouped by size alone and compared only while cleaning.
    tree.sparse("tree/keep/x", kLargeFileThreshold);
    tree.sparse("tree/user/sub/x", kLargeFileThreshold);
    tree.write("outside/x", "not a copy: root must never touch it"); // in every before
    const std::vector<std::string> m = marked(tree.path("tree"));
    ASSERT_EQ(m.size(), 1u);
    const std::string kept =
        m[0] == tree.path("tree/keep/x") ? tree.path("tree/user/sub/x") : tree.path("tree/keep/x");
    // The folder's owner swaps it for a link to a folder holding the same name.
    const std::string folder = parentOf(m[0]);
    for (const bool midway : {false, true}) {
        if (midway && !AccessWatch::available()) {
            GTEST_SKIP() << "no fanotify here (needs root)";
        }
        SCOPED_TRACE(midway ? "while compared" : "before the clean");
        Snapshot before;
        const auto swap = [&](pid_t) {
            EXPECT_EQ(::rename(folder.c_str(), (folder + ".old").c_str()), 0);
            EXPECT_EQ(::symlink(tree.path("outside").c_str(), folder.c_str()), 0);
            before = snapshot(tree.root());
        };
        CliRun run{{"--any-location", "--keep", "oldest", "--delete", tree.path("tree")}};
        if (!midway) {
            run.between = swap;
            run.prompt = kDeleteQuestion;
        }
        const CliOutcome r = !midway ? runCli(run) : heldWhileComparing(run, parentOf(kept), swap);
        const Snapshot after = snapshot(tree.root());
        if (!midway) {
            EXPECT_EQ(r.status, 1);
            EXPECT_TRUE(says(r.err, m[0] + ": its folder was replaced since the search"));
            EXPECT_TRUE(nothingLost(before, after));
        } else {
            // The checked copy went, from where it now is; nothing else did.
            EXPECT_EQ(r.status, 0) << r.err << r.out;
            EXPECT_TRUE(nothingLost(before, after, {rel(tree.root(), folder) + ".old/x"}));
        }
        ::unlink(folder.c_str());
        ::rename((folder + ".old").c_str(), folder.c_str());
        tree.sparse(rel(tree.root(), m[0]), kLargeFileThreshold);
    }
}

TEST(Removal, TwoCleaningsAtOnceNeverTakeTheLastCopy) {
    // Dates count whole seconds: a second apart, oldest and newest differ.
    const auto nextSecond = [] { std::this_thread::sleep_for(std::chrono::milliseconds(1100)); };
    TempTree tree;
    tree.sparse("a/x", kLargeFileThreshold);
    nextSecond();
    tree.sparse("b/x", kLargeFileThreshold);
    const Snapshot before = snapshot(tree.root());
    const auto cleaning = [&](const char* keep, const std::string& lockDir, bool yes) {
        CliRun run{{"--any-location", "--keep", keep, "--delete", tree.root()},
                   yes ? "" : kDeleteQuestion};
        run.env = {"XDG_RUNTIME_DIR=" + lockDir};
        if (yes) {
            run.args.push_back("--yes");
        }
        return run;
    };
    const auto oneLeft = [&](const std::string& what) {
        const Snapshot after = snapshot(tree.root());
        const std::string gone = after.count("a/x") ? "b/x" : "a/x";
        EXPECT_EQ(after.count("a/x") + after.count("b/x"), 1u) << what;
        EXPECT_TRUE(nothingLost(before, after, {gone})) << what;
        nextSecond();
        tree.sparse(gone, kLargeFileThreshold);
    };

    // One user: the second run waits for the lock, then finds its kept copy gone.
    CliRun first = cleaning("oldest", tree.mkdir("lock"), false);
    CliOutcome second;
    std::thread waiter;
    first.between = [&](pid_t) {
        const RunningCli running = startCli(cleaning("newest", tree.path("lock"), true));
        EXPECT_TRUE(waitForText(running.errPath, "another cleaning is running"));
        waiter = std::thread([&, running] { second = finishCli(running); });
    };
    const CliOutcome r1 = runCli(first);
    if (waiter.joinable()) {
        waiter.join();
    }
    EXPECT_EQ(listed(r1.out, "removed: "), std::vector<std::string>{tree.path("b/x")}) << r1.err;
    EXPECT_EQ(second.status, 1) << second.err;
    EXPECT_TRUE(says(second.err, "waiting for it to end"));
    oneLeft("one user");

    if (!AccessWatch::available()) {
        GTEST_SKIP() << "no fanotify here (needs root)";
    }
    // Two users (two locks): while one run is held comparing, the other runs to the end.
    const CliRun slow = cleaning("oldest", tree.mkdir("r1"), false);
    const std::vector<std::string> m = marked(tree.root());
    ASSERT_EQ(m.size(), 1u);
    const std::string kept = tree.path(m[0] == tree.path("a/x") ? "b/x" : "a/x");
    CliOutcome fast;
    const CliOutcome r = heldWhileComparing(slow, parentOf(kept), [&](pid_t) {
        fast = runCli(cleaning("newest", tree.mkdir("r2"), true));
    });
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_TRUE(says(r.err, "Error:  " + m[0] + ": no kept copy is left to compare with (" + kept +
                                ": changed or went away during the clean)"));
    EXPECT_EQ(listed(fast.out, "removed: "), std::vector<std::string>{kept}) << fast.err;
    oneLeft("two users");
}

TEST(Removal, SignalsCancelTheSearchAndStopBetweenRemovalsThatAreAllReported) {
    TempTree tree;
    // Large enough that comparing one pair outlasts the signal.
    constexpr std::uint64_t kSize = 32 << 20;
    const auto twins = [&] { // two groups: a/0 b/0, a/1 b/1
        for (const char* name : {"a/0", "b/0", "a/1", "b/1"}) {
            if (::access(tree.path(name).c_str(), F_OK) != 0) {
                tree.sparse(name, kSize + (name[2] - '0'));
            }
        }
    };
    twins();
    // Nobody reads standard output: nothing is removed that can't be reported.
    const Snapshot untouched = snapshot(tree.root());
    CliRun run{{"--any-location", "--keep", "oldest", "--delete", "--yes", tree.root()}};
    run.closedOutput = true;
    const CliOutcome closed = runCli(run);
    EXPECT_EQ(closed.status, 1);
    EXPECT_TRUE(says(closed.err, "standard output is closed"));
    EXPECT_TRUE(nothingLost(untouched, snapshot(tree.root())));

    if (!AccessWatch::available()) {
        GTEST_SKIP() << "no fanotify here (needs root)";
    }
    for (const int sig : {SIGINT, SIGTERM, SIGHUP}) {
        const Snapshot before = snapshot(tree.root());
        const CliOutcome r =
            heldWhileComparing({{"--any-location", "--keep", "oldest", "--delete", tree.root()}},
                               tree.path("a"), [&](pid_t pid) { ::kill(pid, sig); });
        EXPECT_EQ(r.status, 128 + sig) << r.err;
        const std::vector<std::string> gone = listed(r.out, "removed: ");
        EXPECT_LE(gone.size(), 1u) << "went on after the signal";
        EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), relSet(tree.root(), gone)));
        twins();
    }

    // During the search: nothing is reported.
    AccessWatch watch(tree.path("a"));
    const RunningCli search = startCli({{"--any-location", "--format", "json", tree.root()}});
    EXPECT_TRUE(watch.holdFirstAccess([&] { ::kill(search.pid, SIGINT); }));
    const CliOutcome cancelled = finishCli(search);
    EXPECT_EQ(cancelled.status, 128 + SIGINT) << cancelled.err;
    EXPECT_EQ(cancelled.out, "");
}

TEST(Removal, OddMountsNeverCostAFile) {
    if (!privateMounts()) {
        GTEST_SKIP() << "no mount namespace here (needs root and unshare)";
    }
    TempTree tree;
    // Everything is mounted under a tmpfs at the root, detached with it at the end.
    const std::shared_ptr<void> unmount = mountTmpfs(tree.root());
    ASSERT_TRUE(unmount);
    const auto cleaning = [](std::vector<std::string> args) {
        args.insert(args.begin(), {"--any-location", "--keep", "oldest", "--delete", "--yes"});
        return runCli(args);
    };

    // One file seen twice, bind-mounted (link count 1) or through an overlay.
    tree.write("bind/a/file", "only copy");
    tree.write("bind/b/file", "");
    ASSERT_TRUE(mountAt(tree.path("bind/a/file"), tree.path("bind/b/file"), nullptr, ""));
    tree.write("ovl/lower/only", "the only copy under an overlay");
    for (const char* d : {"ovl/upper", "ovl/work", "ovl/view"}) {
        tree.mkdir(d);
    }
    ASSERT_TRUE(mountAt("overlay", tree.path("ovl/view"), "overlay",
                        "lowerdir=" + tree.path("ovl/lower") + ",upperdir=" +
                            tree.path("ovl/upper") + ",workdir=" + tree.path("ovl/work")));
    for (const auto& roots : std::vector<std::vector<std::string>>{
             {tree.path("bind")}, {tree.path("ovl/lower"), tree.path("ovl/view")}}) {
        const Snapshot before = snapshot(tree.root());
        const CliOutcome r = cleaning(roots);
        EXPECT_EQ(listed(r.out, "removed: "), std::vector<std::string>{}) << r.out << r.err;
        EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
        EXPECT_EQ(runCli({"--any-location", roots[0], roots.back()}).out, "");
    }

    // A package deleted for good never reaches into a mount inside it.
    for (const std::string pkg : {"pkgs/p1.app/", "pkgs/p2.app/"}) {
        tree.write(pkg + "Contents/main", "package bytes");
        tree.write(pkg + "mnt/data", "mounted data");
    }
    const CliOutcome dry =
        runCli({"--any-location", "--include-packages", "--keep", "oldest", tree.path("pkgs")});
    const std::vector<std::string> m = listed(dry.out, "would remove: ");
    ASSERT_EQ(m.size(), 1u) << dry.out;
    ASSERT_TRUE(mountAt("tmpfs", m[0] + "/mnt", "tmpfs", "size=1m"));
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

    // Another file system's Trash is at its top, never one owned by someone else.
    tree.mkdir("full");
    ASSERT_TRUE(mountAt("tmpfs", tree.path("full"), "tmpfs", "size=64k"));
    twins(tree, "full", "twin");
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
    EXPECT_EQ(snapshot(tree.path("full/.Trash-" + uid + "/files")).at("x"),
              fileEntry("twin", tree.path("full/.Trash-" + uid + "/files/x")));
    EXPECT_TRUE(says(slurp(tree.path("full/.Trash-" + uid + "/info/x.trashinfo")),
                     "\nPath=" + rel(tree.path("full"), gone[0]) + "\n"));

    // Read-only records, then a full disk: nothing moves, no empty record stays.
    tree.write(rel(tree.root(), gone[0]), "twin");
    const std::string info = tree.path("full/.Trash-" + uid + "/info");
    ASSERT_TRUE(mountAt(info, info, nullptr, ""));
    ASSERT_EQ(::mount(nullptr, info.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr),
              0);
    for (const std::string why : {"Read-only file system", "No space left on device"}) {
        before = snapshot(tree.root());
        r = runCli(trash);
        EXPECT_EQ(r.status, 1);
        EXPECT_TRUE(says(r.err, info + " (" + why + "); nothing was removed"));
        EXPECT_EQ(snapshot(tree.root()), before);
        ::umount2(info.c_str(), 0); // writable again, on a full disk
        tree.writeSized("full/filler", 1 << 20);
    }
}
