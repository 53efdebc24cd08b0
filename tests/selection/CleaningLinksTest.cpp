// SPDX-License-Identifier: GPL-3.0-or-later
// Cleaning with hard links when a group has every copy marked: asked as what
// happens, nothing linked there, the group stays listed.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "Groups.h"
#include "removal/PlatformRemover.h"
#include "selection/Cleaning.h"
#include "selection/KeepOptions.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

struct Asked : CleaningPrompt {
    std::vector<CleaningAlert> asked;
    bool ask(CleaningAlert alert) override {
        asked.push_back(alert);
        return true;
    }
};

} // namespace

TEST(CleaningLinks, AWholeGroupIsLeftListedAndTheQuestionSaysSo) {
    EXPECT_EQ(alertText(CleaningAlert::WholeGroupsLinked).informativeText,
              "Some groups have every copy selected; with hard links, those groups are left as "
              "they are. Continue?");
    EXPECT_EQ(alertText(CleaningAlert::WholeGroupsLinked).buttons,
              (std::vector<std::string>{"Yes", "No"}));
    EXPECT_EQ(alertText(CleaningAlert::NothingLinked).informativeText,
              "No selected copy could be replaced by a hard link; every file was left as it was.");
    EXPECT_EQ(alertText(CleaningAlert::NothingLinked).buttons, (std::vector<std::string>{"OK"}));

    TempTree tree;
    const FilePtr whole =
        makeGroup({{tree.write("a/1.jpg", "abc"), ""}, {tree.write("b/1.jpg", "abc"), ""}});
    const FilePtr pair =
        makeGroup({{tree.write("a/2.txt", "zz"), ""}, {tree.write("b/2.txt", "zz"), ""}});
    SettingsManager s;
    s.replaceWithHardLinks = true;
    s.moveToTrash = false;
    s.duplicateFileList = {whole, pair};
    applyKeepOption(*whole, kRemoveAll, s.duplicateFileList);
    Asked prompt;
    PlatformRemover remover;

    // The whole group alone: nothing linked, nothing leaves the list.
    CleaningReport r = clean({whole}, s, prompt, remover);
    EXPECT_EQ(prompt.asked, (std::vector<CleaningAlert>{CleaningAlert::WholeGroupsLinked}));
    EXPECT_EQ(r.removed, 0);
    EXPECT_EQ(r.failed, 2);
    EXPECT_EQ(s.duplicateFileList, (FileList{whole, pair}));
    EXPECT_EQ(whole->duplicates.size(), 2u);

    // With a group that keeps a copy: that one is linked and leaves the list.
    pair->duplicates[1]->checkState = 1;
    prompt.asked.clear();
    r = clean({whole, pair}, s, prompt, remover);
    EXPECT_EQ(prompt.asked, (std::vector<CleaningAlert>{CleaningAlert::WholeGroupsLinked}));
    EXPECT_EQ(r.removed, 1);
    EXPECT_EQ(r.failed, 2);
    EXPECT_EQ(s.duplicateFileList, (FileList{whole}));
    EXPECT_EQ(whole->duplicates.size(), 2u);
    struct stat a {};
    struct stat b {};
    ASSERT_EQ(::stat(tree.path("a/2.txt").c_str(), &a), 0);
    ASSERT_EQ(::stat(tree.path("b/2.txt").c_str(), &b), 0);
    EXPECT_EQ(a.st_ino, b.st_ino);
    EXPECT_EQ(tree.snapshot().at("b/1.jpg"), "abc");
}
