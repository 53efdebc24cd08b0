#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "engine/FileTools.h"
#include "engine/FolderRegistry.h"
#include "settings/SettingsManager.h"
#include "support/TempTree.h"

using namespace twinsweep;
using twinsweep::testing::StdoutCapture;
using twinsweep::testing::TempTree;

namespace {

class Walker : public ::testing::Test {
  protected:
    void SetUp() override { SettingsManager::shared()->searchCanceledByUser = false; }
    void TearDown() override { SettingsManager::shared()->searchCanceledByUser = false; }

    // Walks folders with the Mac layout under the tree and every size accepted.
    std::vector<std::string> walk(const std::vector<std::string>& folders,
                                  bool ignorePackages = true,
                                  const std::vector<std::string>& exts = {}, std::uint64_t min = 0,
                                  std::uint64_t max = UINT64_MAX) {
        FileTools tools;
        tools.locationGate = LocationGate::macLayoutUnder(tree.root());
        tools.scanFolders(folders, ignorePackages, exts, min, max);
        std::vector<std::string> out;
        for (const auto& f : tools.fileList) {
            out.push_back(f->path.substr(tree.root().size() + 1));
        }
        return out;
    }

    TempTree tree;
};

using Paths = std::vector<std::string>;

} // namespace

TEST_F(Walker, LocationGateKeepsToTheThreeRootsAndSkipsOnlyTheHomeLibrary) {
    tree.write("Users/bob/a.txt", "a");
    tree.write("Users/bob/Library/prefs.txt", "p");
    tree.write("Users/bob/docs/Library/deep.txt", "d");
    tree.write("Users2/stray.txt", "s"); // plain text prefix: passes
    tree.write("Applications/Tool/t.txt", "t");
    tree.write("Volumes/Disk/Users/bob/Library/v.txt", "v");
    tree.write("Library/Fonts/f.ttf", "f");
    tree.write("Other/o.txt", "o");

    EXPECT_EQ(walk({tree.root()}), (Paths{"Applications/Tool/t.txt", "Users/bob/a.txt",
                                          "Users/bob/docs/Library/deep.txt", "Users2/stray.txt",
                                          "Volumes/Disk/Users/bob/Library/v.txt"}));
    // A home Library added by itself is walked: its entries are not a home's Library.
    EXPECT_EQ(walk({tree.path("Users/bob/Library")}), (Paths{"Users/bob/Library/prefs.txt"}));
    // Entries outside the roots fail the gate even when their folder is listed.
    EXPECT_EQ(walk({tree.path("Library/Fonts")}), Paths{});
    // No gate at all.
    FileTools open;
    open.locationGate = LocationGate::anywhere();
    open.scanFolders({tree.path("Other")}, true, {}, 0, UINT64_MAX);
    ASSERT_EQ(open.fileList.size(), 1u);
}

TEST_F(Walker, OrderIsByNameDepthFirstAndFolderByFolder) {
    tree.write("Users/b/z.txt", "1");
    tree.write("Users/b/a/2.txt", "2");
    tree.write("Users/b/a/1.txt", "3");
    tree.write("Users/b/B.txt", "4");
    tree.write("Users/b/m.txt", "5");
    tree.write("Users/c/x.txt", "6");
    EXPECT_EQ(walk({tree.path("Users/c"), tree.path("Users/b")}),
              (Paths{"Users/c/x.txt", "Users/b/B.txt", "Users/b/a/1.txt", "Users/b/a/2.txt",
                     "Users/b/m.txt", "Users/b/z.txt"}));
}

TEST_F(Walker, HiddenNamesAreSkippedWithEverythingInside) {
    tree.write("Users/b/.DS_Store", "x");
    tree.write("Users/b/.git/config", "x");
    tree.write("Users/b/seen.txt", "x");
    EXPECT_EQ(walk({tree.path("Users")}), (Paths{"Users/b/seen.txt"}));
}

