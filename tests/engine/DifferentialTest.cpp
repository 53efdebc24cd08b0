// SPDX-License-Identifier: GPL-3.0-or-later
// Reading ahead on threads must give the plain loop's groups, order and
// messages, on random trees whose files change while the walk runs.
#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

#include "SearchSupport.h"
#include "support/PlainComparison.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

// The edges where the comparison changes its way of reading.
const std::uint64_t kSizes[] = {0, 1, 4095, 4096, 4097, 16383, 16384, 16385, 65535, 65536, 65537};
constexpr int kFiles = 40;

enum class Change { Grow, Shrink, Empty, Unreadable, CopyOther };

struct Step {
    std::int64_t atTotal; // applied at the first walk post with this many files
    Change change;
    std::uint32_t pick;
    std::uint32_t other;
    bool done = false;
};

// A folder that can be listed but not searched, and a chain of folders
// deeper than PATH_MAX, each with files of the common sizes.
void buildCorners(const TempTree& tree, const std::string& pool, std::mt19937& rng) {
    for (int k = 0; k < 6; ++k) {
        tree.write("locked/l" + std::to_string(k) + ".dat",
                   pool.substr(0, kSizes[rng() % std::size(kSizes)]));
    }
    ::chmod(tree.path("locked").c_str(), 0444);
    const std::string name(250, 'n');
    int at = ::open(tree.root().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; level < 18 && at >= 0; ++level) {
        ::mkdirat(at, name.c_str(), 0755);
        const int next = ::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(at);
        at = next;
        for (int k = 0; level >= 15 && k < 4; ++k) {
            const std::string body = pool.substr(rng() % 2, kSizes[rng() % std::size(kSizes)]);
            const int fd = ::openat(at, ("d" + std::to_string(k) + ".dat").c_str(),
                                    O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
            (void)!::write(fd, body.data(), body.size());
            ::close(fd);
        }
    }
    ::close(at);
}

void build(const TempTree& tree, std::uint32_t seed, bool corners = false) {
    std::mt19937 rng(seed);
    std::string pool(70000, '\0');
    for (char& c : pool) {
        c = static_cast<char>('a' + rng() % 3);
    }
    for (int k = 0; k < kFiles; ++k) {
        const std::uint64_t size = kSizes[rng() % std::size(kSizes)];
        std::string body = pool.substr(0, size);
        // Few variants per size, so copies are common: equal, or differing at
        // the start, in the middle or in the last byte.
        if (const unsigned v = rng() % 4; v > 0 && size > 0) {
            body[v == 1 ? 0 : v == 2 ? size / 2 : size - 1] = 'Z';
        }
        const char* ext = rng() % 6 == 0 ? ".pkg" : ".dat";
        tree.write("d" + std::to_string(rng() % 4) + "/f" + std::to_string(k) + ext, body);
    }
    // More files with one head than are compared side by side at once.
    for (int k = 0; k < 20; ++k) {
        std::string body = pool.substr(0, 20000);
        body.back() = static_cast<char>('a' + k % 3);
        tree.write("m/c" + std::to_string(k) + ".dat", body);
    }
    // Packages of equal and of different total size, and names of one file.
    tree.write("p/One.app/x", pool.substr(0, 10));
    tree.write("p/Two.app/y", pool.substr(5, 10));
    tree.write("p/Three.app/z", pool.substr(0, 11));
    EXPECT_EQ(
        ::link(tree.path("d0/f0" + std::string(".dat")).c_str(), tree.path("p/link.dat").c_str()),
        0);
    tree.write("p/solo.pkg", "package-extension file");
    EXPECT_EQ(::link(tree.path("p/solo.pkg").c_str(), tree.path("p/again.pkg").c_str()), 0);
    if (corners) {
        buildCorners(tree, pool, rng);
    }
}

void applyStep(const Step& step, const FileList& seen) {
    const std::string& victim = seen[step.pick % seen.size()]->path;
    struct stat st {};
    // Packages are folders; files with another name would change under both.
    if (::lstat(victim.c_str(), &st) != 0 || !S_ISREG(st.st_mode) || st.st_nlink > 1) {
        return;
    }
    if (step.change == Change::CopyOther) {
        std::error_code ec;
        std::filesystem::copy_file(seen[step.other % seen.size()]->path.str(), victim,
                                   std::filesystem::copy_options::overwrite_existing, ec);
    } else if (step.change == Change::Unreadable) {
        ::chmod(victim.c_str(), 0);
    } else {
        const off_t sizes[] = {st.st_size + 6, st.st_size / 2, 0}; // grow, shrink, empty
        (void)!::truncate(victim.c_str(), sizes[static_cast<int>(step.change)]);
    }
}

// Drops the files from memory: reads from the disk bring in the extra readers.
void evict(const std::string& root) {
    for (const auto& e : std::filesystem::recursive_directory_iterator(root)) {
        const int fd = ::open(e.path().c_str(), O_RDONLY);
        if (fd >= 0) {
            ::fdatasync(fd);
            ::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
            ::close(fd);
        }
    }
}

// The groups found, then the messages sorted, one per line.
std::string searchChanging(std::uint32_t seed, bool ignorePackages, unsigned threads,
                           bool corners = false) {
    TempTree tree;
    build(tree, seed, corners);
    if (threads > 0 && seed == 1) {
        evict(tree.root());
    }
    std::mt19937 rng(seed * 7919U);
    std::vector<Step> steps;
    for (int k = 0; k < 6; ++k) {
        steps.push_back({1 + static_cast<std::int64_t>(rng() % kFiles),
                         static_cast<Change>(rng() % 5), static_cast<std::uint32_t>(rng()),
                         static_cast<std::uint32_t>(rng())});
    }
    FileTools tools;
    prepare(tools, threads);
    PostLog log;
    log.onPost = [&](const PostLog::Post& p) {
        for (Step& s : steps) {
            if (p.checked == 0 && p.total >= s.atTotal && !s.done && !tools.fileList.empty()) {
                s.done = true;
                applyStep(s, tools.fileList);
            }
        }
    };
    const AtomicFlag never;
    CollectedDiagnostics said;
    SearchContext context(never, said);
    const FileList heads = threads == 0 ? plainSearch(tools, context, {tree.root()}, ignorePackages)
                                        : tools.findDuplicateFiles(context, {tree.root()}, 0,
                                                                   UINT64_MAX, ignorePackages, {});
    std::string printed = joined(said.lines());
    for (std::size_t at; (at = printed.find(tree.root())) != std::string::npos;) {
        printed.replace(at, tree.root().size(), "~");
    }
    std::vector<std::string> messages = lines(printed);
    std::sort(messages.begin(), messages.end());
    std::string outcome;
    for (const auto& line : groupLines(heads, tree.root())) {
        outcome += "  " + line + "\n";
    }
    for (const auto& line : messages) {
        outcome += "  > " + line + "\n";
    }
    return outcome;
}

} // namespace

