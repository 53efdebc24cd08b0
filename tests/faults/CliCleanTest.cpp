// Removal through the real command-line tool when the disk changes under it:
// the tool asks before deleting for good, and the test changes files while
// the question waits on a terminal.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "FaultSupport.h"
#include "engine/Digest.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

const char* const kPermanentQuestion =
    "You are about to permanently remove the selected duplicate files. Continue? [y/N]";

// The paths a text report of the tool lists after prefix ("would remove: ").
std::vector<std::string> listed(const std::string& report, const std::string& prefix) {
    std::vector<std::string> out;
    for (const std::string& l : lines(report)) {
        if (l.rfind(prefix, 0) == 0) {
            out.push_back(l.substr(prefix.size()));
        }
    }
    return out;
}

std::string relative(const std::string& path, const TempTree& tree) {
    return path.substr(tree.root().size() + 1);
}

} // namespace

TEST(FaultsCli, FilesChangedWhileTheToolAsksAreNotRemoved) {
    TempTree tree;
    for (const char* name : {"f0", "f1", "f2", "f3", "f4", "f5"}) {
        tree.write(name, "contents of the group");
    }
    tree.write("g0", "second group");
    tree.write("g1", "second group");
    const std::vector<std::string> base = {"--any-location", "--keep", "oldest", tree.root()};

    // A dry run names the copies that the real run will mark.
    CliOutcome dry = runCli(base);
    ASSERT_EQ(dry.status, 0) << dry.err;
    const std::vector<std::string> marked = listed(dry.out, "would remove: ");
    ASSERT_EQ(marked.size(), 6u) << dry.out;
    // Five from the group of six, then the pair's copy.
    const std::string& vanished = marked[0];
    const std::string& rewritten = marked[1];
    const std::string& touched = marked[2];
    const std::string& replaced = marked[3];
    const std::string& same = marked[4];
    const std::string& pairCopy = marked[5];
    const std::string pairKept = tree.path(relative(pairCopy, tree) == "g0" ? "g1" : "g0");
    EXPECT_TRUE(anyLineHas(dry.out, "would free "));
    Snapshot before;

    CliRun run;
    run.args = {"--any-location", "--keep", "oldest", "--delete", tree.root()};
    run.prompt = kPermanentQuestion;
    run.between = [&] {
        ::unlink(vanished.c_str());
        rewriteInPlace(rewritten, "CONTENTS OF THE GROUP");
        struct stat st {};
        ::stat(touched.c_str(), &st);
        timespec times[2] = {st.st_atim, st.st_mtim};
        times[1].tv_sec += 10;
        ::utimensat(AT_FDCWD, touched.c_str(), times, 0);
        const std::string other = tree.write("elsewhere", "contents of the group");
        ::rename(other.c_str(), replaced.c_str());
        ::unlink(pairKept.c_str());
        before = snapshot(tree.root());
    };
    const CliOutcome r = runCli(run);
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_EQ(listed(r.out, "removed: "), (std::vector<std::string>{same}));
    const std::string e = "Error:  ";
    for (const std::string& line :
         {e + vanished + ": No such file or directory",
          e + rewritten + ": changed since the search, not removed",
          e + touched + ": changed since the search, not removed",
          e + replaced + ": replaced by another file since the search, not removed",
          e + pairCopy + ": no kept copy is left to compare with (" + pairKept +
              ": No such file or directory), not removed",
          std::string("twinsweep-cli: 5 copies were not removed")}) {
        EXPECT_TRUE(anyLineHas(r.err, line)) << line << "\nin:\n" << r.err;
    }
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {relative(same, tree)}));
}

TEST(FaultsCli, OddNamesAreRemovedExactlyAndReportedEscaped) {
    TempTree tree;
    const std::string bad = "bad\xff\xfe";
    const std::vector<std::string> names = {"-dash", "with space", "new\nline", bad, "plain"};
    for (const std::string& n : names) {
        tree.write("-folder/" + n, "same bytes");
    }
    const std::string root = tree.path("-folder");
    const Snapshot before = snapshot(tree.root());

    CliRun run;
    run.args = {"--any-location", "--keep", "oldest", "--trash", "--format", "json", "--", root};
    run.env = {"XDG_DATA_HOME=" + tree.mkdir("data")};
    const CliOutcome r = runCli(run);
    std::set<std::string> gone;
    for (const std::string& n : names) {
        const std::string escaped = n == "new\nline" ? "new\\nline"
                                    : n == bad       ? "bad\\udcff\\udcfe"
                                                     : n;
        if (r.out.find("/-folder/" + escaped + "\"") != std::string::npos) {
            gone.insert("-folder/" + n);
        }
    }
    // Every copy but the kept one goes to the Trash, whatever its name.
    EXPECT_EQ(gone.size(), 4u) << r.out;
    EXPECT_EQ(r.status, 0) << r.err;
    std::size_t inTrash = 0;
    for (const auto& entry : std::filesystem::directory_iterator(tree.path("data/Trash/files"))) {
        inTrash += entry.is_regular_file() ? 1 : 0;
    }
    EXPECT_EQ(inTrash, gone.size());
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), gone));
}

TEST(FaultsCli, LargeFilesOfEqualSizeButOtherBytesAreNotDeleted) {
    TempTree tree;
    // Made last, so it is never older than both twins: a twin is kept.
    tree.sparse("x1", kLargeFileThreshold);
    tree.sparse("x2", kLargeFileThreshold);
    tree.sparse("a-diff", kLargeFileThreshold);
    rewriteInPlace(tree.path("a-diff"), "a different first line");
    const Snapshot before = snapshot(tree.root());

    const CliOutcome r =
        runCli({"--any-location", "--keep", "oldest", "--delete", "--yes", tree.root()});
    EXPECT_EQ(r.status, 1) << r.err;
    const std::vector<std::string> removed = listed(r.out, "removed: ");
    ASSERT_EQ(removed.size(), 1u) << r.out;
    EXPECT_NE(removed[0], tree.path("a-diff"));
    EXPECT_TRUE(
        anyLineHas(r.err, "Error:  " + tree.path("a-diff") + ": not byte for byte the same as "))
        << r.err;
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {relative(removed[0], tree)}));
}
