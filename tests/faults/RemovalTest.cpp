// Removal as a hostile user or a hostile system would try it, through the real
// command-line tool; every case compares the tree before and after.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "FaultSupport.h"
#include "engine/Digest.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

const char* const kPermanentQuestion = "permanently remove the selected duplicate files. Continue?";

std::vector<std::string> listed(const std::string& report, const std::string& prefix) {
    std::vector<std::string> out;
    for (const std::string& l : lines(report)) {
        if (l.rfind(prefix, 0) == 0) {
            out.push_back(l.substr(prefix.size()));
        }
    }
    return out;
}

// The copies a run with these options marks, from a dry run.
std::vector<std::string> marked(std::vector<std::string> args) {
    args.insert(args.begin(), "--any-location");
    const CliOutcome dry = runCli(args);
    EXPECT_EQ(dry.status, 0) << dry.err;
    return listed(dry.out, "would remove: ");
}

std::string rel(const TempTree& tree, const std::string& path) {
    return path.substr(tree.root().size() + 1);
}

std::set<std::string> relSet(const TempTree& tree, const std::vector<std::string>& paths) {
    std::set<std::string> out;
    for (const std::string& p : paths) {
        out.insert(rel(tree, p));
    }
    return out;
}

// Large twins: grouped by size alone (nothing reads them while searching), and
// comparing them takes long enough to stop the tool in the middle.
void largeTwin(const TempTree& tree, const std::string& relPath) {
    tree.sparse(relPath, kLargeFileThreshold);
}

std::string parentOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

// Runs the tool on a terminal, deleting for good. Once the question is
// answered (the search is over), the first file read in folder stops the
// tool; whenStopped runs, and the tool goes on.
CliOutcome stoppedWhileComparing(CliRun run, const std::string& folder,
                                 const std::function<void(pid_t)>& whenStopped) {
    run.prompt = kPermanentQuestion;
    pid_t pid = -1;
    run.whileRunning = [&](pid_t p) { pid = p; };
    std::unique_ptr<AccessWatch> watch;
    std::thread helper;
    const std::function<void()> first = run.between;
    run.between = [&] {
        if (first) {
            first();
        }
        watch = std::make_unique<AccessWatch>(folder);
        helper = std::thread(
            [&] { EXPECT_TRUE(watch->holdFirstAccess(pid, [&] { whenStopped(pid); })); });
    };
    const CliOutcome r = runCli(run);
    if (helper.joinable()) {
        helper.join();
    }
    return r;
}

std::string keptOf(const std::string& markedPath, const std::string& a, const std::string& b) {
    return markedPath == a ? b : a;
}

} // namespace

TEST(Removal, TheTrashIsMadeInTheHomeNeverInTheCurrentFolder) {
    TempTree tree;
    tree.write("files/a/x", "twin");
    tree.write("files/b/x", "twin");
    const std::string cwd = tree.mkdir("shared");
    ::chmod(cwd.c_str(), 01777);
    const std::string home = tree.mkdir("home"); // no .local/share yet
    const Snapshot before = snapshot(tree.root());
    CliRun run;
    run.args = {"--any-location", "--keep", "oldest", "--trash", tree.path("files")};
    run.env = {"XDG_DATA_HOME", "HOME=" + home};
    run.cwd = cwd;
    const CliOutcome r = runCli(run);
    ASSERT_EQ(r.status, 0) << r.err;
    const std::vector<std::string> gone = listed(r.out, "removed: ");
    ASSERT_EQ(gone.size(), 1u);
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), relSet(tree, gone)));
    EXPECT_EQ(snapshot(cwd).size(), 0u);
    struct stat st {};
    for (const char* f : {"/.local", "/.local/share/Trash", "/.local/share/Trash/info"}) {
        ASSERT_EQ(::stat((home + f).c_str(), &st), 0) << f;
        EXPECT_EQ(st.st_mode & 0777, 0700u) << f;
    }
    EXPECT_EQ(snapshot(home + "/.local/share/Trash/files").at("x"), fileEntry("twin"));
}

