// SPDX-License-Identifier: GPL-3.0-or-later
// A search leaves the page cache as it found it: files it had to read from
// the disk are dropped again, files the user had cached stay cached; and it
// can read at idle I/O priority.
#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#include "SearchSupport.h"
#include "engine/GentleRead.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

constexpr std::size_t kSize = 4 << 20;

// Pages of the file (size bytes) in the page cache.
std::size_t cachedPages(const std::string& path, std::size_t size = kSize) {
    const int fd = ::open(path.c_str(), O_RDONLY);
    void* map = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, 0);
    std::vector<unsigned char> pages((size + 4095) / 4096);
    EXPECT_EQ(::mincore(map, size, pages.data()), 0);
    ::munmap(map, size);
    ::close(fd);
    std::size_t n = 0;
    for (const unsigned char p : pages) {
        n += p & 1;
    }
    return n;
}

void setCached(const std::string& path, bool cached, std::size_t size = kSize) {
    const int fd = ::open(path.c_str(), O_RDONLY);
    ::fdatasync(fd);
    if (cached) {
        std::vector<char> buf(size);
        EXPECT_EQ(::read(fd, buf.data(), size), static_cast<ssize_t>(size));
    } else {
        EXPECT_EQ(::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED), 0);
    }
    ::close(fd);
}

int ioPriority() {
    return static_cast<int>(::syscall(SYS_ioprio_get, 1, 0));
}

} // namespace

TEST(GentleRead, ASearchLeavesTheCacheAsItFoundIt) {
    TempTree tree;
    std::string bytes(kSize, 'x');
    const std::string warm1 = tree.write("warm/1", bytes);
    const std::string warm2 = tree.write("warm/2", bytes);
    bytes.back() = 'y'; // read to the end to be told apart from the warm pair
    const std::string cold1 = tree.write("cold/1", bytes);
    const std::string cold2 = tree.write("cold/2", bytes);
    for (const std::string& p : {cold1, cold2}) {
        setCached(p, false);
        ASSERT_EQ(cachedPages(p), 0U) << "this file system keeps no page cache";
    }
    setCached(warm1, true);
    setCached(warm2, true);

    FileTools tools;
    prepare(tools, 2);
    const FileList groups = search(tools, {tree.root()});
    EXPECT_EQ(groupLines(groups, tree.root()).size(), 2U);
    EXPECT_EQ(cachedPages(cold1), 0U);
    EXPECT_EQ(cachedPages(cold2), 0U);
    EXPECT_EQ(cachedPages(warm1), kSize / 4096);
    EXPECT_EQ(cachedPages(warm2), kSize / 4096);
}

// Small files are read whole by the first pass, which also tells whether
// they were cached; one of a page's exact size ends where a page ends.
TEST(GentleRead, SmallFilesReadInOnePassAreJudgedToo) {
    struct Small {
        std::string path;
        std::size_t size;
        bool cached;
    };
    TempTree tree;
    std::vector<Small> files;
    for (const std::size_t size : {std::size_t{10000}, std::size_t{8192}}) {
        for (const bool cached : {true, false}) {
            const std::string dir = std::to_string(size) + (cached ? "warm" : "cold");
            for (const char* name : {"/1", "/2"}) {
                files.push_back(
                    {tree.write(dir + name, std::string(size, cached ? 'w' : 'c')), size, cached});
                setCached(files.back().path, cached, size);
                ASSERT_EQ(cachedPages(files.back().path, size) > 0, cached)
                    << "this file system keeps no page cache";
            }
        }
    }
    FileTools tools;
    prepare(tools, 2);
    // Which of a pair heads its group is not the point here.
    std::vector<std::string> groups;
    for (const FilePtr& head : search(tools, {tree.root()})) {
        for (const DuplicateFilePtr& copy : head->duplicates) {
            groups.push_back(std::min(head->path, copy->path).substr(tree.root().size() + 1));
        }
    }
    std::sort(groups.begin(), groups.end());
    EXPECT_EQ(groups,
              (std::vector<std::string>{"10000cold/1", "10000warm/1", "8192cold/1", "8192warm/1"}));
    for (const Small& f : files) {
        EXPECT_EQ(cachedPages(f.path, f.size), f.cached ? (f.size + 4095) / 4096 : 0U) << f.path;
    }
}

TEST(GentleRead, IdlePriorityReachesTheThreadsStartedAndIsUndoneAfter) {
    const int before = ioPriority();
    int inThread = -1;
    {
        const IdleIoPriority idle(true);
        std::thread([&] { inThread = ioPriority(); }).join();
    }
    EXPECT_EQ(inThread, 3 << 13); // class idle, level 0
    EXPECT_EQ(ioPriority(), before);
    const IdleIoPriority off(false);
    EXPECT_EQ(ioPriority(), before);
}
