// SPDX-License-Identifier: GPL-3.0-or-later
// The reports of the real twinsweep-cli on real folders, and its text and option helpers.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <unistd.h>

#include "cli/Options.h"
#include "cli/Output.h"
#include "cli/Progress.h"
#include "export/ResultsExport.h"
#include "support/Cli.h"
#include "support/Csv.h"
#include "support/FileDates.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::cli;
using namespace twinsweep::testing;

TEST(Cli, ReportsCarryEveryFieldAndTheExactPaths) {
    TempTree tree;
    std::set<std::string> paths;
    for (const char* name : {"-p.JPG", "a,b.jpg", "q\"uote.jpg", "line\nbreak.jpg", "bad\xff.jpg",
                             "back\\slash \\udcff.jpg"}) {
        paths.insert(tree.write(name, "pixels"));
    }
    paths.insert(tree.write("other/x.txt", "words"));
    paths.insert(tree.write("other/y.txt", "words"));
    CliOutcome r = runCli({"--any-location", "--format", "json", tree.root()});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(says(r.out, "\"size\":6,\"ext\":\"jpg\",\"category\":\"pictures\",\"md5\":"
                            "\"05mEggjai4CjBq8P1iuwPw==\""));
    EXPECT_TRUE(says(r.out, "line\\nbreak.jpg\",\"date\":\""));
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
    EXPECT_EQ(rows[0],
              (std::vector<std::string>{"group", "path", "size", "date", "category", "size_only"}));
    for (std::size_t k = 1; k < rows.size(); ++k) {
        const bool first = k <= 6;
        std::string path;
        ASSERT_TRUE(csvPathBytes(rows[k][1], path)) << rows[k][1];
        ASSERT_EQ(rows[k].size(), 6u);
        EXPECT_EQ(rows[k][5], "0");
        EXPECT_EQ(rows[k][0], first ? "1" : "2");
        EXPECT_EQ(rows[k][2], first ? "6" : "5");
        EXPECT_EQ(rows[k][3], creationDateOf(path));
        EXPECT_EQ(rows[k][4], first ? "pictures" : "documents");
        EXPECT_EQ(paths.erase(path), 1u) << path;
    }
    EXPECT_TRUE(paths.empty()) << "not read back: " << *paths.begin();
}

TEST(Cli, GroupsMatchedBySizeAloneSaySo) {
    // Two different 100 MiB backups (sparse: nothing is written) and two
    // small equal files.
    TempTree tree;
    for (const char* name : {"a.bak", "b.bak"}) {
        std::filesystem::resize_file(tree.write(name, name), 104857600);
    }
    tree.write("c.txt", "same");
    tree.write("d.txt", "same");
    CliOutcome r = runCli({"--any-location", "--format", "json", tree.root()});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(says(r.out, "\"md5\":null,\"members\":[")) << r.out;
    EXPECT_TRUE(says(r.out, "}],\"sizeOnly\":true}")) << r.out;
    EXPECT_TRUE(says(r.out, "}],\"sizeOnly\":false}")) << r.out;
    r = runCli({"--any-location", "--format", "csv", tree.root()});
    std::vector<std::vector<std::string>> rows;
    ASSERT_TRUE(parseCsv(r.out, rows)) << r.out;
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[1][2] + " " + rows[1][5], "104857600 1");
    EXPECT_EQ(rows[4][2] + " " + rows[4][5], "4 0");
    // Compared by content, the two backups differ: no group, no mark.
    r = runCli({"--any-location", "--large-by-content", "--format", "json", tree.root()});
    EXPECT_FALSE(says(r.out, ".bak")) << r.out;
    EXPECT_FALSE(says(r.out, "\"sizeOnly\":true")) << r.out;
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
    // Without a gate override a folder outside the platform's own roots is
    // refused before any search, naming the way on.
    const CliOutcome srv = runCli({"--format=json", "/srv"});
    EXPECT_EQ(srv.status, 2);
    EXPECT_EQ(srv.out, "");
    // The desktop's network shares of the running user count as a volume.
    const std::string shares = "/run/user/" + std::to_string(::getuid()) + "/gvfs";
    EXPECT_EQ(srv.err, "twinsweep-cli: /srv is outside the searched locations (/home, /opt, "
                       "/media, /mnt, /run/media, " +
                           shares + "); add --any-location to search it\n");
    const CliOutcome none = runCli({tree.root()});
    EXPECT_EQ(none.status, 2);
    EXPECT_TRUE(says(none.err, " is outside the searched locations (/home, /opt, /media, /mnt, "
                               "/run/media, " +
                                   shares + "); add --any-location to search it\n"));
    EXPECT_EQ(runCli({"--any-location", "--min-size", "2K", tree.root()}).out.size(),
              tree.path("Users/bob/big1.png\n").size() * 2);

    // link/.. is the parent of the link's target, as the kernel resolves it.
    tree.symlink(tree.path("Users/bob/Library"), "here/link");
    EXPECT_EQ(
        runCli({"--any-location", "--ext", "png", "--max-size", "1K", tree.path("here/link/..")})
            .out,
        tree.path("Users/bob/b.png") + "\n" + tree.path("Users/bob/Library/c.png") + "\n" +
            tree.path("Users/bob/a.png") + "\n");
}

