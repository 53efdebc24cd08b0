// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the real twinsweep-cli with the options that mark and remove copies, and bad usage.
#include <gtest/gtest.h>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

#include "selection/CustomSettingsText.h"
#include "settings/SettingsManager.h"
#include "support/Cli.h"
#include "support/TempTree.h"

using namespace twinsweep::testing;

namespace {

const char* const kFiles[] = {"a/one.jpg", "b/one.jpg", "c/one.jpg", "a/two.txt", "b/two.txt"};

// Three copies of one file and two of another; the Trash is in the tree.
struct Acting : ::testing::Test {
    TempTree tree;
    std::string trash = tree.path("data/Trash");

    void SetUp() override {
        for (const char* f : kFiles) {
            tree.write(std::string("files/") + f, f[2] == 'o' ? "one" : "two!");
        }
    }

    // With an answer, a terminal answers the delete question.
    CliOutcome run(std::vector<std::string> args, const std::string& answer = {}) {
        args.insert(args.begin(), "--any-location");
        args.push_back(tree.path("files"));
        CliRun r(std::move(args), answer.empty() ? "" : kDeleteQuestion);
        r.answer = answer;
        r.env = {"XDG_DATA_HOME=" + tree.path("data")};
        return runCli(r);
    }

    long filesLeft() {
        return std::count_if(std::begin(kFiles), std::end(kFiles), [&](const char* f) {
            return ::access(tree.path(std::string("files/") + f).c_str(), F_OK) == 0;
        });
    }
};

} // namespace

