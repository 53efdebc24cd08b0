// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

#include "SearchSupport.h"
#include "engine/FileTools.h"
#include "engine/FolderRegistry.h"
#include "engine/TextCase.h"
#include "settings/SettingsManager.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Paths = std::vector<std::string>;

namespace {

class Walker : public ::testing::Test {
  protected:
    // A fresh engine on the test's context, gated to the Mac layout under the tree.
    FileTools& engine() {
        tools.emplace();
        tools->useContext(context);
        tools->locationGate = LocationGate::macLayoutUnder(tree.root());
        return *tools;
    }
    // The files of the last walk, relative to the tree.
    Paths found() const {
        Paths out;
        for (const auto& f : tools->fileList) {
            out.push_back(f->path.substr(tree.root().size() + 1));
        }
        return out;
    }
    Paths walk(const Paths& folders, bool ignorePackages = true, const Paths& exts = {},
               std::uint64_t min = 0, std::uint64_t max = UINT64_MAX) {
        engine().scanFolders(folders, ignorePackages, exts, min, max);
        return found();
    }

    TempTree tree;
    AtomicFlag cancel;
    SearchContext context{cancel};
    std::optional<FileTools> tools;
};

} // namespace

TEST_F(Walker, LocationGateKeepsToTheThreeRootsAndSkipsOnlyTheHomeLibrary) {
    for (const char* name :
         {"Users/bob/a.txt", "Users/bob/Library/prefs.txt", "Users/bob/docs/Library/deep.txt",
          "Users2/stray.txt", "Applications/Tool/t.txt", "Volumes/Disk/Users/bob/Library/v.txt",
          "Library/Fonts/f.ttf", "Other/o.txt"}) {
        tree.write(name, "x");
    }
    // "Users2" passes: the roots are plain text prefixes.
    EXPECT_EQ(walk({tree.root()}), (Paths{"Applications/Tool/t.txt", "Users/bob/a.txt",
                                          "Users/bob/docs/Library/deep.txt", "Users2/stray.txt",
                                          "Volumes/Disk/Users/bob/Library/v.txt"}));
    // A home Library added by itself is walked: its entries are not a home's Library.
    EXPECT_EQ(walk({tree.path("Users/bob/Library")}), (Paths{"Users/bob/Library/prefs.txt"}));
    // Entries outside the roots fail the gate even when their folder is listed.
    EXPECT_EQ(walk({tree.path("Library/Fonts")}), Paths{});
    engine().locationGate = LocationGate::anywhere();
    tools->scanFolders({tree.path("Other")}, true, {}, 0, UINT64_MAX);
    EXPECT_EQ(found(), Paths{"Other/o.txt"});
}

TEST_F(Walker, OrderIsByNameDepthFirstFolderByFolderWithoutHiddenNamesOrBrokenLinks) {
    for (const char* name : {"b/z.txt", "b/a/2.txt", "b/a/1.txt", "b/B.txt", "b/m.txt", "c/x.txt",
                             "b/.DS_Store", "b/.git/config"}) {
        tree.write(std::string("Users/") + name, "x");
    }
    tree.symlink(tree.path("Users/b/nowhere"), "Users/b/broken"); // loops: see the fault tests
    EXPECT_EQ(walk({tree.path("Users/c"), tree.path("Users/b")}),
              (Paths{"Users/c/x.txt", "Users/b/B.txt", "Users/b/a/1.txt", "Users/b/a/2.txt",
                     "Users/b/m.txt", "Users/b/z.txt"}));
}

