// Runs the real twinsweep-cli with the options that mark and remove copies.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "selection/CustomSettingsText.h"
#include "settings/SettingsManager.h"
#include "support/Cli.h"
#include "support/TempTree.h"

using twinsweep::testing::TempTree;

namespace {

using Outcome = twinsweep::testing::CliOutcome;
using twinsweep::testing::slurp;

bool exists(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

// Three copies (a, b, c) of one file and two (a, b) of another, in a tree whose
// data home (and so its Trash) is the tree's own "data" folder.
struct Acting : ::testing::Test {
    TempTree tree;
    TempTree scratch;
    std::string root = tree.mkdir("files");
    std::string trash = tree.path("data/Trash");

    void SetUp() override {
        tree.mkdir("data");
        tree.write("files/a/one.jpg", "one");
        tree.write("files/b/one.jpg", "one");
        tree.write("files/c/one.jpg", "one");
        tree.write("files/a/two.txt", "two!");
        tree.write("files/b/two.txt", "two!");
    }

    // A terminal answers a question showing prompt with answer.
    Outcome run(std::vector<std::string> args, const std::string& prompt = {},
                const std::string& answer = {}) {
        twinsweep::testing::CliRun r;
        args.insert(args.begin(), "--any-location");
        args.push_back(root);
        r.args = std::move(args);
        r.env = {"XDG_DATA_HOME=" + tree.path("data")};
        r.prompt = prompt;
        r.answer = answer;
        return twinsweep::testing::runCli(r);
    }

    int filesLeft() {
        int n = 0;
        for (const char* f : {"a/one.jpg", "b/one.jpg", "c/one.jpg", "a/two.txt", "b/two.txt"}) {
            n += exists(tree.path("files/") + f) ? 1 : 0;
        }
        return n;
    }
};

} // namespace

TEST_F(Acting, DryRunIsTheDefaultAndRemovesNothing) {
    for (const auto& args : {std::vector<std::string>{"--keep", "newest"},
                             std::vector<std::string>{"--keep", "newest", "--dry-run"}}) {
        const Outcome r = run(args);
        EXPECT_EQ(r.status, 0) << r.err;
        // Equal creation times: the first copy of each group is kept.
        EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 4) << r.out;
        EXPECT_NE(r.out.find("would remove: " + tree.path("files/")), std::string::npos);
        EXPECT_NE(r.out.find("would free 10 B (10 bytes) from 3 files\n"), std::string::npos)
            << r.out;
        EXPECT_EQ(filesLeft(), 5);
    }
    const Outcome all = run({"--keep", "all"});
    EXPECT_EQ(all.out, "would free 0 B (0 bytes) from 0 files\n");
    EXPECT_NE(all.err.find("no copy is marked"), std::string::npos);
    EXPECT_FALSE(exists(trash));
}

TEST_F(Acting, TrashMovesTheMarkedCopiesWithTheirTrashInfo) {
    const Outcome r = run({"--keep", "oldest", "--trash", "--format", "json"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(filesLeft(), 2);
    EXPECT_NE(r.out.find("\"dryRun\":false"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("\"bytesFreed\":10,\"failed\":0"), std::string::npos) << r.out;
    // Each trashed copy has its .trashinfo naming where it came from.
    int infos = 0;
    for (const auto& entry : std::filesystem::directory_iterator(trash + "/info")) {
        ++infos;
        const std::string info = slurp(entry.path());
        EXPECT_EQ(info.rfind("[Trash Info]\n", 0), 0u) << info;
        EXPECT_NE(info.find("\nPath=" + tree.path("files/")), std::string::npos) << info;
        EXPECT_TRUE(exists(trash + "/files/" + entry.path().stem().string()));
    }
    EXPECT_EQ(infos, 3);
}

TEST_F(Acting, QuestionsNeedYesOrATerminal) {
    // Every copy of every group marked: refused without --yes, before or after the search.
    Outcome r = run({"--keep", "none", "--trash"});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("add --yes"), std::string::npos) << r.err;
    r = run({"--keep", "oldest", "--delete"});
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("--delete needs --yes"), std::string::npos) << r.err;
    EXPECT_EQ(filesLeft(), 5);

    // A terminal is asked: "n" keeps everything, "y" goes on.
    const std::string asked = "permanently remove the selected duplicate files. Continue? [y/N]";
    r = run({"--keep", "oldest", "--delete"}, asked, "n\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(filesLeft(), 5);
    r = run({"--keep", "oldest", "--delete"}, asked, "y\n");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(filesLeft(), 2);
    EXPECT_FALSE(exists(trash + "/files")); // only the cleaning lock lives there

    SetUp(); // all five files again
    r = run({"--keep", "none", "--delete", "--yes"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(filesLeft(), 0);
}

TEST_F(Acting, RulesFileMarksWithTheKeepOneAnswer) {
    twinsweep::SettingsManager rules;
    rules.customFilePathState = 1;
    rules.customFilePath = tree.path("files/");
    const std::string file = tree.write("rules.txt", twinsweep::customSettingsText(rules));

    // Every copy passes: "no" marks all, "oldest" spares one per group.
    Outcome r = run({"--rules", file, "--keep-one", "no"});
    EXPECT_NE(r.out.find("from 5 files"), std::string::npos) << r.out << r.err;
    r = run({"--rules", file});
    EXPECT_NE(r.out.find("from 3 files"), std::string::npos) << r.out << r.err;

    rules.customFilePath = tree.path("files/b");
    tree.write("rules.txt", twinsweep::customSettingsText(rules));
    r = run({"--rules", file, "--trash", "--keep-one", "newest"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_FALSE(exists(tree.path("files/b/one.jpg")));
    EXPECT_FALSE(exists(tree.path("files/b/two.txt")));
    EXPECT_EQ(filesLeft(), 3);
}

TEST_F(Acting, BadCombinationsAndRuleFilesStopBeforeAnything) {
    const std::string bad = tree.write("bad-rules.txt", "0\n0\nsoon\n");
    const std::string fifo = tree.path("rules.fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0); // must not block the tool
    const std::string huge = tree.writeSized("huge.txt", (1 << 20) + 1, '\n');
    const std::vector<std::vector<std::string>> cases = {
        {"--keep", "some"},
        {"--keep", "all", "--rules", bad},
        {"--keep-one", "oldest"},
        {"--trash"},
        {"--yes"},
        {"--keep", "none", "--trash", "--delete"},
        {"--rules", bad},
        {"--rules", tree.path("missing.txt")},
        {"--rules", fifo},
        {"--rules", tree.path("files")},
        {"--rules", huge},
        {"--rules", tree.write("ok.txt", twinsweep::defaultRuleText()), "--keep-one", "maybe"},
    };
    for (const auto& args : cases) {
        const Outcome r = run(args);
        EXPECT_EQ(r.status, 2) << args.back();
        EXPECT_EQ(r.out, "");
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
        if (args.size() == 2 && args.front() == "--rules" &&
            args.back() != tree.path("missing.txt")) {
            EXPECT_NE(r.err.find("docs/rules.md"), std::string::npos) << r.err;
        }
    }
    EXPECT_EQ(filesLeft(), 5);
}