TEST(Differential, ReadAheadGivesThePlainLoopsGroupsOnTreesThatChangeDuringTheWalk) {
    // Unreadable files must really be unreadable: not as root.
    const int failures = runUnprivileged([] {
        int failed = 0;
        for (std::uint32_t seed = 1; seed <= 12; ++seed) {
            for (bool ignorePackages : {true, false}) {
                const std::string plain = searchChanging(seed, ignorePackages, 0);
                // One to three threads; seed 1, read from the disk, with three.
                const std::string fast = searchChanging(seed, ignorePackages, 1 + (seed + 1) % 3);
                if (plain != fast) {
                    ++failed;
                    std::fprintf(stderr, "seed %u, ignorePackages %d: plain\n%sfast\n%s", seed,
                                 ignorePackages, plain.c_str(), fast.c_str());
                }
            }
        }
        return failed;
    });
    EXPECT_EQ(failures, 0);
}

TEST(Differential, UnsearchableFoldersAndPathsDeeperThanPathMaxGiveThePlainLoopsGroups) {
    const int failures = runUnprivileged([] {
        int failed = 0;
        for (std::uint32_t seed = 2; seed <= 7; ++seed) {
            const std::string plain = searchChanging(seed, seed % 2 == 0, 0, true);
            const std::string fast = searchChanging(seed, seed % 2 == 0, 1 + seed % 3, true);
            // Nothing in the locked folder is ever taken or reported.
            if (plain != fast || plain.find("locked") != std::string::npos ||
                plain.find("File name too long") != std::string::npos) {
                ++failed;
                std::fprintf(stderr, "seed %u: plain\n%sfast\n%s", seed, plain.c_str(),
                             fast.c_str());
            }
        }
        return failed;
    });
    EXPECT_EQ(failures, 0);
}