TEST_F(Walker, ExtensionsAreLowerCasedLetterByLetterInAnyScript) {
    tree.write("Users/b/x.ÉPS", "1");
    tree.write("Users/b/y.éps", "2");
    tree.write("Users/b/z.EPS", "3");
    tree.write("Users/b/w.\xC9PS", "4"); // not UTF-8: only ASCII letters change
    EXPECT_EQ(walk({tree.path("Users")}, true, {lowerCased("ÉPS")}),
              (Paths{"Users/b/x.ÉPS", "Users/b/y.éps"}));
    EXPECT_EQ(tools->fileList[0]->ext, "éps");
    EXPECT_EQ(walk({tree.path("Users")}, true, {"eps"}), (Paths{"Users/b/z.EPS"}));
    EXPECT_EQ(extensionOf("/a/w.\xC9PS"), "\xC9ps");
    EXPECT_EQ(extensionOf("/a/Ü.ΣΑΒ"), "σαβ");
}

TEST_F(Walker, PackagesAreSkippedOrTakenWholeWithHiddenContentsCounted) {
    tree.write("Users/b/Mail.app/Contents/Info.plist", std::string(100, 'i'));
    tree.write("Users/b/Mail.app/Contents/.hidden", std::string(20, 'h'));
    tree.write("Users/b/Mail.app/top", std::string(3, 't'));
    tree.write("Users/b/x.pkg", "plain file with a package extension");
    tree.write("Users/b/keep.txt", "k");
    EXPECT_EQ(walk({tree.path("Users")}, true), (Paths{"Users/b/keep.txt"}));

    DiagnosticsCapture out;
    EXPECT_EQ(walk({tree.path("Users")}, false),
              (Paths{"Users/b/Mail.app", "Users/b/keep.txt", "Users/b/x.pkg"}));
    EXPECT_EQ(lines(out.finish()),
              (std::vector<std::string>{"Ooops! Something went wrong: " +
                                        tree.path("Users/b/x.pkg") + ": Not a directory"}));
    EXPECT_EQ(tools->fileList[0]->size, 123u);
    EXPECT_EQ(tools->fileList[0]->ext, "app");
    // A regular file with a package extension can't be listed as a package: size 0.
    EXPECT_EQ(tools->fileList[2]->size, 0u);
}

TEST_F(Walker, ExtensionFilterAndSizeRangeAreExactAndInclusive) {
    for (const char* name : {"a.JPG", "b.jpeg", "README", "archive.tar.gz"}) {
        tree.write(std::string("Users/b/") + name, "12345");
    }
    EXPECT_EQ(walk({tree.path("Users")}, true, {"jpg"}), (Paths{"Users/b/a.JPG"}));
    EXPECT_EQ(walk({tree.path("Users")}, true, {""}), (Paths{"Users/b/README"}));
    EXPECT_EQ(walk({tree.path("Users")}, true, {"gz"}), (Paths{"Users/b/archive.tar.gz"}));

    for (int size : {4, 5, 9, 10}) {
        tree.write("Users/s/" + std::to_string(size), std::string(size, 'x'));
    }
    EXPECT_EQ(walk({tree.path("Users/s")}, true, {}, 5, 9), (Paths{"Users/s/5", "Users/s/9"}));
}

TEST_F(Walker, CancellingFromAnotherThreadStopsEveryLevelAndKeepsWhatWasFound) {
    for (int k = 0; k < 100; ++k) {
        tree.write("Users/b/d" + std::to_string(k / 20) + "/f" + std::to_string(k % 20), "x");
    }
    for (int stopAfter : {1, 7, 30, 64}) {
        cancel = false;
        int seen = 0;
        ScopedObserver watch(kUpdateProgress, [&](const std::string&, const UserInfo&) {
            if (++seen == stopAfter) {
                std::thread([this] { cancel = true; }).join();
            }
        });
        EXPECT_LT(walk({tree.path("Users")}).size(), 100u) << stopAfter;
        // Each level returns at its next test and posts once on the way out.
        EXPECT_LE(seen, stopAfter + 4) << stopAfter;
    }
    cancel = true;
    EXPECT_TRUE(walk({tree.path("Users")}).empty());
    EXPECT_EQ(tools->packageSize(tree.path("Users/b")), 0u);
}

