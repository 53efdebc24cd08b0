// SPDX-License-Identifier: GPL-3.0-or-later
// A search leaves the page cache as it found it: files it had to read from
// the disk are dropped again, files the user had cached stay cached; and it
// can read at idle I/O priority.
#include <gtest/gtest.h>

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

// Pages of the file in the page cache.
std::size_t cachedPages(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY);
    void* map = ::mmap(nullptr, kSize, PROT_READ, MAP_SHARED, fd, 0);
    std::vector<unsigned char> pages(kSize / 4096);
    EXPECT_EQ(::mincore(map, kSize, pages.data()), 0);
    ::munmap(map, kSize);
    ::close(fd);
    std::size_t n = 0;
    for (const unsigned char p : pages) {
        n += p & 1;
    }
    return n;
}

void setCached(const std::string& path, bool cached) {
    const int fd = ::open(path.c_str(), O_RDONLY);
    ::fdatasync(fd);
    if (cached) {
        std::vector<char> buf(kSize);
        EXPECT_EQ(::read(fd, buf.data(), kSize), static_cast<ssize_t>(kSize));
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
