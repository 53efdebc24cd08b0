// The default comparison reads ahead on worker threads and reads as little as
// it can; the plain loop (no digest threads) digests every file it meets.
// On random trees whose files change while the walk runs, both must give the
// same heads, copies and order, and the same messages, with any number of threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

#include "SearchSupport.h"
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

void build(const TempTree& tree, std::uint32_t seed) {
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
    ::link(tree.path("d0/f0" + std::string(".dat")).c_str(), tree.path("p/link.dat").c_str());
    tree.write("p/solo.pkg", "package-extension file");
    ::link(tree.path("p/solo.pkg").c_str(), tree.path("p/again.pkg").c_str());
}

void applyStep(const Step& step, const FileList& seen) {
    const std::string& victim = seen[step.pick % seen.size()]->path;
    struct stat st {};
    // Packages are folders; files with another name would change under both.
    if (::lstat(victim.c_str(), &st) != 0 || !S_ISREG(st.st_mode) || st.st_nlink > 1) {
        return;
    }
    switch (step.change) {
    case Change::Grow:
        (void)!::truncate(victim.c_str(), st.st_size + 6);
        break;
    case Change::Shrink:
        (void)!::truncate(victim.c_str(), st.st_size / 2);
        break;
    case Change::Empty:
        (void)!::truncate(victim.c_str(), 0);
        break;
    case Change::Unreadable:
        ::chmod(victim.c_str(), 0);
        break;
    case Change::CopyOther: {
        std::error_code ec;
        std::filesystem::copy_file(seen[step.other % seen.size()]->path, victim,
                                   std::filesystem::copy_options::overwrite_existing, ec);
        break;
    }
    }
}

// Drops the tree's files from memory, so that the reads go to the disk and
// the comparison takes on its extra readers.
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

struct Outcome {
    std::vector<std::string> groups;
    std::vector<std::string> messages;
};

Outcome searchChanging(std::uint32_t seed, bool ignorePackages, unsigned threads) {
    TempTree tree;
    build(tree, seed);
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
    StdoutCapture out;
    const FileList heads = search(tools, {tree.root()}, ignorePackages);
    Outcome o{groupLines(heads, tree.root()), lines(out.finish())};
    for (std::string& m : o.messages) {
        for (std::size_t at; (at = m.find(tree.root())) != std::string::npos;) {
            m.replace(at, tree.root().size(), "~");
        }
    }
    std::sort(o.messages.begin(), o.messages.end());
    return o;
}

} // namespace

TEST(Differential, ReadAheadGivesThePlainLoopsGroupsOnTreesThatChangeDuringTheWalk) {
    // Unreadable files must really be unreadable: not as root.
    const int failures = runUnprivileged([] {
        int failed = 0;
        for (std::uint32_t seed = 1; seed <= 12; ++seed) {
            for (bool ignorePackages : {true, false}) {
                const Outcome plain = searchChanging(seed, ignorePackages, 0);
                // One to three threads; seed 1, read from the disk, with three.
                const Outcome fast = searchChanging(seed, ignorePackages, 1 + (seed + 1) % 3);
                if (plain.groups == fast.groups && plain.messages == fast.messages) {
                    continue;
                }
                ++failed;
                std::fprintf(stderr, "seed %u, ignorePackages %d differ:\n", seed, ignorePackages);
                for (const auto& [name, o] : {std::pair{"plain", &plain}, {"fast", &fast}}) {
                    std::fprintf(stderr, " %s:\n", name);
                    for (const std::string& line : o->groups) {
                        std::fprintf(stderr, "  %s\n", line.c_str());
                    }
                    for (const std::string& line : o->messages) {
                        std::fprintf(stderr, "  > %s\n", line.c_str());
                    }
                }
            }
        }
        return failed;
    });
    EXPECT_EQ(failures, 0);
}