TEST_F(Acting, DryRunIsTheDefaultAndTrashTakesOnlyTheMarkedCopies) {
    for (const auto& args : {std::vector<std::string>{"--keep", "newest"},
                             std::vector<std::string>{"--keep", "newest", "--dry-run"}}) {
        const CliOutcome r = run(args);
        EXPECT_EQ(r.status, 0) << r.err;
        // The copy made last of each group is kept.
        EXPECT_EQ(listed(r.out, "would remove: " + tree.path("files/")).size(), 3u) << r.out;
        EXPECT_TRUE(says(r.out, "\nwould free 10 B (10 bytes) from 3 files\n"));
    }
    const CliOutcome all = run({"--keep", "all"});
    EXPECT_EQ(all.out, "would free 0 B (0 bytes) from 0 files\n");
    EXPECT_TRUE(says(all.err, "no copy is marked"));
    EXPECT_EQ(filesLeft(), 5);
    EXPECT_NE(::access(trash.c_str(), F_OK), 0);

    const CliOutcome r = run({"--keep", "oldest", "--trash", "--format", "json"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(filesLeft(), 2);
    EXPECT_TRUE(says(r.out, "\"dryRun\":false"));
    EXPECT_TRUE(says(r.out, "\"bytesFreed\":10,\"failed\":0"));
    EXPECT_TRUE(says(slurp(trash + "/info/one.jpg.trashinfo"), "\nPath=" + tree.path("files/")));
}

TEST_F(Acting, QuestionsNeedYesOrATerminal) {
    // Every copy of every group marked: refused without --yes, even after the search.
    CliOutcome r = run({"--keep", "none", "--trash"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(says(r.err, "add --yes"));
    // A terminal is asked: "n" keeps everything.
    r = run({"--keep", "oldest", "--delete"}, "n\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(filesLeft(), 5);

    r = run({"--keep", "none", "--delete", "--yes"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(filesLeft(), 0);
    EXPECT_NE(::access((trash + "/files").c_str(), F_OK), 0); // only the lock lives there
}

TEST_F(Acting, RulesFileMarksWithTheKeepOneAnswer) {
    twinsweep::SettingsManager rules;
    rules.customFilePathState = 1;
    rules.customFilePath = tree.path("files/");
    const std::string file = tree.write("rules.txt", twinsweep::customSettingsText(rules));
    // Every copy passes: "no" marks all, "oldest" spares one per group.
    EXPECT_TRUE(says(run({"--rules", file, "--keep-one", "no"}).out, "from 5 files"));
    EXPECT_TRUE(says(run({"--rules", file}).out, "from 3 files"));

    rules.customFilePath = tree.path("files/b");
    tree.write("rules.txt", twinsweep::customSettingsText(rules));
    const CliOutcome r = run({"--rules", file, "--trash", "--keep-one", "newest"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(listed(r.out, "removed: "), (std::vector<std::string>{tree.path("files/b/two.txt"),
                                                                    tree.path("files/b/one.jpg")}));
    EXPECT_EQ(filesLeft(), 3);
}

TEST_F(Acting, BadUsageAndRuleFilesStopBeforeAnything) {
    const std::string bad = tree.write("bad-rules.txt", "0\n0\nsoon\n");
    const std::string fifo = tree.path("rules.fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0); // must not block the tool
    const std::string huge = tree.writeSized("huge.txt", (1 << 20) + 1, '\n');
    const std::vector<std::vector<std::string>> cases = {
        {"--bogus"},
        {"--format", "xml"},
        {"--min-size", "ten"},
        {"--min-size", "2K", "--max-size", "1K"},
        {tree.path("missing")},
        {tree.write("file", "x")},
        {"--keep", "some"},
        {"--keep", "all", "--rules", bad},
        {"--keep-one", "oldest"},
        {"--trash"},
        {"--yes"},
        {"--keep", "none", "--trash", "--delete"},
        {"--keep", "oldest", "--delete"},
        {"--rules", bad},
        {"--rules", tree.path("missing.txt")},
        {"--rules", fifo},
        {"--rules", tree.path("files")},
        {"--rules", huge},
        {"--rules", tree.write("ok.txt", twinsweep::defaultRuleText()), "--keep-one", "maybe"}};
    for (const auto& args : cases) {
        const CliOutcome r = run(args);
        EXPECT_EQ(r.status, 2) << args.back();
        EXPECT_EQ(r.out, "");
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
        EXPECT_EQ(r.err.rfind("twinsweep-cli: ", 0), 0U) << r.err;
        if (args.size() == 2 && args.front() == "--rules" &&
            args.back() != tree.path("missing.txt")) {
            EXPECT_TRUE(says(r.err, "docs/rules.md"));
        }
    }
    // No folder, or an option without its value.
    for (const auto& args : {std::vector<std::string>{}, {"--format"}}) {
        EXPECT_EQ(runCli(args).status, 2);
    }
    EXPECT_TRUE(says(run({tree.path("missing")}).err, tree.path("missing")));
    // An unset variable in a script is not the folder it runs in.
    const CliOutcome empty = runCli({"--keep", "oldest", ""});
    EXPECT_EQ(empty.status, 2);
    EXPECT_EQ(empty.err, "twinsweep-cli: an empty folder name is not a folder\n");
    EXPECT_EQ(runCli({"--help"}).status, 0);
    EXPECT_EQ(runCli({"--version"}).out.rfind("twinsweep-cli ", 0), 0U);
    EXPECT_EQ(filesLeft(), 5);
}

TEST_F(Acting, JsonOfACleanGivesEachCopyItsMarkAndOutcome) {
    // The copies in a/ are the oldest, so they are kept; a/two.txt is another user's.
    ::sleep(1);
    for (const char* f : {"files/b/one.jpg", "files/c/one.jpg", "files/b/two.txt"}) {
        ASSERT_EQ(::unlink(tree.path(f).c_str()), 0);
        tree.write(f, f[8] == 'o' ? "one" : "two!");
    }
    ASSERT_EQ(::chown(tree.path("files/a/two.txt").c_str(), 2001, 2001), 0);
    for (const bool dry : {true, false}) {
        std::vector<std::string> args = {"--keep", "oldest",   "--format",
                                         "json",   "--delete", "--yes"};
        if (dry) {
            args.push_back("--dry-run");
        }
        const CliOutcome r = run(args);
        EXPECT_EQ(r.status, 1) << r.err;
        const std::string done = dry ? "would remove" : "removed";
        const auto member = [&](const char* f, bool marked, const std::string& outcome) {
            return "{\"path\":\"" + tree.path(f) + "\",\"marked\":" + (marked ? "true" : "false") +
                   ",\"outcome\":\"" + outcome + "\"";
        };
        // Then what the search saw of it, so the report is a plan (--apply).
        const std::string seen = ",\"device\":";
        EXPECT_EQ(r.out.rfind("{\"dryRun\":" + std::string(dry ? "true" : "false"), 0), 0u);
        EXPECT_TRUE(says(r.out, "],\"bytesFreed\":6,\"failed\":1,\"groups\":[\n{\"path\":"));
        EXPECT_TRUE(says(r.out, member("files/a/one.jpg", false, "kept") + seen));
        EXPECT_TRUE(says(r.out, member("files/b/one.jpg", true, done) + seen));
        EXPECT_TRUE(says(r.out, member("files/c/one.jpg", true, done) + seen));
        EXPECT_TRUE(says(r.out, member("files/a/two.txt", false, "kept") + seen));
        EXPECT_TRUE(says(r.out, member("files/b/two.txt", true, dry ? "would be left" : "left") +
                                    ",\"reason\":\"" + tree.path("files/b/two.txt") +
                                    ": kept copy belongs to another user, not removed\"" + seen));
        EXPECT_EQ(filesLeft(), dry ? 5 : 3);
    }
}

TEST_F(Acting, LinksWithEveryCopyMarkedLeaveTheGroupsAndSaySo) {
    for (const bool yes : {false, true}) {
        std::vector<std::string> args = {"--keep", "none", "--link"};
        if (yes) {
            args.push_back("--yes");
        }
        const CliOutcome r = run(args);
        EXPECT_EQ(r.status, 1);
        EXPECT_EQ(r.out, "freed 0 B (0 bytes) from 0 files\n");
        EXPECT_TRUE(says(r.err, "twinsweep-cli: note: some groups have every copy marked; with "
                                "--link they are left as they are\n"));
        EXPECT_TRUE(says(r.err, "Error:  " + tree.path("files/c/one.jpg") +
                                    ": every copy of its group is marked, so there is nothing "
                                    "to link to, left alone\n"));
        EXPECT_TRUE(says(r.err, "twinsweep-cli: 5 copies were not replaced by a link"));
        EXPECT_EQ(filesLeft(), 5);
    }
}

TEST_F(Acting, OldestAndNewestGoByTheExactCreationTime) {
    // A download and its copy made within the same second: the date texts
    // tie, and the copy is listed first.
    const std::string original = tree.write("files/dl/report.pdf", "report");
    ::usleep(30000); // longer than a clock tick: file times come from the coarse clock
    const std::string copy = tree.write("files/dl/report (1).pdf", "report");
    const CliOutcome oldest = run({"--keep", "oldest"});
    EXPECT_EQ(oldest.status, 0) << oldest.err;
    EXPECT_TRUE(says(oldest.out, "would remove: " + copy + "\n")) << oldest.out;
    EXPECT_FALSE(says(oldest.out, "would remove: " + original + "\n"));
    const CliOutcome newest = run({"--keep", "newest"});
    EXPECT_TRUE(says(newest.out, "would remove: " + original + "\n")) << newest.out;
    EXPECT_FALSE(says(newest.out, "would remove: " + copy + "\n"));
}
