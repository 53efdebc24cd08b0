// Trees a real disk may hold: unreadable files and folders, special files,
// link loops, hard links, links out of the roots and names of any bytes. Each
// case runs through the core and through the real command-line tool.
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include "CoreSupport.h"
#include "FaultSupport.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Groups = std::set<std::set<std::string>>;

namespace {

// The paths of the text report, one group per set (the report's lines are
// groups separated by blank lines).
Groups reportedGroups(const std::string& report, const std::string& root) {
    Groups out;
    std::set<std::string> group;
    for (const std::string& l : lines(report)) {
        if (l.empty()) {
            out.insert(group);
            group.clear();
        } else {
            group.insert(l.substr(std::min(l.size(), root.size() + 1)));
        }
    }
    if (!group.empty()) {
        out.insert(group);
    }
    return out;
}

} // namespace

TEST(Faults, UnreadableFilesAndFoldersAreReportedAndLeftAlone) {
    TempTree tree;
    tree.write("a", "twin bytes");
    tree.write("b", "twin bytes");
    tree.write("locked/c", "twin bytes");
    // Its name holds a line feed: the diagnostic line still is one line.
    const std::string unreadable = tree.write("u\nu", "twin bytes");
    tree.openToEveryone();
    ::chmod(tree.path("locked").c_str(), 0);
    ::chmod(unreadable.c_str(), 0);
    const std::string lockedLine =
        "Ooops! Something went wrong: " + tree.path("locked") + ": Permission denied";
    const std::string unreadableLine =
        "Ooops! Something went wrong: " + tree.path("u\\nu") + ": Permission denied";

    // Core: the folder can't be listed, the file can't be read, so it counts
    // as empty and matches nothing; the search goes on.
    StdoutCapture out;
    const int result = runUnprivileged([&] {
        const FileList groups = searchJob(tree.root(), 2);
        return groupSets(groups, tree.root()) == Groups{{"a", "b"}} ? 1 : 2;
    });
    const std::string printed = out.finish();
    if (result == -1) {
        GTEST_SKIP() << "cannot run as an ordinary user here";
    }
    EXPECT_EQ(result, 1);
    EXPECT_TRUE(anyLineHas(printed, lockedLine)) << printed;
    EXPECT_TRUE(anyLineHas(printed, unreadableLine)) << printed;

    // The tool: the same groups on standard output, the reasons on standard
    // error, and a successful run.
    CliRun run;
    run.args = {"--any-location", tree.root()};
    run.unprivileged = true;
    const CliOutcome r = runCli(run);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(reportedGroups(r.out, tree.root()), (Groups{{"a", "b"}}));
    EXPECT_TRUE(anyLineHas(r.err, lockedLine)) << r.err;
    EXPECT_TRUE(anyLineHas(r.err, unreadableLine)) << r.err;

    ::chmod(tree.path("locked").c_str(), 0755);
    ::chmod(unreadable.c_str(), 0644);
    EXPECT_EQ(snapshot(tree.root()).at("locked/c"), fileEntry("twin bytes"));
    EXPECT_EQ(snapshot(tree.root()).at("u\nu"), fileEntry("twin bytes"));
}