TEST_F(Walker, PackagesAreSkippedOrTakenWholeWithHiddenContentsCounted) {
    tree.write("Users/b/Mail.app/Contents/Info.plist", std::string(100, 'i'));
    tree.write("Users/b/Mail.app/Contents/.hidden", std::string(20, 'h'));
    tree.write("Users/b/Mail.app/top", std::string(3, 't'));
    tree.write("Users/b/x.pkg", "plain file with a package extension");
    tree.write("Users/b/keep.txt", "k");

    EXPECT_EQ(walk({tree.path("Users")}, true), (Paths{"Users/b/keep.txt"}));

    StdoutCapture out;
    FileTools tools;
    tools.locationGate = LocationGate::macLayoutUnder(tree.root());
    tools.scanFolders({tree.path("Users")}, false, {}, 0, UINT64_MAX);
    const auto printed = twinsweep::testing::lines(out.finish());
    ASSERT_EQ(tools.fileList.size(), 3u);
    EXPECT_EQ(tools.fileList[0]->path, tree.path("Users/b/Mail.app"));
    EXPECT_EQ(tools.fileList[0]->size, 123u);
    EXPECT_EQ(tools.fileList[0]->ext, "app");
    EXPECT_EQ(tools.fileList[1]->path, tree.path("Users/b/keep.txt"));
    // A regular file with a package extension can't be listed as a package: size 0.
    EXPECT_EQ(tools.fileList[2]->path, tree.path("Users/b/x.pkg"));
    EXPECT_EQ(tools.fileList[2]->size, 0u);
    ASSERT_EQ(printed.size(), 1u);
    EXPECT_TRUE(printed[0].starts_with("Ooops! Something went wrong: ")) << printed[0];
    EXPECT_NE(printed[0].find("x.pkg"), std::string::npos);
    EXPECT_EQ(tools.packageSize(tree.path("Users/b/Mail.app/Contents")), 120u);
}

TEST_F(Walker, ExtensionFilterAndSizeRangeAreExactAndInclusive) {
    tree.write("Users/b/a.JPG", "12345");
    tree.write("Users/b/b.jpeg", "12345");
    tree.write("Users/b/README", "12345");
    tree.write("Users/b/archive.tar.gz", "12345");
    EXPECT_EQ(walk({tree.path("Users")}, true, {"jpg"}), (Paths{"Users/b/a.JPG"}));
    EXPECT_EQ(walk({tree.path("Users")}, true, {""}), (Paths{"Users/b/README"}));
    EXPECT_EQ(walk({tree.path("Users")}, true, {"gz"}), (Paths{"Users/b/archive.tar.gz"}));

    tree.write("Users/s/4", "1234");
    tree.write("Users/s/5", "12345");
    tree.write("Users/s/9", "123456789");
    tree.write("Users/s/10", "1234567890");
    EXPECT_EQ(walk({tree.path("Users/s")}, true, {}, 5, 9), (Paths{"Users/s/5", "Users/s/9"}));
}

TEST_F(Walker, AnUnlistableTopFolderMeansNothingFromTheWholeCall) {
    tree.write("Users/b/a.txt", "a");
    StdoutCapture out;
    EXPECT_EQ(walk({tree.path("Users/b"), tree.path("Users/missing")}), Paths{});
    const auto printed = twinsweep::testing::lines(out.finish());
    ASSERT_EQ(printed.size(), 1u);
    EXPECT_EQ(printed[0], "Ooops! Something went wrong: " + tree.path("Users/missing") +
                              ": No such file or directory");
}

TEST_F(Walker, AnUnlistableSubfolderIsSkippedAndTheWalkGoesOn) {
    tree.write("Users/b/a/locked/secret.txt", "s");
    tree.write("Users/b/z.txt", "z");
    tree.openToEveryone();
    ::chmod(tree.path("Users/b/a/locked").c_str(), 0);
    StdoutCapture out;
    // 1: only z.txt found; 2: something else.
    const int result = twinsweep::testing::runUnprivileged(
        [&] { return walk({tree.path("Users")}) == Paths{"Users/b/z.txt"} ? 1 : 2; });
    const auto printed = twinsweep::testing::lines(out.finish());
    EXPECT_EQ(result, 1);
    ASSERT_EQ(printed.size(), 1u);
    EXPECT_EQ(printed[0], "Ooops! Something went wrong: " + tree.path("Users/b/a/locked") +
                              ": Permission denied");
}

