// Runs the real twinsweep-cli on real folders.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

#include <set>

#include "export/ResultsExport.h"
#include "support/Cli.h"
#include "support/Csv.h"
#include "support/TempTree.h"

using twinsweep::testing::TempTree;

namespace {

using Outcome = twinsweep::testing::CliOutcome;
using twinsweep::testing::runCli;

Outcome run(std::vector<std::string> args) {
    return runCli(std::move(args));
}

} // namespace

TEST(Cli, TextReportListsEachGroupHeadFirstWithBlankLinesBetween) {
    TempTree tree;
    tree.write("a/one", "first group");
    tree.write("b/one", "first group");
    tree.write("a/two", "second!");
    tree.write("b/two", "second!");
    tree.write("c/two", "second!");
    tree.write("a/alone", "no copy of this one");
    const Outcome r = run({"--any-location", tree.root()});
    EXPECT_EQ(r.status, 0) << r.err;
    // Larger files first; within a size, the engine's tie order picks the head.
    EXPECT_EQ(r.out, tree.path("b/one") + "\n" + tree.path("a/one") + "\n\n" + tree.path("c/two") +
                         "\n" + tree.path("a/two") + "\n" + tree.path("b/two") + "\n");
}

TEST(Cli, JsonReportCarriesSizesCategoriesDigestsAndOddNames) {
    TempTree tree;
    tree.write("p.JPG", "pixels");
    tree.write("line\nbreak.jpg", "pixels");
    tree.write("bad\xff.jpg", "pixels");
    const Outcome r = run({"--any-location", "--format", "json", tree.root()});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("\"size\":6,\"ext\":\"jpg\",\"category\":\"pictures\",\"md5\":"
                         "\"05mEggjai4CjBq8P1iuwPw==\""),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("line\\nbreak.jpg\",\"date\":\""), std::string::npos);
    EXPECT_NE(r.out.find("bad\\udcff.jpg"), std::string::npos);
    EXPECT_EQ(r.out.rfind("{\"groups\":[", 0), 0U);
    EXPECT_EQ(r.out.substr(r.out.size() - 4), "\n]}\n");
}

TEST(Cli, CsvReportReadsBackToTheExactPaths) {
    TempTree tree;
    std::set<std::string> paths;
    for (const char* name :
         {"a,b.jpg", "q\"uote.jpg", "line\nbreak.jpg", "bad\xff.jpg", "back\\slash \\udcff.jpg"}) {
        paths.insert(tree.write(name, "pixels"));
    }
    tree.write("other/x.txt", "words");
    tree.write("other/y.txt", "words");
    const Outcome r = run({"--any-location", "--format", "csv", tree.root()});
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::vector<std::string>> rows;
    ASSERT_TRUE(twinsweep::testing::parseCsv(r.out, rows)) << r.out;
    ASSERT_EQ(rows.size(), 8u);
    EXPECT_EQ(rows[0], (std::vector<std::string>{"group", "path", "size", "date", "category"}));
    std::set<std::string> back;
    for (std::size_t k = 1; k < rows.size(); ++k) {
        ASSERT_EQ(rows[k].size(), 5u);
        std::string path;
        ASSERT_TRUE(twinsweep::csvPathBytes(rows[k][1], path)) << rows[k][1];
        EXPECT_EQ(rows[k][0], k <= 5 ? "1" : "2");
        EXPECT_EQ(rows[k][2], k <= 5 ? "6" : "5");
        EXPECT_EQ(rows[k][3].size(), 17u); // yy-MM-dd hh:mm:ss
        EXPECT_EQ(rows[k][4], k <= 5 ? "pictures" : "documents");
        if (k <= 5) {
            back.insert(path);
        }
    }
    EXPECT_EQ(back, paths);
}

TEST(Cli, FiltersAndLocationGateNarrowTheSearch) {
    TempTree tree;
    tree.write("Users/bob/a.png", "same");
    tree.write("Users/bob/b.png", "same");
    tree.write("Users/bob/a.txt", "same");
    tree.write("Users/bob/Library/c.png", "same");
    tree.write("Users/bob/big1.png", std::string(3000, 'z'));
    tree.write("Users/bob/big2.png", std::string(3000, 'z'));
    tree.write("elsewhere/d.png", "same");
    const Outcome r =
        run({"--location-root", tree.root(), "--ext", "png", "--max-size", "1K", tree.root()});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, tree.path("Users/bob/b.png") + "\n" + tree.path("Users/bob/a.png") + "\n");

    // Without a gate override only the platform's own roots are searched.
    EXPECT_EQ(run({tree.root()}).out, "");
    EXPECT_EQ(run({"--any-location", "--min-size", "2K", tree.root()}).out.size(),
              tree.path("Users/bob/big1.png\n").size() * 2);
}