TEST(Removal, AnUnwritableTrashFailsAtOnceAndLosesNothing) {
    TempTree tree;
    tree.write("files/a/x", "twin");
    tree.write("files/b/x", "twin");
    tree.mkdir("data/Trash/files");
    tree.mkdir("data/Trash/info");
    tree.openToEveryone();
    for (const char* d :
         {"data", "data/Trash", "data/Trash/files", "data/Trash/info", "files/a", "files/b"}) {
        ASSERT_EQ(::chown(tree.path(d).c_str(), 65534, 65534), 0);
    }
    ::chmod(tree.path("data/Trash/info").c_str(), 0500);
    const Snapshot before = snapshot(tree.root());
    CliRun run;
    run.args = {"--any-location", "--keep", "oldest", "--trash", tree.path("files")};
    run.env = {"XDG_DATA_HOME=" + tree.path("data")};
    run.unprivileged = true;
    const CliOutcome r = runCli(run);
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_TRUE(anyLineHas(r.err, "can't write its record in " + tree.path("data/Trash/info") +
                                      " (Permission denied); nothing was removed"))
        << r.err;
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
}

TEST(Removal, ACopyIsRemovedOnlyThroughTheFolderTheSearchWalked) {
    TempTree tree;
    largeTwin(tree, "tree/keep/x");
    largeTwin(tree, "tree/user/sub/x");
    tree.write("outside/x", "not a copy: root must never touch it");
    const std::vector<std::string> args = {"--keep", "oldest", tree.path("tree")};
    const std::vector<std::string> m = marked(args);
    ASSERT_EQ(m.size(), 1u);
    // The owner of tree/user swaps the copy's folder for a link to a folder
    // holding a file of the same name: once before the clean starts, once
    // while the copy is being compared.
    const std::string folder = m[0].substr(0, m[0].rfind('/'));
    const auto swap = [&] {
        ::rename(folder.c_str(), (folder + ".old").c_str());
        ::symlink(tree.path("outside").c_str(), folder.c_str());
    };
    const std::string kept = keptOf(m[0], tree.path("tree/keep/x"), tree.path("tree/user/sub/x"));
    for (const bool midway : {false, true}) {
        SCOPED_TRACE(midway ? "while compared" : "before the clean");
        CliRun run;
        run.args = {"--any-location", "--keep", "oldest", "--delete", tree.path("tree")};
        Snapshot before;
        run.between = [&] {
            if (!midway) {
                swap();
            }
            before = snapshot(tree.root());
        };
        run.prompt = kPermanentQuestion;
        const CliOutcome r =
            !midway ? runCli(run) : stoppedWhileComparing(run, parentOf(kept), [&](pid_t) {
                swap();
                before = snapshot(tree.root());
            });
        const Snapshot after = snapshot(tree.root());
        EXPECT_EQ(after.at("outside/x"), fileEntry("not a copy: root must never touch it"));
        if (!midway) {
            EXPECT_EQ(r.status, 1);
            EXPECT_TRUE(anyLineHas(r.err, m[0] + ": its folder was replaced since the search"))
                << r.err;
            EXPECT_TRUE(nothingLost(before, after));
        } else {
            // The checked copy went, from where it now is; nothing else did.
            EXPECT_EQ(r.status, 0) << r.err << r.out;
            EXPECT_TRUE(nothingLost(before, after, {rel(tree, folder) + ".old/x"}));
        }
        ::unlink(folder.c_str());
        ::rename((folder + ".old").c_str(), folder.c_str());
        largeTwin(tree, rel(tree, m[0]));
    }
}

