#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Groups.h"
#include "selection/Cleaning.h"
#include "selection/KeepOptions.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Alerts = std::vector<CleaningAlert>;

namespace {

bool exists(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

// Answers each alert from a script and remembers what was asked.
struct ScriptedPrompt : CleaningPrompt {
    bool answer = true;
    Alerts asked;
    bool ask(CleaningAlert alert) override {
        asked.push_back(alert);
        return answer;
    }
};

// Removes with plain system calls: "trash" moves into a folder of the test.
struct PosixRemover : FileRemover {
    std::string trash;
    std::vector<std::string> calls;
    static RemovalResult result(bool ok) {
        RemovalResult r;
        r.ok = ok;
        r.error = ok ? "" : std::strerror(errno);
        return r;
    }
    RemovalResult moveToTrash(const RemovalTarget& t) override {
        calls.push_back("trash " + t.path);
        const std::string to = trash + "/" + std::to_string(calls.size());
        return result(::renameat(t.folderFd, t.entry.c_str(), AT_FDCWD, to.c_str()) == 0);
    }
    RemovalResult removeForGood(const RemovalTarget& t) override {
        calls.push_back("delete " + t.path);
        return result(::unlinkat(t.folderFd, t.entry.c_str(), 0) == 0);
    }
};

struct Cleaning : ::testing::Test {
    TempTree tree;
    SettingsManager s;
    ScriptedPrompt prompt;
    PosixRemover remover;
    FilePtr three = makeGroup({{tree.write("a/1.jpg", "abc"), ""},
                               {tree.write("b/1.jpg", "abc"), ""},
                               {tree.write("c/1.jpg", "abc"), ""}});
    FilePtr two = makeGroup({{tree.write("a/2.txt", "zz"), ""}, {tree.write("b/2.txt", "zz"), ""}});

    void SetUp() override {
        remover.trash = tree.mkdir("trash");
        s.duplicateFileList = {three, two};
    }
    CleaningReport run(const FileList& listed) { return clean(listed, s, prompt, remover); }
};

} // namespace

TEST_F(Cleaning, NothingMarkedAmongTheListedGroups) {
    EXPECT_EQ(run({}).outcome, CleaningOutcome::NothingMarked);
    EXPECT_EQ(run({three, two}).outcome, CleaningOutcome::NothingMarked);
    two->duplicates[1]->checkState = 1; // marked, but its category is hidden
    EXPECT_EQ(run({three}).outcome, CleaningOutcome::NothingMarked);
    EXPECT_EQ(prompt.asked, (Alerts(3, CleaningAlert::NothingMarked)));
    EXPECT_TRUE(remover.calls.empty());
    EXPECT_EQ(s.duplicateFileList.size(), 2u);
    EXPECT_EQ(two->duplicates.size(), 2u);
}

TEST_F(Cleaning, QuestionsComeInOrderAndNoChangesNothing) {
    applyKeepOption(*two, kRemoveAll, s.duplicateFileList);
    prompt.answer = false;
    EXPECT_EQ(run({three, two}).outcome, CleaningOutcome::Declined);
    EXPECT_EQ(prompt.asked, (Alerts{CleaningAlert::WholeGroups}));

    s.moveToTrash = false;
    prompt.asked.clear();
    prompt.answer = true;
    // With "Yes" to the first, "No" to the second: still nothing removed.
    struct YesThenNo : CleaningPrompt {
        Alerts asked;
        bool ask(CleaningAlert a) override {
            asked.push_back(a);
            return asked.size() == 1;
        }
    } yesThenNo;
    EXPECT_EQ(clean({three, two}, s, yesThenNo, remover).outcome, CleaningOutcome::Declined);
    EXPECT_EQ(yesThenNo.asked,
              (Alerts{CleaningAlert::WholeGroups, CleaningAlert::PermanentDeletion}));
    EXPECT_TRUE(remover.calls.empty());
    EXPECT_TRUE(exists(two->duplicates[0]->path));
    EXPECT_EQ(two->duplicates.size(), 2u);

    // Only permanent deletion asks when no whole group is marked.
    applyKeepOption(*two, kKeepOldest, s.duplicateFileList);
    const std::string gone = two->duplicates[1]->path;
    const CleaningReport r = run({three, two});
    EXPECT_EQ(prompt.asked, (Alerts{CleaningAlert::PermanentDeletion}));
    EXPECT_EQ(remover.calls, (std::vector<std::string>{"delete " + gone}));
    EXPECT_EQ(r.removed, 1);
    EXPECT_EQ(r.bytesFreed, 2u);
    EXPECT_FALSE(exists(gone));
}

TEST_F(Cleaning, RemovesMarkedMembersAndPrunesGroups) {
    three->duplicates[2]->checkState = 1;
    two->duplicates[0]->checkState = 1;
    two->duplicates[1]->checkState = 1;
    const auto threeKept = three->duplicates[0]->path;
    const auto threeGone = three->duplicates[2]->path;
    const auto twoPaths = std::vector{two->duplicates[0]->path, two->duplicates[1]->path};

    const CleaningReport r = run(s.duplicateFileList);
    EXPECT_EQ(prompt.asked, (Alerts{CleaningAlert::WholeGroups})); // Trash: one question
    EXPECT_EQ(r.outcome, CleaningOutcome::Cleaned);
    EXPECT_EQ(r.removed, 3);
    EXPECT_EQ(r.bytesFreed, 3u + 2u + 2u);
    EXPECT_TRUE(exists(threeKept));
    EXPECT_FALSE(exists(threeGone));
    EXPECT_FALSE(exists(twoPaths[0]));
    EXPECT_FALSE(exists(twoPaths[1]));
    // The group of three keeps its two unmarked members; the other leaves.
    EXPECT_EQ(three->duplicates.size(), 2u);
    EXPECT_EQ(markedCount(*three), 0);
    EXPECT_EQ(s.duplicateFileList, (FileList{three}));

    // Cleaning the last group leaves nothing listed.
    applyKeepOption(*three, kKeepNewest, s.duplicateFileList);
    run(s.duplicateFileList);
    EXPECT_TRUE(s.duplicateFileList.empty());
    EXPECT_EQ(three->duplicates.size(), 1u);
    EXPECT_TRUE(exists(three->duplicates[0]->path));
}

TEST_F(Cleaning, FailuresAndChangedFilesAreReportedAndNotRemoved) {
    applyKeepOption(*three, kKeepOldest, s.duplicateFileList); // marks b and c
    applyKeepOption(*two, kKeepOldest, s.duplicateFileList);   // marks b/2.txt
    const std::string vanished = three->duplicates[1]->path;
    const std::string changed = three->duplicates[2]->path;
    const std::string fine = two->duplicates[1]->path;
    ASSERT_EQ(::unlink(vanished.c_str()), 0);
    tree.write("c/1.jpg", "abcd"); // rewritten after the search
    // Unmarked files stay whatever happens.
    const std::string unmarked = three->duplicates[0]->path;

    StdoutCapture out;
    const CleaningReport r = run(s.duplicateFileList);
    const auto printed = lines(out.finish());
    ASSERT_EQ(printed.size(), 2u);
    EXPECT_EQ(printed[0], "Error:  " + vanished + ": No such file or directory");
    EXPECT_EQ(printed[1].rfind("Error:  " + changed + ": ", 0), 0u) << printed[1];
    EXPECT_EQ(r.failed, 2);
    EXPECT_EQ(r.removed, 1);
    EXPECT_TRUE(exists(changed));
    EXPECT_TRUE(exists(unmarked));
    EXPECT_FALSE(exists(fine));
    EXPECT_EQ(remover.calls, (std::vector<std::string>{"trash " + fine}));
    // Attempted members leave their groups all the same.
    EXPECT_TRUE(s.duplicateFileList.empty());
    EXPECT_EQ(three->duplicates.size(), 1u);
}

TEST_F(Cleaning, AFileReplacedUnderTheSameNameIsNotRemoved) {
    three->duplicates[1]->checkState = 1;
    const std::string path = three->duplicates[1]->path;
    const std::string other = tree.write("elsewhere", "abc");
    ASSERT_EQ(::rename(other.c_str(), path.c_str()), 0); // same size, another inode

    // A member the search never saw is not removed either.
    three->duplicates[2]->checkState = 1;
    three->duplicates[2]->seen = {};
    StdoutCapture out;
    const CleaningReport r = run(s.duplicateFileList);
    const std::string printed = out.finish();
    EXPECT_EQ(r.failed, 2);
    EXPECT_TRUE(remover.calls.empty());
    EXPECT_TRUE(exists(path));
    EXPECT_NE(printed.find(path + ": replaced by another file since the search"), std::string::npos)
        << printed;
    EXPECT_NE(printed.find(": not seen by the search"), std::string::npos) << printed;
}

TEST_F(Cleaning, AFailingRemovalIsReportedAndCleaningGoesOn) {
    // The member is a folder now seen as itself; unlink refuses folders.
    const std::string folder = tree.mkdir("pkg.app");
    auto group = makeGroup({{tree.mkdir("x.app"), ""}, {folder, ""}});
    group->duplicates[1]->checkState = 1;
    two->duplicates[1]->checkState = 1;
    s.duplicateFileList.push_back(group);
    s.moveToTrash = false;

    StdoutCapture out;
    const CleaningReport r = run({group, two});
    const auto printed = lines(out.finish());
    ASSERT_EQ(printed.size(), 1u);
    EXPECT_EQ(printed[0], "Error:  " + std::string(std::strerror(EISDIR)));
    EXPECT_EQ(r.failed, 1);
    EXPECT_EQ(r.removed, 1);
    EXPECT_TRUE(exists(folder));
    EXPECT_EQ(s.duplicateFileList, (FileList{three}));
}
