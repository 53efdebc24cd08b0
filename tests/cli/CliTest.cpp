// Runs the real twinsweep-cli on real folders: its reports.
#include <gtest/gtest.h>

#include <set>

#include "export/ResultsExport.h"
#include "support/Cli.h"
#include "support/Csv.h"
#include "support/TempTree.h"

using namespace twinsweep::testing;

TEST(Cli, ReportsCarryEveryFieldAndTheExactPaths) {
    TempTree tree;
    std::set<std::string> paths;
    for (const char* name : {"-p.JPG", "a,b.jpg", "q\"uote.jpg", "line\nbreak.jpg", "bad\xff.jpg",
                             "back\\slash \\udcff.jpg"}) {
        paths.insert(tree.write(name, "pixels"));
    }
    tree.write("other/x.txt", "words");
    tree.write("other/y.txt", "words");
    CliOutcome r = runCli({"--any-location", "--format", "json", tree.root()});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(says(r.out, "\"size\":6,\"ext\":\"jpg\",\"category\":\"pictures\",\"md5\":"
                            "\"05mEggjai4CjBq8P1iuwPw==\""));
    EXPECT_TRUE(says(r.out, "line\\nbreak.jpg\",\"date\":\""));
    EXPECT_EQ(r.out.rfind("{\"groups\":[", 0), 0U);
    EXPECT_EQ(r.out.substr(r.out.size() - 4), "\n]}\n");
    // Text: one path a line, line breaks and backslashes escaped, other bytes as they are.
    const std::string text = runCli({"--any-location", tree.root()}).out;
    for (const char* shown :
         {"line\\nbreak.jpg\n", "bad\xff.jpg\n", "back\\\\slash \\\\udcff.jpg\n"}) {
        EXPECT_TRUE(says(text, tree.path(shown)));
    }

    r = runCli({"--any-location", "--format", "csv", tree.root()});
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<std::vector<std::string>> rows;
    ASSERT_TRUE(parseCsv(r.out, rows)) << r.out;
    ASSERT_EQ(rows.size(), 9u);
    EXPECT_EQ(rows[0], (std::vector<std::string>{"group", "path", "size", "date", "category"}));
    for (std::size_t k = 1; k < rows.size(); ++k) {
        const bool first = k <= 6;
        std::string path;
        ASSERT_TRUE(twinsweep::csvPathBytes(rows[k][1], path)) << rows[k][1];
        EXPECT_EQ(rows[k],
                  (std::vector<std::string>{first ? "1" : "2", rows[k][1], first ? "6" : "5",
                                            rows[k][3], first ? "pictures" : "documents"}));
        EXPECT_EQ(rows[k][3].size(), 17u); // yy-MM-dd hh:mm:ss
        paths.erase(path);
    }
    EXPECT_TRUE(paths.empty()) << "not read back: " << *paths.begin();
}

TEST(Cli, TextReportOfWhatFiltersLocationGateAndFoldersLeave) {
    TempTree tree;
    tree.write("Users/bob/a.png", "same");
    tree.write("Users/bob/b.png", "same");
    tree.write("Users/bob/a.txt", "same");
    tree.write("Users/bob/Library/c.png", "same");
    tree.write("Users/bob/big1.png", std::string(3000, 'z'));
    tree.write("Users/bob/big2.png", std::string(3000, 'z'));
    tree.write("elsewhere/d.png", "same");
    const CliOutcome r = runCli({"--location-root", tree.root(), "--ext", "png", tree.root()});
    EXPECT_EQ(r.status, 0) << r.err;
    // One path a line, each group's head first, larger groups first, a blank line between.
    EXPECT_EQ(r.out, tree.path("Users/bob/big2.png") + "\n" + tree.path("Users/bob/big1.png") +
                         "\n\n" + tree.path("Users/bob/a.png") + "\n" +
                         tree.path("Users/bob/b.png") + "\n");
    // Without a gate override only the platform's own roots are searched.
    const CliOutcome none = runCli({"--format=json", tree.root()});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.out, "{\"groups\":[]}\n");
    EXPECT_EQ(runCli({"--any-location", "--min-size", "2K", tree.root()}).out.size(),
              tree.path("Users/bob/big1.png\n").size() * 2);

    // link/.. is the parent of the link's target, as the kernel resolves it.
    tree.write("here/p.png", "other");
    tree.write("here/q.png", "other");
    tree.symlink(tree.path("Users/bob/Library"), "here/link");
    EXPECT_EQ(
        runCli({"--any-location", "--ext", "png", "--max-size", "1K", tree.path("here/link/..")})
            .out,
        tree.path("Users/bob/b.png") + "\n" + tree.path("Users/bob/Library/c.png") + "\n" +
            tree.path("Users/bob/a.png") + "\n");
}
