// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

#include "Groups.h"
#include "selection/Cleaning.h"
#include "selection/CleaningSummary.h"
#include "selection/KeepOptions.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Alerts = std::vector<CleaningAlert>;
using Texts = std::vector<std::string>;
using Snapshot = std::map<std::string, std::string>;

namespace {

// Answers each alert from a script (then "Yes") and remembers what was asked.
struct ScriptedPrompt : CleaningPrompt {
    std::vector<bool> answers;
    Alerts asked;
    bool ask(CleaningAlert alert) override {
        asked.push_back(alert);
        return asked.size() > answers.size() || answers[asked.size() - 1];
    }
};

// Removes with plain system calls: "trash" moves into a folder of the test.
struct PosixRemover : FileRemover {
    std::string trash;
    Texts calls;
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
    std::string path(const FilePtr& group, int member) { return group->duplicates[member]->path; }
    // The tree less the test's trash folder, and the same less the members gone.
    Snapshot files() const {
        Snapshot all = tree.snapshot();
        std::erase_if(all, [](const auto& e) { return e.first.starts_with("trash"); });
        return all;
    }
    Snapshot less(Snapshot files, const Texts& gone) const {
        for (const std::string& p : gone) {
            EXPECT_EQ(files.erase(p.substr(tree.root().size() + 1)), 1u) << p;
        }
        return files;
    }
};

} // namespace

TEST_F(Cleaning, QuestionsComeInOrderNoChangesNothingAndAFailureIsReported) {
    const std::string folder = tree.mkdir("pkg.app");
    FilePtr folders = makeGroup({{tree.mkdir("x.app"), ""}, {folder, ""}});
    s.duplicateFileList.push_back(folders);
    const Snapshot before = files();
    EXPECT_EQ(run({}).outcome, CleaningOutcome::NothingMarked);
    two->duplicates[1]->checkState = 1; // marked, but its category is hidden
    EXPECT_EQ(run({three}).outcome, CleaningOutcome::NothingMarked);
    EXPECT_EQ(prompt.asked, (Alerts(2, CleaningAlert::NothingMarked)));

    applyKeepOption(*two, kRemoveAll, s.duplicateFileList);
    prompt = {};
    prompt.answers = {false};
    EXPECT_EQ(run({three, two}).outcome, CleaningOutcome::Declined);
    EXPECT_EQ(prompt.asked, (Alerts{CleaningAlert::WholeGroups}));

    // "Yes" to the whole groups, "No" to deleting for good: still nothing removed.
    s.moveToTrash = false;
    prompt = {};
    prompt.answers = {true, false};
    EXPECT_EQ(run({three, two}).outcome, CleaningOutcome::Declined);
    EXPECT_EQ(prompt.asked, (Alerts{CleaningAlert::WholeGroups, CleaningAlert::PermanentDeletion}));
    EXPECT_TRUE(remover.calls.empty());
    EXPECT_EQ(files(), before);
    EXPECT_EQ(two->duplicates.size(), 2u);

    // Only permanent deletion asks when no whole group is marked; a removal that
    // fails (unlink refuses a folder) is reported and the clean goes on.
    applyKeepOption(*two, kKeepOldest, s.duplicateFileList);
    folders->duplicates[1]->checkState = 1;
    const std::string gone = path(two, 1);
    prompt = {};
    DiagnosticsCapture out;
    const CleaningReport r = run({folders, three, two});
    EXPECT_EQ(lines(out.finish()), (Texts{"Error:  " + std::string(std::strerror(EISDIR))}));
    EXPECT_EQ(prompt.asked, (Alerts{CleaningAlert::PermanentDeletion}));
    EXPECT_EQ(remover.calls, (Texts{"delete " + folder, "delete " + gone}));
    EXPECT_EQ(r.failed, 1);
    EXPECT_EQ(r.removed, 1);
    EXPECT_EQ(r.bytesFreed, 2u);
    EXPECT_EQ(files(), less(before, {gone}));
    EXPECT_EQ(s.duplicateFileList, (FileList{three}));
}

