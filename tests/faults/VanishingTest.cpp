// Files and folders that vanish or change while a search runs, and between the
// search and the clean. Progress notifications arrive synchronously on the
// search thread, so an observer can act at an exact point of the run.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "CoreSupport.h"
#include "FaultSupport.h"
#include "selection/KeepOptions.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Groups = std::set<std::set<std::string>>;

namespace {

class EachDigestMode : public ::testing::TestWithParam<unsigned> {};

// Runs action once, at the first progress post for which when() holds.
struct ActOnce {
    std::function<bool(const UserInfo&)> when;
    std::function<void()> action;
    bool done = false;
    ScopedObserver observer{kUpdateProgress, [this](const std::string&, const UserInfo& info) {
                                if (!done && when(info)) {
                                    done = true;
                                    action();
                                }
                            }};
};

void touchLater(const std::string& path) {
    struct stat st {};
    ASSERT_EQ(::stat(path.c_str(), &st), 0);
    timespec times[2] = {st.st_atim, st.st_mtim};
    times[1].tv_sec += 10;
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Faults, EachDigestMode, ::testing::Values(0U, 2U), [](const auto& info) {
    return info.param == 0 ? "PlainLoop" : "DigestThreads";
});

TEST_P(EachDigestMode, EntriesThatVanishAfterTheListingAreReportedAndNotCopies) {
    TempTree tree;
    tree.write("a.txt", "twin");
    tree.write("b.txt", "twin");
    tree.write("gone.txt", "twin");
    tree.write("sub/x.txt", "twin");
    const Snapshot before = snapshot(tree.root());
    // The first post comes after the top folder is listed, before any entry
    // of it is examined (the walk lists each folder as it enters it here).
    ActOnce vanish{[](const UserInfo&) { return true; },
                   [&] {
                       std::filesystem::remove(tree.path("gone.txt"));
                       std::filesystem::remove_all(tree.path("sub"));
                   }};

    StdoutCapture out;
    const FileList groups = searchJob(tree.root(), GetParam(), LocationGate::anywhere(), 0);
    EXPECT_EQ(out.finish(), "Error: " + tree.path("gone.txt") +
                                ": No such file or directory\nOoops! Something went wrong: " +
                                tree.path("sub") + ": No such file or directory\n");
    EXPECT_TRUE(vanish.done);
    EXPECT_EQ(groupSets(groups, tree.root()), (Groups{{"a.txt", "b.txt"}}));
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {"gone.txt", "sub", "sub/x.txt"}));
}

TEST_P(EachDigestMode, FilesThatVanishOrChangeBeforeTheirContentsAreReadAreNotCopies) {
    TempTree tree;
    const std::string twin(64, 't');
    tree.write("a", twin);
    tree.write("b", twin);
    tree.write("c", twin);
    tree.write("d", twin);
    const std::string gone = tree.write("e", twin);
    // Once every file has been taken (its size read), d gets other bytes of
    // the same length and e goes, before the comparison reads either.
    ActOnce change{[](const UserInfo& info) { return info.at(kTotalFiles) == 5; },
                   [&] {
                       rewriteInPlace(tree.path("d"), std::string(64, 'd'));
                       ::unlink(gone.c_str());
                   }};
    const Snapshot before = snapshot(tree.root());

    StdoutCapture out;
    const FileList groups = searchJob(tree.root(), GetParam());
    const auto printed = lines(out.finish());
    EXPECT_TRUE(change.done);
    EXPECT_EQ(groupSets(groups, tree.root()), (Groups{{"a", "b", "c"}}));
    ASSERT_EQ(printed.size(), 1u);
    EXPECT_EQ(printed[0], "Ooops! Something went wrong: " + gone + ": No such file or directory");
    Snapshot expected = before;
    expected["d"] = fileEntry(std::string(64, 'd'));
    EXPECT_TRUE(nothingLost(expected, snapshot(tree.root()), {"e"}));
}

TEST(Faults, FilesChangedBetweenSearchAndCleanAreNeverRemoved) {
    TempTree tree;
    for (const char* name : {"f0", "f1", "f2", "f3", "f4", "f5"}) {
        tree.write(name, "contents of the group");
    }
    tree.write("g0", "second group");
    tree.write("g1", "second group");
    const FileList groups = searchJob(tree.root(), 2);
    ASSERT_EQ(groups.size(), 2u);
    for (const FilePtr& g : groups) {
        for (std::size_t k = 1; k < g->duplicates.size(); ++k) {
            g->duplicates[k]->checkState = 1; // everything but the first member
        }
    }
    // Largest first: the group of six, then the pair.
    std::vector<std::string> six;
    for (const DuplicateFilePtr& m : groups[0]->duplicates) {
        six.push_back(m->path);
    }
    ASSERT_EQ(six.size(), 6u);
    const std::string& same = six[1];
    const std::string& vanished = six[2];
    const std::string& rewritten = six[3];
    const std::string& touched = six[4];
    const std::string& replaced = six[5];
    const std::string pairKept = groups[1]->duplicates[0]->path;
    const std::string pairMarked = groups[1]->duplicates[1]->path;

    // Meanwhile, outside the program:
    ::unlink(vanished.c_str());
    rewriteInPlace(rewritten, "CONTENTS OF THE GROUP");
    touchLater(touched);
    const std::string other = tree.write("elsewhere", "contents of the group");
    ::rename(other.c_str(), replaced.c_str());
    // The pair loses its kept copy: the marked one is now the last and stays.
    ::unlink(pairKept.c_str());
    const Snapshot before = snapshot(tree.root());

    StdoutCapture out;
    const CleaningReport report = cleanForGood();
    const auto printed = lines(out.finish());
    EXPECT_EQ(report.removed, 1);
    EXPECT_EQ(report.failed, 5);
    const std::string e = "Error:  ";
    EXPECT_EQ(printed,
              (std::vector<std::string>{
                  e + vanished + ": No such file or directory",
                  e + rewritten + ": changed since the search, not removed",
                  e + touched + ": changed since the search, not removed",
                  e + replaced + ": replaced by another file since the search, not removed",
                  e + pairMarked + ": no kept copy is left to compare with (" + pairKept +
                      ": No such file or directory), not removed"}));
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {same.substr(tree.root().size() + 1)}));
    EXPECT_TRUE(SettingsManager::shared()->duplicateFileList.empty());
}