TEST_F(Walker, LinksLoopsHardLinksAndSpecialFilesAreTakenSafely) {
    tree.write("Users/b/data/file.txt", "payload");
    tree.symlink(tree.path("Users/b"), "Users/b/data/up");         // loop back to an ancestor
    tree.symlink(tree.path("Users/b/data"), "Users/b/alias");      // the same folder twice
    tree.symlink(tree.path("Users/b/data/file.txt"), "Users/b/l"); // link to a file
    tree.symlink(tree.path("Users/b/nowhere"), "Users/b/broken");
    ASSERT_EQ(::link(tree.path("Users/b/data/file.txt").c_str(), tree.path("Users/b/hard").c_str()),
              0);
    ASSERT_EQ(::mkfifo(tree.path("Users/b/fifo").c_str(), 0644), 0);
    const std::string sockPath = tree.path("Users/b/sock");
    const int sock = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    if (sockPath.size() < sizeof(addr.sun_path)) {
        std::copy(sockPath.begin(), sockPath.end(), addr.sun_path);
        ASSERT_EQ(::bind(sock, reinterpret_cast<sockaddr*>(&addr), sizeof(addr)), 0);
    }

    // Each real file once: through "alias" first (name order), the hard link not again.
    EXPECT_EQ(walk({tree.path("Users")}), (Paths{"Users/b/alias/file.txt"}));
    ::close(sock);
}

TEST_F(Walker, NamesAreKeptAsRawBytes) {
    const std::string odd = std::string("Users/b/bad\xff\xfe name\nwith newline.TXT");
    tree.write(odd, "x");
    tree.write("Users/b/-dash", "y");
    EXPECT_EQ(walk({tree.path("Users")}), (Paths{"Users/b/-dash", odd}));
    FileTools tools;
    tools.locationGate = LocationGate::macLayoutUnder(tree.root());
    tools.scanFolders({tree.path("Users")}, true, {"txt"}, 0, UINT64_MAX);
    ASSERT_EQ(tools.fileList.size(), 1u);
    EXPECT_EQ(tools.fileList[0]->ext, "txt");
    EXPECT_EQ(tools.fileList[0]->size, 1u);
}

TEST_F(Walker, ProgressIsPostedPerEntryAndPerFolderWithGrowingTotals) {
    tree.write("Users/b/1", "1");
    tree.write("Users/b/sub/2", "2");
    tree.write("Users/b/.hidden", "h");
    std::vector<std::pair<std::int64_t, std::int64_t>> posts;
    ScopedObserver watch(kUpdateProgress, [&](const std::string&, const UserInfo& info) {
        posts.emplace_back(info.at(kTotalFiles), info.at(kCheckedFiles));
    });
    FileTools tools;
    tools.locationGate = LocationGate::macLayoutUnder(tree.root());
    tools.scanFolders({tree.path("Users")}, true, {}, 0, UINT64_MAX);
    // Entries b, .hidden, 1, sub, 2 (5 posts); folder walks sub, b, Users (3 posts).
    using P = std::pair<std::int64_t, std::int64_t>;
    EXPECT_EQ(posts,
              (std::vector<P>{{0, 0}, {0, 0}, {0, 0}, {1, 0}, {1, 0}, {2, 0}, {2, 0}, {2, 0}}));
    EXPECT_EQ(tools.userInfo.at(kTotalFiles), 2);
}

TEST_F(Walker, CancellingFromAnotherThreadStopsEveryLevelAndKeepsWhatWasFound) {
    for (int d = 0; d < 5; ++d) {
        for (int f = 0; f < 20; ++f) {
            tree.write("Users/b/d" + std::to_string(d) + "/f" + std::to_string(f), "x");
        }
    }
    for (int stopAfter : {1, 7, 30, 64}) {
        SettingsManager::shared()->searchCanceledByUser = false;
        int seen = 0;
        ScopedObserver watch(kUpdateProgress, [&](const std::string&, const UserInfo&) {
            if (++seen == stopAfter) {
                std::thread([] { SettingsManager::shared()->searchCanceledByUser = true; }).join();
            }
        });
        FileTools tools;
        tools.locationGate = LocationGate::macLayoutUnder(tree.root());
        tools.scanFolders({tree.path("Users")}, true, {}, 0, UINT64_MAX);
        EXPECT_LT(tools.fileList.size(), 100u) << stopAfter;
        // Each level returns at its next test and posts once on the way out.
        EXPECT_LE(seen, stopAfter + 4) << stopAfter;
    }
    SettingsManager::shared()->searchCanceledByUser = true;
    FileTools tools;
    tools.locationGate = LocationGate::macLayoutUnder(tree.root());
    tools.scanFolders({tree.path("Users")}, true, {}, 0, UINT64_MAX);
    EXPECT_TRUE(tools.fileList.empty());
    EXPECT_EQ(tools.packageSize(tree.path("Users/b")), 0u);
}