TEST_F(Cleaning, RemovesMarkedMembersAndPrunesGroups) {
    three->duplicates[2]->checkState = 1;
    two->duplicates[0]->checkState = 1;
    two->duplicates[1]->checkState = 1;
    const Snapshot before = files();
    const Texts gone{path(three, 2), path(two, 0), path(two, 1)};

    const CleaningReport r = run(s.duplicateFileList);
    EXPECT_EQ(prompt.asked, (Alerts{CleaningAlert::WholeGroups})); // Trash: one question
    EXPECT_EQ(r.outcome, CleaningOutcome::Cleaned);
    EXPECT_EQ(r.removed, 3);
    EXPECT_EQ(r.bytesFreed, 3u + 2u + 2u);
    EXPECT_EQ(files(), less(before, gone));
    EXPECT_EQ(tree.snapshot().count("trash/3"), 1u);
    // The group of three keeps its two unmarked members; the other leaves.
    EXPECT_EQ(three->duplicates.size(), 2u);
    EXPECT_EQ(markedCount(*three), 0);
    EXPECT_EQ(s.duplicateFileList, (FileList{three}));

    // Cleaning the last group leaves nothing listed.
    applyKeepOption(*three, kKeepNewest, s.duplicateFileList);
    const std::string last = path(three, 1);
    run(s.duplicateFileList);
    EXPECT_TRUE(s.duplicateFileList.empty());
    EXPECT_EQ(three->duplicates.size(), 1u);
    EXPECT_EQ(files(), less(less(before, gone), {last}));
}

TEST_F(Cleaning, VanishedChangedAndProtectedCopiesAreReportedAndNotRemoved) {
    applyKeepOption(*three, kKeepOldest, s.duplicateFileList); // marks b and c
    applyKeepOption(*two, kKeepOldest, s.duplicateFileList);   // marks b/2.txt
    const std::string vanished = path(three, 1);
    const std::string changed = path(three, 2);
    const std::string fine = path(two, 1);
    ASSERT_EQ(::unlink(vanished.c_str()), 0);
    // The same bytes, touched after the search: changed all the same.
    const timespec later[2] = {{0, UTIME_OMIT}, {1234567890, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, changed.c_str(), later, 0), 0);
    // A copy inside a protected folder is never removed, marked or not; nor
    // one that the search never saw.
    const std::string guard = tree.write("p/3", "q"), unseen = tree.write("r/3", "q");
    FilePtr guarded = makeGroup({{guard, ""}, {tree.write("q/3", "q"), ""}, {unseen, ""}});
    guarded->duplicates[0]->checkState = 1;
    guarded->duplicates[2]->checkState = 1;
    guarded->duplicates[2]->seen = {};
    s.protectedFolders = {tree.path("p")};
    s.duplicateFileList.push_back(guarded);
    const Snapshot before = files();

    DiagnosticsCapture out;
    const CleaningReport r = run(s.duplicateFileList);
    const auto printed = lines(out.finish());
    EXPECT_EQ(printed, (Texts{"Error:  " + vanished + ": No such file or directory",
                              "Error:  " + changed + ": changed since the search, not removed",
                              "Error:  " + guard + ": in a protected folder, not removed",
                              "Error:  " + unseen + ": not seen by the search, not removed"}));
    EXPECT_EQ(r.failed, 4);
    EXPECT_EQ(r.removed, 1);
    EXPECT_EQ(files(), less(before, {fine}));
    EXPECT_EQ(remover.calls, (Texts{"trash " + fine}));
    // Attempted members leave their groups all the same.
    EXPECT_TRUE(s.duplicateFileList.empty());
    EXPECT_EQ(three->duplicates.size(), 1u);
}