TEST(CliOutput, JsonEscapesEveryByteThatIsNotPlainUtf8AndTextEveryLineBreak) {
    EXPECT_EQ(jsonString("plain"), "\"plain\"");
    EXPECT_EQ(jsonString("q\"b\\s/"), "\"q\\\"b\\\\s/\"");
    EXPECT_EQ(jsonString("a\nb\tc\x01"), "\"a\\nb\\tc\\u0001\"");
    EXPECT_EQ(jsonString("caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80"),
              "\"caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80\"");
    // Lone, truncated, overlong and surrogate sequences are not UTF-8.
    EXPECT_EQ(jsonString("\xff"), "\"\\udcff\"");
    EXPECT_EQ(jsonString("x\xc3"), "\"x\\udcc3\"");
    EXPECT_EQ(jsonString("\xc0\xaf"), "\"\\udcc0\\udcaf\"");
    EXPECT_EQ(jsonString("\xed\xa0\x80"), "\"\\udced\\udca0\\udc80\"");
    // Text keeps each path on one line and other bytes as they are.
    EXPECT_EQ(textEscaped("/a/b c"), "/a/b c");
    EXPECT_EQ(textEscaped("/a\nb\\c\x1b"), "/a\\nb\\\\c\\x1b");
    EXPECT_EQ(textEscaped("/caf\xc3\xa9\xff"), "/caf\xc3\xa9\xff");
}

TEST(CliOptions, SizesTakePowerOf1024Suffixes) {
    EXPECT_EQ(parseSize("0"), 0U);
    EXPECT_EQ(parseSize("64K"), 65536U);
    EXPECT_EQ(parseSize("3m"), 3U << 20);
    EXPECT_EQ(parseSize("2T"), 2ULL << 40);
    EXPECT_EQ(parseSize("18446744073709551615"), UINT64_MAX);
    for (const char* bad :
         {"", "K", "-1", "1.5M", "10KB", "1X", "18446744073709551616", "16777216T"}) {
        EXPECT_FALSE(parseSize(bad).has_value()) << bad;
    }
}

TEST(CliOptions, FoldersBecomeAbsoluteAndOptionsTakeBothForms) {
    const auto r = parseOptions({"--min-size=2K", "--ext", ".JPG,png", "--format", "json",
                                 "--any-location", "--include-packages", "..//tmp/./"},
                                "/tmp");
    ASSERT_FALSE(r.error) << *r.error;
    EXPECT_EQ(r.options.minimumSize, 2048U);
    EXPECT_EQ(r.options.extensions, (std::vector<std::string>{"jpg", "png"}));
    // Every letter is lower-cased, not only ASCII ones.
    EXPECT_EQ(parseOptions({"--ext", "ÉPS,Ωx", "/tmp"}, "/").options.extensions,
              (std::vector<std::string>{"éps", "ωx"}));
    EXPECT_EQ(r.options.format, OutputFormat::Json);
    EXPECT_EQ(r.options.locations, Locations::Anywhere);
    EXPECT_FALSE(r.options.ignorePackages);
    EXPECT_EQ(r.options.folders, std::vector<std::string>{"/tmp"});
    EXPECT_EQ(parseOptions({"--", "--help"}, "/").error.value_or("").find("--help"), 19U);
}

TEST(Cli, VerboseTimesEachPhaseAfterTheSearchAndTheReportStaysAlone) {
    TempTree tree;
    tree.write("a.txt", "twins");
    tree.write("b.txt", "twins");
    tree.write("c.txt", "lonely!");
    tree.write("d.txt", ""); // below the smallest size
    const CliOutcome quiet = runCli({"--any-location", tree.root()});
    const CliOutcome r = runCli({"--any-location", "--verbose", tree.root()});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, quiet.out);
    EXPECT_EQ(r.out, tree.path("a.txt") + "\n" + tree.path("b.txt") + "\n");
    const std::string err = std::regex_replace(r.err, std::regex(R"(\d+\.\d{3} s)"), "S s");
    EXPECT_EQ(err, "twinsweep-cli: walk: S s, 3 items, 17 bytes\n"
                   "twinsweep-cli: size order: S s, 3 items, 17 bytes\n"
                   "twinsweep-cli: comparison: S s, 3 items, 10 bytes\n"
                   "twinsweep-cli: collection: S s, 3 items, 12 bytes\n");
    EXPECT_EQ(quiet.err, "");
}

TEST(CliProgress, TheLineNamesThePhaseAndItsFigures) {
    using F = PhaseProgress::Figures;
    EXPECT_EQ(TerminalProgress::text(F{true, SearchPhase::Walk, 12, 0, 3 << 20, 0}, ""),
              "walk: 12 files, 3.0 MB");
    EXPECT_EQ(TerminalProgress::text(F{true, SearchPhase::SizeOrder, 12, 12, 1000, 1000}, ""),
              "size order: 12 of 12 files, 1000 B");
    EXPECT_EQ(TerminalProgress::text(F{true, SearchPhase::Comparison, 5, 12, 1, 9},
                                     "1 KB of 9 KB compared"),
              "comparison: 5 of 12 files; 1 KB of 9 KB compared");
    EXPECT_EQ(TerminalProgress::text(F{true, SearchPhase::Collection, 7, 12, 0, 0}, ""),
              "collection: 7 of 12 files");
}
