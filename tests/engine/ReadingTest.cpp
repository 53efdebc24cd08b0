// SPDX-License-Identifier: GPL-3.0-or-later
// Contents and dates are read through the folder the walk found a file in:
// at any depth, and after the group's own head was cleaned.
#include <gtest/gtest.h>

#include <climits>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "SearchSupport.h"
#include "engine/SearchJob.h"
#include "export/ResultsExport.h"
#include "removal/Fd.h"
#include "removal/PlatformRemover.h"
#include "selection/Cleaning.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Paths = std::vector<std::string>;

namespace {

// The creation date text of an open file, as the member dates are written,
// read from the descriptor and not through the engine.
std::string dateOf(int fd) {
    struct statx stx {};
    EXPECT_EQ(::statx(fd, "", AT_EMPTY_PATH, STATX_BTIME | STATX_MTIME, &stx), 0);
    const std::time_t t =
        (stx.stx_mask & STATX_BTIME) != 0 ? stx.stx_btime.tv_sec : stx.stx_mtime.tv_sec;
    std::tm local{};
    ::localtime_r(&t, &local);
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, "%y-%m-%d %I:%M:%S", &local));
}

struct YesPrompt : CleaningPrompt {
    bool ask(CleaningAlert) override { return true; }
};

} // namespace

TEST(Reading, FilesDeeperThanPathMaxAreComparedAndDatedWhereTheyLie) {
    TempTree tree;
    // 24 levels of 200-character names: the folder's path is about 4,850 bytes.
    const std::string name(200, 'n');
    Fd at(::open(tree.root().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::string deep = tree.root();
    for (int level = 0; level < 24; ++level) {
        ASSERT_EQ(::mkdirat(at.get(), name.c_str(), 0755), 0);
        at.reset(::openat(at.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ASSERT_TRUE(at.ok());
        deep += "/" + name;
    }
    ASSERT_GT(deep.size(), static_cast<std::size_t>(PATH_MAX));
    std::map<std::string, std::string> dates;
    for (const auto& [file, bytes] : std::vector<std::pair<std::string, std::string>>{
             {"a", "AAAAAAAA"}, {"b", "BBBBBBBB"}, {"c", "CCCCCCCC"}, {"d", "CCCCCCCC"}}) {
        const Fd f(::openat(at.get(), file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
        ASSERT_EQ(::write(f.get(), bytes.data(), bytes.size()), 8);
        dates[file] = dateOf(f.get());
    }
    for (unsigned threads : {0U, 2U}) {
        FileTools tools;
        prepare(tools, threads);
        DiagnosticsCapture out;
        const FileList heads = search(tools, {tree.root()});
        EXPECT_EQ(lines(out.finish()), Paths{}) << threads;
        // a and b differ: each is alone; c and d are one group.
        ASSERT_EQ(groupLines(heads, deep), (Paths{"d c", "a", "b"})) << threads;
        EXPECT_EQ(tools.digestText(*heads[0]), "Ezut+NobRKcGPKhj2yuKqA==");
        EXPECT_EQ(heads[0]->duplicates[0]->date, dates["c"]);
        EXPECT_EQ(FileTools::fileDateText(heads[0]->path, DateKind::Creation, heads[0]->folder),
                  dates["d"]);
    }
}

TEST(Reading, TheDigestOfAGroupWhoseHeadWasCleanedComesFromAMemberLeft) {
    TempTree tree;
    for (const char* name : {"Users/a.dat", "Users/b.dat", "Users/c.dat"}) {
        tree.write(name, "group bytes");
    }
    SettingsManager settings;
    settings.listFolderPaths = {tree.path("Users")};
    settings.minimumFileSize = 1;
    settings.moveToTrash = false;
    FileTools tools;
    prepare(tools, 2); // compared by bytes: no digest yet
    ASSERT_TRUE(runSearchJob(settings, tools));
    ASSERT_EQ(settings.duplicateFileList.size(), 1u);
    FilePtr group = settings.duplicateFileList[0];
    ASSERT_EQ(group->duplicates[0]->path, group->path);
    group->duplicates[0]->checkState = 1; // the head's own entry
    YesPrompt yes;
    PlatformRemover remover;
    DiagnosticsCapture out;
    const CleaningReport report = clean(settings.duplicateFileList, settings, yes, remover);
    EXPECT_EQ(report.failed, 0);
    ASSERT_EQ(group->duplicates.size(), 2u);
    std::string json;
    writeJsonExport({group}, tools, {}, [&](std::string_view piece) {
        json.append(piece);
        return true;
    });
    EXPECT_EQ(lines(out.finish()), Paths{});
    EXPECT_NE(json.find("\"md5\":\"E4MU/eRM2nA2SSNk6OJaOw==\""), std::string::npos) << json;
}

TEST(Reading, AFolderSwappedAfterTheWalkIsNeverReadThrough) {
    // Between the walk and the comparison, another user's process moves the
    // walked folder away and puts a folder of other files under its name.
    // The comparison still reads the files the walk found, in the folder it
    // walked, never the stand-in's.
    TempTree tree;
    tree.write("x/a", "walked!!");
    tree.write("x/b", "walked!!");
    tree.write("y/c", "walked!!");
    auto openDescriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    };
    {
        FileTools first; // lets go of what earlier looks outside a search kept
        prepare(first, 0);
        search(first, {tree.path("y")});
    }
    const auto before = openDescriptors();
    for (unsigned threads : {0U, 2U}) {
        FileTools tools;
        prepare(tools, threads);
        PostLog log;
        bool swapped = false;
        log.onPost = [&](const PostLog::Post& p) {
            if (!swapped && p.name == kUpdateProgress && p.checked == 0 && p.total == 3) {
                swapped = true;
                ASSERT_EQ(::rename(tree.path("x").c_str(), tree.path("x-away").c_str()), 0);
                tree.write("x/a", "standin1");
                tree.write("x/b", "standin2");
            }
        };
        DiagnosticsCapture out;
        const FileList heads = search(tools, {tree.root()});
        EXPECT_TRUE(swapped) << threads;
        EXPECT_EQ(lines(out.finish()), Paths{}) << threads;
        ASSERT_EQ(groupLines(heads, tree.root()), (Paths{"y/c x/a x/b"})) << threads;
        std::filesystem::remove_all(tree.path("x"));
        std::filesystem::remove_all(tree.path("x-away"));
        tree.write("x/a", "walked!!");
        tree.write("x/b", "walked!!");
        // The folders kept open for the search are all let go with it.
        EXPECT_EQ(openDescriptors() - before, 0) << threads;
    }
}