TEST(Cli, FolderArgumentsAreResolvedAsTheKernelDoes) {
    TempTree tree;
    tree.write("real/parent/x.txt", "twins");
    tree.write("real/parent/y.txt", "twins");
    tree.mkdir("real/parent/target");
    tree.write("here/p.txt", "other twins");
    tree.write("here/q.txt", "other twins");
    tree.symlink(tree.path("real/parent/target"), "here/srclink");
    // srclink/.. is the target's parent, not the folder holding the link;
    // the report shows it without the link.
    const Outcome r = run({"--any-location", tree.path("here/srclink/..")});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, tree.path("real/parent/y.txt") + "\n" + tree.path("real/parent/x.txt") + "\n");
}

TEST(Cli, EmptyResultIsEmptyOutputAndSuccess) {
    TempTree tree;
    tree.write("only", "one file");
    const Outcome text = run({"--any-location", tree.root()});
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.out, "");
    const Outcome json = run({"--any-location", "--format=json", tree.root()});
    EXPECT_EQ(json.out, "{\"groups\":[]}\n");
}

TEST(Cli, BadUsageIsOneLineAndExitTwo) {
    TempTree tree;
    const std::vector<std::vector<std::string>> cases = {
        {"--bogus", tree.root()},
        {"--format", "xml", tree.root()},
        {"--min-size", "ten", tree.root()},
        {"--min-size", "2K", "--max-size", "1K", tree.root()},
        {tree.path("missing")},
        {tree.write("file", "x")},
        {"--format"},
        {},
    };
    for (const auto& args : cases) {
        const Outcome r = run(args);
        EXPECT_EQ(r.status, 2) << r.err;
        EXPECT_EQ(r.out, "");
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
        EXPECT_EQ(r.err.rfind("twinsweep-cli: ", 0), 0U) << r.err;
    }
    EXPECT_NE(run({tree.path("missing")}).err.find(tree.path("missing")), std::string::npos);
    EXPECT_EQ(run({"--help"}).status, 0);
    EXPECT_EQ(run({"--version"}).out.rfind("twinsweep-cli ", 0), 0U);
}

TEST(Cli, EngineDiagnosticsStayOutOfTheReport) {
    TempTree tree;
    tree.write("One.app/x", "12345");
    tree.write("Two.app/y", "abcde");
    const Outcome r =
        run({"--any-location", "--include-packages", "--format", "json", tree.root()});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out.find("Ooops"), std::string::npos);
    EXPECT_NE(r.err.find("Ooops! Something went wrong: "), std::string::npos);
    EXPECT_NE(r.out.find("One.app"), std::string::npos);
}

namespace {

bool handlesInterrupt(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("SigCgt:", 0) == 0) {
            return (std::stoull(line.substr(7), nullptr, 16) & (1ULL << (SIGINT - 1))) != 0;
        }
    }
    return false;
}

} // namespace

TEST(Cli, InterruptCancelsTheSearchAndWritesNothing) {
    TempTree tree;
    // Equal-size files that agree in their first bytes must be read whole:
    // long enough to interrupt.
    for (int k = 0; k < 8; ++k) {
        const std::string p = tree.sparse("f" + std::to_string(k), 90 << 20);
        const int fd = ::open(p.c_str(), O_WRONLY);
        const char last = static_cast<char>('a' + k % 2);
        ASSERT_EQ(::pwrite(fd, &last, 1, (90 << 20) - 1), 1);
        ::close(fd);
    }
    twinsweep::testing::CliRun search;
    search.args = {"--any-location", "--format", "json", tree.root()};
    const auto running = twinsweep::testing::startCli(search);
    const pid_t pid = running.pid;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!handlesInterrupt(pid) && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    ::kill(pid, SIGINT);
    const Outcome r = twinsweep::testing::finishCli(running);
    EXPECT_EQ(r.status, 130) << r.err;
    EXPECT_EQ(r.out, "");
}