TEST_F(Walker, EntriesThatFailTheExistenceTestAreSkippedSilently) {
    tree.write("Users/b/a.txt", "a");
    tree.write("Users/b/gone.txt", "g");
    tree.write("Users/b/sub/x.txt", "x");
    tree.write("Users/b/z.txt", "z");
    engine().walkThreads = 0; // the listing is taken exactly when the walk enters a folder
    int posts = 0;
    ScopedObserver watch(kUpdateProgress, [&](const std::string&, const UserInfo&) {
        if (++posts == 2) { // Users/b is listed, none of its entries examined yet
            ::unlink(tree.path("Users/b/gone.txt").c_str());
            ::unlink(tree.path("Users/b/sub/x.txt").c_str());
            ::rmdir(tree.path("Users/b/sub").c_str());
        }
    });
    DiagnosticsCapture out;
    tools->scanFolders({tree.path("Users")}, true, {}, 0, UINT64_MAX);
    EXPECT_EQ(lines(out.finish()), Paths{});
    EXPECT_EQ(found(), (Paths{"Users/b/a.txt", "Users/b/z.txt"}));
}

TEST_F(Walker, AFolderThatCanBeListedButNotSearchedGivesNothingAndSaysNothing) {
    for (const char* name : {"Users/c/locked/a.txt", "Users/c/locked/b.txt", "Users/c/open/e1.txt",
                             "Users/c/open/e2.txt"}) {
        tree.write(name, "");
    }
    tree.write("Users/c/locked/sub/s.txt", "12");
    tree.write("Users/c/open/p.txt", "12");
    tree.write("Users/c/open/q.txt", "12");
    tree.write("Users/c/unlisted/u.txt", "12");
    tree.openToEveryone();
    ASSERT_EQ(::chmod(tree.path("Users/c/locked").c_str(), 0444), 0);
    ASSERT_EQ(::chmod(tree.path("Users/c/unlisted").c_str(), 0111), 0);
    // As root every folder could be searched; with --min-size 0. The child
    // hands back what it said and found through a pipe.
    int pipeEnds[2];
    ASSERT_EQ(::pipe(pipeEnds), 0);
    const int status = runUnprivileged([&] {
        for (unsigned threads : {0U, 3U}) {
            FileTools t;
            prepare(t, 1);
            t.walkThreads = threads;
            t.walkAheadAfter = std::chrono::nanoseconds(0);
            const AtomicFlag never;
            CollectedDiagnostics said;
            SearchContext run(never, said);
            const FileList heads =
                t.findDuplicateFiles(run, {tree.path("Users")}, 0, UINT64_MAX, true, {});
            std::vector<std::string> out = said.lines();
            for (const std::string& line : groupLines(heads, tree.root())) {
                out.push_back(line);
            }
            const std::string text = joined(out);
            (void)!::write(pipeEnds[1], text.data(), text.size());
        }
        return 0;
    });
    ::close(pipeEnds[1]);
    std::string printed;
    char buffer[4096];
    for (ssize_t n; (n = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;) {
        printed.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(pipeEnds[0]);
    EXPECT_EQ(status, 0);
    // Only the folder that can't be listed at all says so.
    const std::string unlisted =
        "Ooops! Something went wrong: " + tree.path("Users/c/unlisted") + ": Permission denied";
    const Paths once{unlisted, "Users/c/open/q.txt Users/c/open/p.txt",
                     "Users/c/open/e1.txt Users/c/open/e2.txt"};
    Paths twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(lines(printed), twice);
}

TEST_F(Walker, ListingAheadOnThreadsChangesNothingTheWalkShows) {
    // More entries than the threads' budget, links, hidden names, packages, a folder twice.
    for (int d = 0; d < 60; ++d) {
        for (int f = 0; f < 300; ++f) {
            const std::string dir = "Users/b/" + std::to_string(d % 7) + "/" + std::to_string(d);
            tree.write(dir + "/" + std::to_string(f) + (f % 9 == 0 ? ".app" : ".txt"),
                       std::string(static_cast<std::size_t>(f % 13), 'x'));
        }
    }
    tree.write("Users/b/3/.hidden/h", "h");
    tree.write("Users/b/Tool.app/Contents/bin", "12345");
    tree.symlink(tree.path("Users/b/5"), "Users/b/0/link");
    tree.symlink(tree.path("Users/b"), "Users/b/6/up");
    using Post = std::pair<std::int64_t, std::int64_t>;
    auto run = [&](unsigned threads, bool ignorePackages) {
        std::vector<Post> posts;
        ScopedObserver watch(kUpdateProgress, [&](const std::string&, const UserInfo& info) {
            posts.emplace_back(info.at(kTotalFiles), info.at(kCheckedFiles));
        });
        FileTools& t = engine();
        t.walkThreads = threads;
        t.walkAheadAfter = {}; // as on a cold cache
        DiagnosticsCapture out;
        t.scanFolders({tree.path("Users/b/2"), tree.path("Users")}, ignorePackages, {"txt", "app"},
                      1, 11);
        Paths files = lines(out.finish());
        for (const auto& f : t.fileList) {
            files.push_back(f->path + " " + std::to_string(f->size));
        }
        return std::make_pair(files, posts);
    };
    for (bool ignorePackages : {true, false}) {
        const auto serial = run(0, ignorePackages);
        EXPECT_GT(serial.first.size(), 10000u);
        EXPECT_EQ(run(4, ignorePackages), serial);
    }
}

TEST_F(Walker, TwentyThousandLevelsAreWalkedInOrderWithFewDescriptors) {
    // Making 20,000 folders takes a minute on ext4 and a second in memory.
    const TempTree deep(::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "");
    const std::string top = deep.mkdir("Users/deep");
    // A chain of folders "d", made relative to open folders (its paths are far
    // longer than PATH_MAX), with a file "f" of size level / 5000 + 1 every 5000 levels.
    int fd = ::open(top.c_str(), O_RDONLY | O_DIRECTORY);
    for (int level = 0; level <= 20000; ++level) {
        if (level % 5000 == 0) {
            const int f = ::openat(fd, "f", O_WRONLY | O_CREAT, 0644);
            EXPECT_EQ(::ftruncate(f, level / 5000 + 1), 0);
            ::close(f);
        }
        if (level < 20000) {
            EXPECT_EQ(::mkdirat(fd, "d", 0755), 0);
            const int next = ::openat(fd, "d", O_RDONLY | O_DIRECTORY);
            ::close(fd);
            fd = next;
        }
    }
    ::close(fd);
    // Far fewer descriptors than levels; the limit and the tree go back
    // however the test ends (its own removal goes by path, and these paths
    // are too long for it).
    rlimit saved{};
    ::getrlimit(RLIMIT_NOFILE, &saved);
    rlimit low = saved;
    low.rlim_cur = 256;
    ::setrlimit(RLIMIT_NOFILE, &low);
    struct Restore {
        rlimit limit;
        std::string tree;
        ~Restore() {
            ::setrlimit(RLIMIT_NOFILE, &limit);
            EXPECT_EQ(std::system(("rm -rf '" + tree + "'").c_str()), 0);
        }
    } restore{saved, top};
    for (unsigned threads : {0U, 3U}) {
        FileTools& t = engine();
        t.locationGate = LocationGate::anywhere();
        t.walkThreads = threads;
        t.walkAheadAfter = {};
        t.scanFolders({top}, true, {}, 0, UINT64_MAX);
        ASSERT_EQ(t.fileList.size(), 5u) << threads;
        // "d" sorts before "f": the deepest file comes first.
        for (std::size_t k = 0; k < 5; ++k) {
            EXPECT_EQ(t.fileList[k]->size, 5 - k);
            EXPECT_EQ(t.fileList[k]->path.size(), top.size() + 2 * (4 - k) * 5000 + 2);
        }
        EXPECT_NE(FolderRegistry::at(t.fileList.back()->folder).inode, 0u);
        EXPECT_EQ(t.packageSize(top), 15u);
    }
}