TEST_F(Cleaning, OnlyAnUnmarkedCopyAsTheSearchSawItAndWithTheSameBytesVouches) {
    // The kept copy was replaced under its name (same bytes, another file);
    // the marked copies must not vouch for each other.
    three->duplicates[1]->checkState = 1;
    three->duplicates[2]->checkState = 1;
    const std::string kept = path(three, 0);
    ASSERT_EQ(::rename(tree.write("elsewhere", "abc").c_str(), kept.c_str()), 0);
    // The other kept copy got other bytes of the same length, its time put back.
    two->duplicates[1]->checkState = 1;
    struct stat st {};
    ASSERT_EQ(::stat(path(two, 0).c_str(), &st), 0);
    tree.write("a/2.txt", "zy");
    const timespec times[2] = {st.st_atim, st.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, path(two, 0).c_str(), times, 0), 0);
    const std::string marked = path(two, 1);
    const Texts copies{path(three, 1), path(three, 2)};
    const Snapshot before = files();

    DiagnosticsCapture out;
    const CleaningReport r = run(s.duplicateFileList);
    const std::string printed = out.finish();
    EXPECT_EQ(r.failed, 3);
    EXPECT_TRUE(remover.calls.empty());
    EXPECT_EQ(files(), before);
    const std::string noKept = ": no kept copy is left to compare with (" + kept +
                               ": replaced by another file since the search, not removed), "
                               "not removed";
    EXPECT_EQ(lines(printed),
              (Texts{"Error:  " + copies[0] + noKept, "Error:  " + copies[1] + noKept,
                     "Error:  " + marked + ": not byte for byte the same as " +
                         tree.path("a/2.txt") + ", not removed"}));
}

TEST_F(Cleaning, CopiesLeftInPlaceCountByReasonAndStayListedWhenAsked) {
    three->duplicates[1]->checkState = 1;
    three->duplicates[2]->checkState = 1;
    two->duplicates[1]->checkState = 1;
    const Snapshot before = files();
    CleaningChoice choice;
    choice.outcome = CleaningOutcome::Cleaned;
    choice.toTrash = false;
    CleaningRun run;
    // Refuses both copies of three, each naming another kept path.
    run.action = [&](const RemovalTarget& t) {
        if (t.path.ends_with("1.jpg")) {
            RemovalResult r;
            r.ok = false;
            r.error = t.path + ": no kept copy is left to compare with (" + t.path +
                      ": not byte for byte the same as /k/" +
                      (t.path == path(three, 1) ? "one" : "two (2)") + "), not removed";
            return r;
        }
        return remover.removeForGood(t);
    };
    std::vector<CleanedCopy> attempted;
    DiagnosticsCapture out;
    const CleaningReport r = removeMarked(s.duplicateFileList, choice, {}, remover, run, attempted);
    EXPECT_EQ(lines(out.finish()).size(), 2u);
    EXPECT_EQ(r.removed, 1);
    EXPECT_EQ(r.failed, 2);
    EXPECT_EQ(files(), less(before, {path(two, 1)}));
    // Nothing in the lists changed yet.
    EXPECT_EQ(three->duplicates.size(), 3u);
    EXPECT_EQ(s.duplicateFileList.size(), 2u);
    EXPECT_EQ(reasonsLeftInPlace(attempted),
              (std::vector<std::pair<std::string, std::int64_t>>{
                  {"no kept copy is left to compare with (it: not byte for byte the same as a "
                   "kept copy), not removed",
                   2}}));
    EXPECT_EQ(leftInPlaceAlert(attempted).buttons, (Texts{"Show Them", "OK"}));

    // The window keeps them listed; the command-line tool's lists drop them.
    LeavingPlan plan = planLeaving(attempted, choice, s.duplicateFileList, true);
    EXPECT_EQ(three->duplicates.size(), 3u);
    applyLeaving(plan, s);
    EXPECT_EQ(three->duplicates.size(), 3u);
    EXPECT_EQ(two->duplicates.size(), 1u);
    EXPECT_EQ(s.duplicateFileList, (FileList{three}));
    leaveLists(attempted, choice, s);
    EXPECT_EQ(three->duplicates.size(), 1u);
    EXPECT_TRUE(s.duplicateFileList.empty());
}