TEST(FileRecord, TakesExtensionSizeAndDefaultRules) {
    TempTree tree;
    const File photo(tree.write("Photo.JPG", "1234"));
    EXPECT_EQ(photo.ext, "jpg");
    EXPECT_EQ(photo.size, 4u);
    EXPECT_EQ(File(tree.write("archive.tar.gz", "")).ext, "gz");
    EXPECT_EQ(File(tree.write("dir.d/README", "")).ext, "");
    EXPECT_EQ(photo.customSettings.str(), defaultRuleText());

    StdoutCapture out;
    const File gone(tree.path("missing.bin"));
    const auto printed = twinsweep::testing::lines(out.finish());
    EXPECT_EQ(gone.size, 0u);
    ASSERT_EQ(printed.size(), 1u);
    EXPECT_TRUE(printed[0].starts_with("Error: "));
}

TEST_F(Walker, EveryRecordKnowsTheIdentityOfTheFolderItWasFoundIn) {
    tree.write("Users/bob/a.txt", "a");
    tree.write("Users/bob/sub/b.txt", "b");
    FileTools tools;
    tools.locationGate = LocationGate::macLayoutUnder(tree.root());
    tools.scanFolders({tree.root()}, true, {}, 0, UINT64_MAX);
    ASSERT_EQ(tools.fileList.size(), 2u);
    for (const auto& f : tools.fileList) {
        struct stat st {};
        ASSERT_EQ(::stat(f->path.substr(0, f->path.rfind('/')).c_str(), &st), 0);
        const FolderIdentity id = FolderRegistry::at(f->folder);
        EXPECT_TRUE(id.known);
        EXPECT_EQ(id.device, static_cast<std::uint64_t>(st.st_dev));
        EXPECT_EQ(id.inode, static_cast<std::uint64_t>(st.st_ino));
    }
}