TEST(Removal, TwoCleaningsAtOnceNeverTakeTheLastCopy) {
    // Keep Oldest and Keep Newest must pick different copies: member dates
    // count whole seconds, so the twins are made a second apart.
    const auto nextSecond = [] { std::this_thread::sleep_for(std::chrono::milliseconds(1100)); };
    TempTree tree;
    largeTwin(tree, "a/x");
    nextSecond();
    largeTwin(tree, "b/x");
    const std::string a = tree.path("a/x");
    const std::string b = tree.path("b/x");
    const std::string runtime = tree.mkdir("runtime");
    const Snapshot before = snapshot(tree.root());
    const auto cleaning = [&](const char* keep, const std::string& lockDir) {
        CliRun run;
        run.args = {"--any-location", "--keep", keep, "--delete", tree.root()};
        run.env = {"XDG_RUNTIME_DIR=" + lockDir};
        return run;
    };
    const auto oneLeft = [&](const std::string& what) {
        const Snapshot after = snapshot(tree.root());
        EXPECT_EQ(after.count("a/x") + after.count("b/x"), 1u) << what;
        EXPECT_TRUE(nothingLost(before, after, {after.count("a/x") ? "b/x" : "a/x"})) << what;
        nextSecond();
        largeTwin(tree, after.count("a/x") ? "b/x" : "a/x");
    };

    // One user: the second run waits for the first, then finds its kept
    // copy gone and leaves its own.
    CliRun first = cleaning("oldest", runtime);
    first.prompt = kPermanentQuestion;
    CliOutcome second;
    std::thread waiter;
    first.between = [&] {
        CliRun other = cleaning("newest", runtime);
        other.args.push_back("--yes");
        const RunningCli running = startCli(other);
        EXPECT_TRUE(waitForText(running.errPath, "another cleaning is running"));
        waiter = std::thread([&, running] { second = finishCli(running); });
    };
    const CliOutcome r1 = runCli(first);
    if (waiter.joinable()) {
        waiter.join();
    }
    EXPECT_EQ(r1.status, 0) << r1.err;
    EXPECT_EQ(second.status, 1) << second.err;
    EXPECT_TRUE(anyLineHas(second.err, "waiting for it to end")) << second.err;
    oneLeft("one user");

    // Two users (two locks): one run is stopped while it compares, the other
    // runs to the end meanwhile; the stopped one then finds its kept copy
    // gone and puts its own back. The same when the kept copy is simply
    // deleted while its twin is compared.
    for (const bool byHand : {false, true}) {
        const CliRun slow = cleaning("oldest", tree.mkdir(byHand ? "r1" : "r2"));
        const std::vector<std::string> m = marked({"--keep", "oldest", tree.root()});
        ASSERT_EQ(m.size(), 1u);
        const std::string kept = keptOf(m[0], a, b);
        CliOutcome fast;
        const CliOutcome r = stoppedWhileComparing(slow, parentOf(kept), [&](pid_t) {
            if (byHand) {
                ::unlink(kept.c_str());
            } else {
                CliRun other = cleaning("newest", tree.mkdir("r3"));
                other.args.push_back("--yes");
                fast = runCli(other);
            }
        });
        EXPECT_EQ(r.status, 1) << r.err;
        EXPECT_TRUE(anyLineHas(r.err, "Error:  " + m[0] +
                                          ": no kept copy is left to compare with (" + kept +
                                          ": changed or went away during the clean)"))
            << r.err;
        if (!byHand) {
            EXPECT_EQ(listed(fast.out, "removed: "), std::vector<std::string>{kept}) << fast.err;
        }
        oneLeft(byHand ? "kept copy deleted" : "two users");
    }
}

TEST(Removal, SignalsStopBetweenRemovalsAndEveryRemovalIsReported) {
    TempTree tree;
    // Large enough that comparing one pair outlasts stopping the tool.
    constexpr std::uint64_t kSize = 32 << 20;
    for (int g = 0; g < 2; ++g) {
        tree.sparse("a/" + std::to_string(g), kSize + g);
        tree.sparse("b/" + std::to_string(g), kSize + g);
    }
    for (const int sig : {SIGINT, SIGTERM, SIGHUP}) {
        const Snapshot before = snapshot(tree.root());
        CliRun run;
        run.args = {"--any-location", "--keep", "oldest", "--delete", tree.root()};
        const CliOutcome r =
            stoppedWhileComparing(run, tree.path("a"), [&](pid_t pid) { ::kill(pid, sig); });
        EXPECT_EQ(r.status, 128 + sig) << r.err;
        const std::vector<std::string> gone = listed(r.out, "removed: ");
        EXPECT_LE(gone.size(), 1u) << "went on after the signal";
        EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), relSet(tree, gone)));
        for (const std::string& p : gone) {
            tree.sparse(rel(tree, p), kSize + std::stoi(p.substr(p.rfind('/') + 1)));
        }
    }

    // Nobody reads standard output any more: nothing is removed that can't
    // be reported.
    const Snapshot before = snapshot(tree.root());
    CliRun run;
    run.args = {"--any-location", "--keep", "oldest", "--delete", "--yes", tree.root()};
    run.closedOutput = true;
    const CliOutcome r = runCli(run);
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(anyLineHas(r.err, "standard output is closed")) << r.err;
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
}

