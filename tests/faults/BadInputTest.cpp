// SPDX-License-Identifier: GPL-3.0-or-later
// Bad input: files that only look like copies (cleaning compares bytes), files
// that change or vanish, and trees a real disk may hold.
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "CoreSupport.h"
#include "engine/Digest.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Groups = std::set<std::set<std::string>>;

namespace {

std::string fromHex(const char* hex) {
    std::string out;
    for (const char* p = hex; p[0] != '\0' && p[1] != '\0'; p += 2) {
        out.push_back(static_cast<char>(std::stoi(std::string(p, 2), nullptr, 16)));
    }
    return out;
}

// The first published MD5 collision: two 128-byte messages six bits apart.
const std::string kFirst =
    fromHex("d131dd02c5e6eec4693d9a0698aff95c2fcab58712467eab4004583eb8fb7f89"
            "55ad340609f4b30283e488832571415a085125e8f7cdc99fd91dbdf280373c5b"
            "d8823e3156348f5bae6dacd436c919c6dd53e2b487da03fd02396306d248cda0"
            "e99f33420f577ee8ce54b67080a80d1ec69821bcb6a8839396f9652b6ff72a70");
} // namespace

TEST(Faults, FilesThatOnlyLookAlikeAreNeverRemoved) {
    std::string second = kFirst; // the other message
    for (const int at : {19, 45, 59, 83, 109, 123}) {
        second[at] ^= '\x80';
    }
    ASSERT_EQ(md5Of(kFirst.data(), kFirst.size()), md5Of(second.data(), second.size()));
    TempTree tree;
    // "c-copy" and "x2" are kept, every other member is marked.
    tree.write("a-collision", second);
    tree.write("b-original", kFirst);
    tree.write("c-copy", kFirst);
    tree.sparse("a-diff", kLargeFileThreshold);
    rewriteInPlace(tree.path("a-diff"), "a different first line");
    tree.sparse("x1", kLargeFileThreshold);
    tree.sparse("x2", kLargeFileThreshold);
    const auto refused = [&](const char* odd, const char* head) {
        return "Error:  " + tree.path(odd) + ": not byte for byte the same as " + tree.path(head) +
               ", not removed";
    };
    for (const unsigned threads : {0U, 2U}) {
        SCOPED_TRACE(threads);
        // Only the plain loop groups by digest alone; large files go by size alone.
        const FileList groups =
            threads == 0 ? plainSearchJob(tree.root()) : searchJob(tree.root(), threads);
        std::vector<std::string> expected = {refused("a-diff", "x2")};
        Groups want = {{"a-diff", "x1", "x2"}, {"b-original", "c-copy"}};
        if (threads == 0) {
            want = {{"a-diff", "x1", "x2"}, {"a-collision", "b-original", "c-copy"}};
            expected.push_back(refused("a-collision", "c-copy"));
        }
        ASSERT_EQ(groupSets(groups, tree.root()), want);
        for (const FilePtr& g : groups) {
            for (const DuplicateFilePtr& m : g->duplicates) {
                m->checkState =
                    m->path == tree.path("c-copy") || m->path == tree.path("x2") ? 0 : 1;
            }
        }
        const Snapshot before = snapshot(tree.root());
        DiagnosticsCapture out;
        const CleaningReport report = cleanForGood();
        EXPECT_EQ(lines(out.finish()), expected);
        EXPECT_EQ(report.removed, 2);
        EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {"b-original", "x1"}));
        tree.write("b-original", kFirst);
        tree.sparse("x1", kLargeFileThreshold);
    }
}

// Progress is posted on the search thread: the observer acts at an exact point.
TEST(Faults, FilesThatVanishOrChangeBeforeTheirContentsAreReadAreNotCopies) {
    for (const unsigned threads : {0U, 2U}) {
        SCOPED_TRACE(threads);
        TempTree tree;
        const std::string twin(64, 't');
        for (const char* name : {"a", "b", "c", "d", "e"}) {
            tree.write(name, twin);
        }
        const Snapshot before = snapshot(tree.root());
        // Once every size is read, d changes (same length) and e goes.
        bool done = false;
        ScopedObserver observer{kUpdateProgress, [&](const std::string&, const UserInfo& info) {
                                    if (!done && info.at(kTotalFiles) == 5) {
                                        done = true;
                                        rewriteInPlace(tree.path("d"), std::string(64, 'd'));
                                        ::unlink(tree.path("e").c_str());
                                    }
                                }};
        DiagnosticsCapture out;
        const FileList groups = searchJob(tree.root(), threads);
        EXPECT_EQ(out.finish(), "Ooops! Something went wrong: " + tree.path("e") +
                                    ": No such file or directory\n");
        EXPECT_TRUE(done);
        EXPECT_EQ(groupSets(groups, tree.root()), (Groups{{"a", "b", "c"}}));
        Snapshot expected = before;
        expected["d"] = fileEntry(std::string(64, 'd'), tree.path("d"));
        EXPECT_TRUE(nothingLost(expected, snapshot(tree.root()), {"e"}));
    }
}

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
    const bool device =
        ::mknod(tree.path(home + "/zero").c_str(), S_IFCHR | 0666, makedev(1, 5)) == 0;
    ASSERT_TRUE(device || ::geteuid() != 0) << "mknod failed as root";
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
    if (!device) {
        GTEST_SKIP() << "not root: no device node could be made, so none was walked past";
    }
}