namespace {

// Makes a chain of count folders named "d" under the folder at, relative to
// open folders (its paths are far longer than PATH_MAX), with a file of
// size (level % 7 + 1) at every level that is a multiple of 5000 and at the
// bottom. Returns the files' sizes, top first.
std::vector<std::uint64_t> makeChain(int at, int count) {
    std::vector<std::uint64_t> sizes;
    int fd = ::dup(at);
    for (int level = 0; level <= count; ++level) {
        if (level % 5000 == 0 || level == count) {
            const int f = ::openat(fd, "f", O_WRONLY | O_CREAT, 0644);
            const std::string bytes(static_cast<std::size_t>(level % 7 + 1), 'x');
            EXPECT_EQ(::write(f, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
            ::close(f);
            sizes.push_back(bytes.size());
        }
        if (level < count) {
            EXPECT_EQ(::mkdirat(fd, "d", 0755), 0);
            const int next = ::openat(fd, "d", O_RDONLY | O_DIRECTORY);
            ::close(fd);
            fd = next;
        }
    }
    ::close(fd);
    return sizes;
}

void removeChain(int at) {
    int fd = ::openat(at, "d", O_RDONLY | O_DIRECTORY);
    int depth = 1;
    for (int next; fd >= 0 && (next = ::openat(fd, "d", O_RDONLY | O_DIRECTORY)) >= 0; ++depth) {
        ::close(fd);
        fd = next;
    }
    for (; depth > 0; --depth) {
        ::unlinkat(fd, "f", 0);
        const int up = ::openat(fd, "..", O_RDONLY | O_DIRECTORY);
        ::close(fd);
        fd = up;
        ::unlinkat(fd, "d", AT_REMOVEDIR);
    }
    ::close(fd);
}

} // namespace

TEST_F(Walker, TwentyThousandLevelsAreWalkedInOrderWithFewDescriptors) {
    // Making 20,000 folders takes a minute on ext4 and a second in memory.
    const bool inMemory = ::access("/dev/shm", W_OK) == 0;
    const TempTree shm(inMemory ? "/dev/shm" : "");
    const TempTree& tree = inMemory ? shm : this->tree;
    const std::string top = tree.mkdir("Users/deep");
    const int topFd = ::open(top.c_str(), O_RDONLY | O_DIRECTORY);
    const std::vector<std::uint64_t> sizes = makeChain(topFd, 20000);
    // Far fewer descriptors than levels.
    rlimit saved{};
    ::getrlimit(RLIMIT_NOFILE, &saved);
    rlimit low = saved;
    low.rlim_cur = 256;
    ::setrlimit(RLIMIT_NOFILE, &low);
    for (unsigned threads : {0U, 3U}) {
        FileTools tools;
        tools.walkThreads = threads;
        tools.walkAheadAfter = {};
        tools.locationGate = LocationGate::macLayoutUnder(tree.root());
        tools.scanFolders({top}, true, {}, 0, UINT64_MAX);
        ASSERT_EQ(tools.fileList.size(), sizes.size()) << threads;
        // "d" sorts before "f": the deepest file comes first.
        for (std::size_t k = 0; k < sizes.size(); ++k) {
            const std::size_t level = (sizes.size() - 1 - k) * 5000;
            EXPECT_EQ(tools.fileList[k]->size, sizes[sizes.size() - 1 - k]);
            EXPECT_EQ(tools.fileList[k]->path.size(), top.size() + 2 * level + 2);
        }
        EXPECT_NE(FolderRegistry::at(tools.fileList.back()->folder).inode, 0u);
        EXPECT_EQ(tools.packageSize(top), 1u + 3 + 5 + 7 + 2);
    }
    ::setrlimit(RLIMIT_NOFILE, &saved);
    removeChain(topFd);
    ::close(topFd);
}

TEST_F(Walker, EntriesGoneOrUnreadableAfterTheListingAreReported) {
    tree.write("Users/b/a.txt", "a");
    tree.write("Users/b/gone.txt", "g");
    tree.write("Users/b/sub/x.txt", "x");
    tree.write("Users/b/z.txt", "z");
    FileTools tools;
    tools.walkThreads = 0; // so the listing is taken exactly when the walk enters a folder
    tools.locationGate = LocationGate::macLayoutUnder(tree.root());
    int posts = 0;
    ScopedObserver watch(kUpdateProgress, [&](const std::string&, const UserInfo&) {
        if (++posts == 2) { // Users/b is listed, none of its entries examined yet
            ::unlink(tree.path("Users/b/gone.txt").c_str());
            ::unlink(tree.path("Users/b/sub/x.txt").c_str());
            ::rmdir(tree.path("Users/b/sub").c_str());
        }
    });
    StdoutCapture out;
    tools.scanFolders({tree.path("Users")}, true, {}, 0, UINT64_MAX);
    EXPECT_EQ(twinsweep::testing::lines(out.finish()),
              (Paths{"Error: " + tree.path("Users/b/gone.txt") + ": No such file or directory",
                     "Ooops! Something went wrong: " + tree.path("Users/b/sub") +
                         ": No such file or directory"}));
    // The file that could not be read is a record of size 0, for the size range to judge.
    ASSERT_EQ(tools.fileList.size(), 3u);
    EXPECT_EQ(tools.fileList[1]->path, tree.path("Users/b/gone.txt"));
    EXPECT_EQ(tools.fileList[1]->size, 0u);
    EXPECT_FALSE(tools.fileList[1]->seen.known);
}

TEST_F(Walker, ListingAheadOnThreadsChangesNothingTheWalkShows) {
    // Many folders (more than the threads' budget of entries), links, hidden
    // names, packages and a folder reached twice.
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
        FileTools tools;
        tools.walkThreads = threads;
        tools.walkAheadAfter = {}; // as on a cold cache
        tools.locationGate = LocationGate::macLayoutUnder(tree.root());
        StdoutCapture out;
        tools.scanFolders({tree.path("Users/b/2"), tree.path("Users")}, ignorePackages,
                          {"txt", "app"}, 1, 11);
        std::vector<std::string> files = twinsweep::testing::lines(out.finish());
        for (const auto& f : tools.fileList) {
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