TEST(Faults, SpecialFilesLoopsAndLinksAreWalkedOnceWithoutBlocking) {
    TempTree tree;
    const std::string home = "Users/b";
    tree.write(home + "/data/file.txt", "payload");
    tree.write(home + "/data/copy.txt", "payload");
    tree.write("outside/o.txt", "payload");
    tree.symlink(tree.path(home), home + "/data/up");          // back to an ancestor
    tree.symlink(tree.path(home + "/loop2"), home + "/loop1"); // a loop of links
    tree.symlink(tree.path(home + "/loop1"), home + "/loop2");
    tree.symlink(tree.path("outside"), home + "/outside");          // a folder out of the roots
    tree.symlink(tree.path("outside/o.txt"), home + "/o-link.txt"); // a file out of the roots
    ASSERT_EQ(::link(tree.path(home + "/data/file.txt").c_str(), tree.path(home + "/hard").c_str()),
              0);
    ASSERT_EQ(::mkfifo(tree.path(home + "/fifo").c_str(), 0644), 0);
    const int sock = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    const std::string sockPath = tree.path(home + "/sock");
    if (sockPath.size() < sizeof(addr.sun_path)) {
        std::copy(sockPath.begin(), sockPath.end(), addr.sun_path);
        ASSERT_EQ(::bind(sock, reinterpret_cast<sockaddr*>(&addr), sizeof(addr)), 0);
    }
    // A character device like /dev/zero, which never ends when read; only
    // root may make one.
    const bool haveDevice =
        ::mknod(tree.path(home + "/zero").c_str(), S_IFCHR | 0666, makedev(1, 5)) == 0;
    const Snapshot before = snapshot(tree.root());

    // Every real file once: the hard link and the loops add nothing, the
    // folder out of the roots is found under the link's path (the location
    // gate looks at paths), the link to a file is not a file of its own.
    const Groups expected{
        {home + "/data/copy.txt", home + "/data/file.txt", home + "/outside/o.txt"}};
    StdoutCapture out;
    const FileList groups =
        searchJob(tree.path("Users"), 2, LocationGate::macLayoutUnder(tree.root()));
    EXPECT_EQ(out.finish(), "");
    EXPECT_EQ(groupSets(groups, tree.root()), expected);

    const CliOutcome r = runCli({"--location-root", tree.root(), tree.path("Users")});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(reportedGroups(r.out, tree.root()), expected);
    EXPECT_EQ(r.err, "");
    ::close(sock);
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
    if (!haveDevice) {
        std::printf("note: device node case skipped (needs root)\n");
    }
}

TEST(Faults, NamesOfAnyBytesSurviveTheWalkTheReportsAndTheClean) {
    TempTree tree;
    const std::vector<std::string> names = {"-dash", "with space", std::string("new\nline"),
                                            std::string("bad\xff\xfe"), "back\\slash"};
    for (const std::string& n : names) {
        tree.write("-folder/" + n, "same bytes");
    }
    const std::string root = tree.path("-folder");
    const Snapshot before = snapshot(tree.root());

    // Core: the paths are the bytes on disk.
    const FileList groups = searchJob(root, 2);
    EXPECT_EQ(groupSets(groups, root), (Groups{std::set<std::string>(names.begin(), names.end())}));

    // Text report: one escaped path per line.
    CliOutcome r = runCli({"--any-location", "--", root});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(reportedGroups(r.out, root),
              (Groups{{"-dash", "with space", "new\\nline", "bad\xff\xfe", "back\\\\slash"}}));

    // JSON: valid UTF-8 throughout, stray bytes as \udcXX.
    r = runCli({"--any-location", "--format", "json", "--", root});
    EXPECT_EQ(r.status, 0) << r.err;
    for (const char* escaped : {"/-dash\"", "/with space\"", "/new\\nline\"",
                                "/bad\\udcff\\udcfe\"", "/back\\\\slash\""}) {
        EXPECT_NE(r.out.find(escaped), std::string::npos) << escaped << " in " << r.out;
    }
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));

    // Cleaning by the core removes exactly the marked names, whatever bytes.
    for (std::size_t k = 1; k < groups[0]->duplicates.size(); ++k) {
        groups[0]->duplicates[k]->checkState = 1;
    }
    const std::string kept = groups[0]->duplicates[0]->path.substr(root.size() + 1);
    StdoutCapture out;
    const CleaningReport report = cleanForGood();
    EXPECT_EQ(out.finish(), "");
    EXPECT_EQ(report.removed, 4);
    std::set<std::string> gone;
    for (const std::string& n : names) {
        if (n != kept) {
            gone.insert("-folder/" + n);
        }
    }
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), gone));
}