TEST(Removal, OddMountsNeverCostAFile) {
    if (!privateMounts()) {
        GTEST_SKIP() << "no mount namespace here (needs root and unshare)";
    }
    TempTree tree;
    const auto mountOrSkip = [](const std::string& src, const std::string& at, const char* type,
                                unsigned long flags, const std::string& data) {
        return ::mount(src.c_str(), at.c_str(), type, flags,
                       data.empty() ? nullptr : data.c_str()) == 0;
    };
    std::vector<std::string> mounts;
    const auto mounted = [&](const std::string& at) { mounts.insert(mounts.begin(), at); };

    // One file seen twice: bind-mounted onto a second name (link count 1),
    // and a folder with an overlay view of it. Neither is its own copy.
    tree.write("bind/a/file", "only copy");
    tree.write("bind/b/file", "");
    ASSERT_TRUE(
        mountOrSkip(tree.path("bind/a/file"), tree.path("bind/b/file"), nullptr, MS_BIND, ""));
    mounted(tree.path("bind/b/file"));
    tree.write("ovl/lower/only", "the only copy under an overlay");
    for (const char* d : {"ovl/upper", "ovl/work", "ovl/view"}) {
        tree.mkdir(d);
    }
    ASSERT_TRUE(mountOrSkip("overlay", tree.path("ovl/view"), "overlay", 0,
                            "lowerdir=" + tree.path("ovl/lower") + ",upperdir=" +
                                tree.path("ovl/upper") + ",workdir=" + tree.path("ovl/work")));
    mounted(tree.path("ovl/view"));
    for (const auto& roots : std::vector<std::vector<std::string>>{
             {tree.path("bind")}, {tree.path("ovl/lower"), tree.path("ovl/view")}}) {
        const Snapshot before = snapshot(tree.root());
        std::vector<std::string> args = {"--any-location", "--keep", "newest", "--delete", "--yes"};
        args.insert(args.end(), roots.begin(), roots.end());
        const CliOutcome r = runCli(args);
        EXPECT_EQ(listed(r.out, "removed: "), std::vector<std::string>{}) << r.out << r.err;
        EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
        const CliOutcome report = runCli({"--any-location", roots[0], roots.back()});
        EXPECT_EQ(report.out, "") << "listed as its own copy";
    }

    // A package deleted for good never reaches into a file system mounted in
    // it; what stays is reported and not counted as freed.
    for (const char* pkg : {"p1.app", "p2.app"}) {
        tree.write(std::string("pkgs/") + pkg + "/Contents/main", "package bytes");
        tree.write(std::string("pkgs/") + pkg + "/mnt/data", "mounted data");
    }
    const std::vector<std::string> m =
        marked({"--include-packages", "--keep", "oldest", tree.path("pkgs")});
    ASSERT_EQ(m.size(), 1u);
    ASSERT_TRUE(mountOrSkip("tmpfs", m[0] + "/mnt", "tmpfs", 0, "size=1m"));
    mounted(m[0] + "/mnt");
    tree.write(rel(tree, m[0]) + "/mnt/data", "mounted data");
    Snapshot before = snapshot(tree.root());
    CliOutcome r = runCli({"--any-location", "--include-packages", "--keep", "oldest", "--delete",
                           "--yes", tree.path("pkgs")});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(anyLineHas(r.err, "Error:  " + m[0] +
                                      ": removed only in part, what remains: mnt: another file "
                                      "system is mounted there, left alone"))
        << r.err;
    EXPECT_TRUE(anyLineHas(r.out, "freed 13 B (13 bytes) from 0 files")) << r.out;
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()),
                            {rel(tree, m[0]) + "/Contents/main", rel(tree, m[0]) + "/Contents"}));

    // A full disk: the Trash record can't be written; nothing moves. The
    // Trash of a file on another file system is at the top of that mount.
    tree.mkdir("full");
    ASSERT_TRUE(mountOrSkip("tmpfs", tree.path("full"), "tmpfs", 0, "size=64k"));
    mounted(tree.path("full"));
    tree.write("full/a/x", "twin");
    tree.write("full/b/x", "twin");
    CliRun trash;
    trash.args = {"--any-location", "--keep", "oldest", "--trash", tree.path("full")};
    r = runCli(trash);
    ASSERT_EQ(r.status, 0) << r.err;
    const std::vector<std::string> gone = listed(r.out, "removed: ");
    ASSERT_EQ(gone.size(), 1u);
    EXPECT_EQ(snapshot(tree.path("full/.Trash-0/files")).at("x"), fileEntry("twin"));
    std::stringstream info;
    info << std::ifstream(tree.path("full/.Trash-0/info/x.trashinfo")).rdbuf();
    EXPECT_NE(info.str().find("\nPath=" + gone[0].substr(tree.path("full/").size()) + "\n"),
              std::string::npos)
        << info.str(); // relative to the top of its mount
    tree.write(rel(tree, gone[0]), "twin");
    tree.writeSized("full/filler", 1 << 20); // fails part way: the disk is full
    before = snapshot(tree.root());
    r = runCli(trash);
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(anyLineHas(r.err, "(No space left on device); nothing was removed")) << r.err;
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));

    for (const std::string& at : mounts) {
        ::umount2(at.c_str(), MNT_DETACH);
    }
}
