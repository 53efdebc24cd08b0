// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "SearchSupport.h"
#include "engine/SearchJob.h"
#include "support/FileDates.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

TEST(SearchRun, NestedFoldersAreDroppedOnlyUnderASlashBoundary) {
    using V = std::vector<std::string>;
    EXPECT_EQ(FileTools::removeNestedFolders({"/Users/a", "/Users/a/b"}), V{"/Users/a"});
    EXPECT_EQ(FileTools::removeNestedFolders({"/Users/a/b", "/Users/a"}), V{"/Users/a"});
    EXPECT_EQ(FileTools::removeNestedFolders({"/Users/a", "/Users/ab"}),
              (V{"/Users/a", "/Users/ab"}));
    EXPECT_EQ(FileTools::removeNestedFolders({"/Users/a", "/"}), V{"/"});
    EXPECT_EQ(FileTools::removeNestedFolders({"/x", "/x"}), (V{"/x", "/x"}));
    EXPECT_EQ(FileTools::removeNestedFolders({}), V{});
}

TEST(SearchRun, ANestedFolderIsWalkedOnceAndProgressCountsEveryComparisonStep) {
    TempTree tree;
    for (const char* name : {"a/f1", "a/b/f2", "a/b/f3", "one/f"}) {
        tree.write(name, "same");
    }
    tree.mkdir("empty");
    FileTools tools, once; // an engine runs one search
    prepare(tools, 2);
    prepare(once, 2);
    PostLog log;
    // No file and one file need no comparison, but a post with both counts.
    EXPECT_TRUE(search(once, {tree.path("empty")}).empty());
    EXPECT_TRUE(search(once, {}).empty());
    ASSERT_FALSE(log.posts.empty());
    EXPECT_EQ(log.posts.back().total, 0);
    EXPECT_EQ(log.posts.back().checked, 0);
    const FileList one = search(once, {tree.path("one")});
    ASSERT_EQ(one.size(), 1U);
    EXPECT_TRUE(one[0]->duplicates.empty());
    EXPECT_TRUE(log.checkedSequence().empty());

    const FileList heads = search(tools, {tree.path("a"), tree.path("a/b")});
    // The walked list itself became the heads: no second list is held.
    EXPECT_TRUE(tools.fileList.empty());
    ASSERT_EQ(heads.size(), 1U);
    EXPECT_EQ(heads[0]->duplicates.size(), 2U);
    EXPECT_EQ(log.checkedSequence(), (std::vector<std::int64_t>{1, 2, 3}));
    EXPECT_EQ(log.count(kSearchThreadFinished), 0);
    for (const auto& p : log.posts) {
        EXPECT_GE(p.total, 0); // both keys on every post
    }
    EXPECT_EQ(log.posts.back().total, 3);
    EXPECT_EQ(log.posts.back().checked, 3);
}

TEST(SearchRun, CancellingInAnyPhasePostsOneFinishAndReturnsNothing) {
    TempTree tree;
    for (int k = 0; k < 40; ++k) {
        tree.write("d" + std::to_string(k % 4) + "/f" + std::to_string(k),
                   std::string(static_cast<std::size_t>(k % 5 + 1), 'x'));
    }
    const std::pair<const char*, std::function<bool(const PostLog::Post&)>> cancelWhen[] = {
        {"walk", [](const PostLog::Post& p) { return p.checked == 0 && p.total == 10; }},
        {"comparison", [](const PostLog::Post& p) { return p.checked == 20; }},
        {"collection", [](const PostLog::Post& p) { return p.checked == 40; }},
    };
    for (unsigned threads : {0U, 2U}) {
        for (const auto& [phase, when] : cancelWhen) {
            SettingsManager& settings = *SettingsManager::shared();
            FileTools tools;
            prepare(tools, threads);
            settings.listFolderPaths = {tree.root()};
            settings.minimumFileSize = 0;
            settings.duplicateFileList.clear();
            PostLog log;
            log.onPost = [&](const PostLog::Post& p) {
                if (when(p)) {
                    settings.searchCanceledByUser = true;
                }
            };
            EXPECT_FALSE(runSearchJob(settings, tools)) << phase;
            EXPECT_EQ(log.count(kSearchThreadFinished), 1) << phase;
            EXPECT_EQ(log.posts.back().name, kSearchThreadFinished) << phase;
            EXPECT_TRUE(settings.duplicateFileList.empty()) << phase;
            EXPECT_TRUE(settings.fileList.empty());
            settings.searchCanceledByUser = false;
        }
    }
}

TEST(SearchRun, SearchJobPutsEachHeadsOwnEntryFirst) {
    TempTree tree;
    tree.write("a.jpg", "picture");
    tree.write("b.jpg", "picture");
    tree.write("c.txt", "lonely");
    SettingsManager& settings = *SettingsManager::shared();
    settings.listFolderPaths = {tree.root()};
    settings.minimumFileSize = 0;
    settings.customFileTypes = true;
    settings.duplicateFileList.clear();
    settings.listFileExtensions = {"jpg"};
    FileTools tools;
    prepare(tools, 2);
    EXPECT_TRUE(runSearchJob(settings, tools));
    settings.customFileTypes = false;
    EXPECT_TRUE(settings.fileList.empty());
    ASSERT_EQ(settings.duplicateFileList.size(), 1U);
    const FilePtr head = settings.duplicateFileList[0];
    ASSERT_EQ(head->duplicates.size(), 2U);
    EXPECT_EQ(head->duplicates[0]->path, head->path);
    EXPECT_EQ(head->duplicates[0]->seen, identityOf(head->path));
    EXPECT_EQ(head->duplicates[0]->date, creationDateOf(head->path));
    EXPECT_EQ(head->duplicates[1]->date, creationDateOf(head->duplicates[1]->path));
    EXPECT_NE(head->duplicates[1]->path, head->path);
    settings.duplicateFileList.clear();
}
