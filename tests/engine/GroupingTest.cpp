#include <gtest/gtest.h>

#include <fcntl.h>
#include <random>
#include <unistd.h>

#include "SearchSupport.h"
#include "engine/Digest.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

// The sort written exactly as described, recursion and all, to check the
// engine's version against.
void referencePartitionSort(std::vector<std::pair<std::uint64_t, int>>& v, std::int64_t low,
                            std::int64_t high) {
    while (low < high) {
        const std::uint64_t pivot = v[high].first;
        std::int64_t i = low;
        for (std::int64_t j = low; j < high; ++j) {
            if (v[j].first > pivot) {
                std::swap(v[i], v[j]);
                ++i;
            }
        }
        std::swap(v[i], v[high]);
        referencePartitionSort(v, low, i - 1);
        low = i + 1;
    }
}

// Sorts sizes through the engine and returns the original positions in sorted order.
std::vector<int> engineOrder(const std::vector<std::uint64_t>& sizes) {
    FileTools tools;
    tools.settingsManager->searchCanceledByUser = false;
    for (std::size_t k = 0; k < sizes.size(); ++k) {
        auto f = std::make_shared<File>("/");
        f->size = sizes[k];
        f->path = std::to_string(k);
        tools.fileList.push_back(f);
    }
    tools.quickSort(0, static_cast<std::int64_t>(sizes.size()) - 1);
    std::vector<int> out;
    for (const FilePtr& f : tools.fileList) {
        out.push_back(std::stoi(f->path));
    }
    return out;
}

std::vector<int> referenceOrder(const std::vector<std::uint64_t>& sizes) {
    std::vector<std::pair<std::uint64_t, int>> v;
    for (std::size_t k = 0; k < sizes.size(); ++k) {
        v.emplace_back(sizes[k], static_cast<int>(k));
    }
    referencePartitionSort(v, 0, static_cast<std::int64_t>(v.size()) - 1);
    std::vector<int> out;
    for (const auto& p : v) {
        out.push_back(p.second);
    }
    return out;
}

std::vector<std::string> names(const FileList& heads, const std::string& root) {
    std::vector<std::string> out;
    for (const FilePtr& h : heads) {
        std::string line = h->path.substr(root.size() + 1);
        for (const DuplicateFilePtr& d : h->duplicates) {
            line += " " + d->path.substr(root.size() + 1);
        }
        out.push_back(line);
    }
    return out;
}

} // namespace

TEST(Grouping, SortKeepsTheExactTieOrderOfTheSpecifiedScheme) {
    EXPECT_EQ(engineOrder({5, 9, 5, 9}), referenceOrder({5, 9, 5, 9}));
    std::mt19937 rng(42);
    for (int round = 0; round < 200; ++round) {
        std::vector<std::uint64_t> sizes(rng() % 300 + 1);
        const unsigned spread = round % 3 == 0 ? 2 : round % 3 == 1 ? 10 : 1000;
        for (auto& s : sizes) {
            s = rng() % spread;
        }
        if (round % 10 == 0) {
            std::sort(sizes.begin(), sizes.end(), std::greater<>()); // the deep case
        } else if (round % 10 == 5) {
            std::sort(sizes.begin(), sizes.end()); // the quadratic case
        } else if (round % 10 == 7) {
            std::sort(sizes.begin(), sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() / 2));
        }
        ASSERT_EQ(engineOrder(sizes), referenceOrder(sizes)) << "round " << round;
    }
    // An ascending list makes every step of the plain scheme scan the whole rest.
    std::vector<std::uint64_t> ascending(20000);
    for (std::size_t k = 0; k < ascending.size(); ++k) {
        ascending[k] = k / 3;
    }
    EXPECT_EQ(engineOrder(ascending), referenceOrder(ascending));
    // A descending list nests the scheme as deep as it is long; it must not
    // exhaust the stack.
    std::vector<std::uint64_t> sorted(10000);
    for (std::size_t k = 0; k < sorted.size(); ++k) {
        sorted[k] = sorted.size() - k;
    }
    const auto order = engineOrder(sorted);
    EXPECT_EQ(order.front(), 0);
    EXPECT_EQ(order.back(), 9999);
}

TEST(Grouping, DigestIsBase64OfMd5AndUnreadableCountsAsEmpty) {
    TempTree tree;
    EXPECT_EQ(base64Text(FileTools::contentDigest(tree.write("e", ""))),
              "1B2M2Y8AsgTpgAmY7PhCfg==");
    EXPECT_EQ(base64Text(FileTools::contentDigest(tree.write("abc", "abc"))),
              "kAFQmDzST7DWlj99KOF/cg==");
    // Larger than the read buffer, so it is fed in several pieces.
    const std::string big(600 * 1024 + 7, 'q');
    EXPECT_EQ(FileTools::contentDigest(tree.write("big", big)), md5Of(big.data(), big.size()));

    StdoutCapture out;
    EXPECT_EQ(base64Text(FileTools::contentDigest(tree.mkdir("folder"))),
              "1B2M2Y8AsgTpgAmY7PhCfg==");
    EXPECT_EQ(base64Text(FileTools::contentDigest(tree.path("missing"))),
              "1B2M2Y8AsgTpgAmY7PhCfg==");
    const auto printed = lines(out.finish());
    ASSERT_EQ(printed.size(), 2U);
    EXPECT_EQ(printed[0].rfind("Ooops! Something went wrong: ", 0), 0U);
}

class GroupingBothWays : public ::testing::TestWithParam<unsigned> {};

TEST_P(GroupingBothWays, EqualSizesAreSplitByContentWithHeadsFirstInSortedOrder) {
    TempTree tree;
    // Same size, contents X Y X Y in walk order, plus a three-copy group of
    // another size and a file of a size of its own.
    tree.write("a1", "XXXX");
    tree.write("a2", "YYYY");
    tree.write("a3", "XXXX");
    tree.write("a4", "YYYY");
    tree.write("b1", "same content");
    tree.write("b2", "same content");
    tree.write("b3", "same content");
    tree.write("u", "unique size, never read");
    FileTools tools;
    prepare(tools, GetParam());
    const FileList heads = search(tools, {tree.root()});
    auto got = names(heads, tree.root());
    EXPECT_EQ(got, (std::vector<std::string>{"u", "b3 b1 b2", "a1 a3", "a2 a4"}));
    // Every byte of the files with a same-size rival counted, the unique one not.
    EXPECT_EQ(tools.byteProgress->total(), 3U * 12 + 4 * 4);
    EXPECT_EQ(tools.byteProgress->done(), tools.byteProgress->total());
    for (const FilePtr& h : heads) {
        if (h->path.ends_with("/u")) {
            EXPECT_EQ(h->MD5Hash, "") << "a unique size is never read";
            EXPECT_EQ(tools.digestText(*h), "");
        } else {
            // Read ahead, groups come from the bytes; the digest when asked.
            EXPECT_EQ(h->MD5Hash.empty(), GetParam() > 0);
            EXPECT_EQ(tools.digestText(*h), base64Text(FileTools::contentDigest(h->path)));
            EXPECT_EQ(h->MD5Hash.size(), 24U);
        }
        for (const DuplicateFilePtr& d : h->duplicates) {
            EXPECT_EQ(d->checkState, 0);
            EXPECT_TRUE(d->seen.known);
            EXPECT_EQ(d->seen, identityOf(d->path));
        }
    }
}

TEST_P(GroupingBothWays, LargeFilesGoBySizeAloneFromTheThresholdOn) {
    TempTree tree;
    auto differAtEnd = [&](const std::string& name, std::uint64_t size, char last) {
        const std::string p = tree.sparse(name, size);
        const int fd = ::open(p.c_str(), O_WRONLY);
        ASSERT_EQ(::pwrite(fd, &last, 1, static_cast<off_t>(size - 1)), 1);
        ::close(fd);
    };
    differAtEnd("big/a", kLargeFileThreshold, 'a');
    differAtEnd("big/b", kLargeFileThreshold, 'b');
    differAtEnd("below/a", kLargeFileThreshold - 1, 'a');
    differAtEnd("below/b", kLargeFileThreshold - 1, 'b');
    {
        FileTools tools;
        prepare(tools, GetParam());
        const FileList heads = search(tools, {tree.root()});
        EXPECT_EQ(names(heads, tree.root()),
                  (std::vector<std::string>{"big/b big/a", "below/a", "below/b"}));
        EXPECT_EQ(heads[0]->MD5Hash, "") << "large files are never read";
    }
    {
        // Our extra option compares them by content too.
        FileTools tools;
        prepare(tools, GetParam());
        tools.compareLargeFilesByContent = true;
        EXPECT_EQ(search(tools, {tree.path("big")}).size(), 2U);
    }
}

TEST_P(GroupingBothWays, FoldersTakenAsPackagesAreDigestedAsEmpty) {
    TempTree tree;
    tree.write("One.app/x", "12345");
    tree.write("Two.app/y", "abcde");
    tree.write("file.txt", "zzzzz");
    // Regular files with a package extension: size 0 to the walk, yet read
    // for what they hold; one of them under a second name is still one file.
    tree.write("a.pkg", "first");
    tree.write("b.pkg", "other");
    ASSERT_EQ(::link(tree.path("a.pkg").c_str(), tree.path("c.pkg").c_str()), 0);
    FileTools tools;
    prepare(tools, GetParam());
    StdoutCapture out;
    const FileList heads = tools.findDuplicateFiles({tree.root()}, 0, UINT64_MAX, false, {});
    const std::string printed = out.finish();
    EXPECT_NE(printed.find("Ooops! Something went wrong: "), std::string::npos);
    // Equal total size: copies of each other, but never of the readable file.
    std::size_t groups = 0;
    for (const FilePtr& h : heads) {
        if (!h->duplicates.empty()) {
            ++groups;
            EXPECT_TRUE(h->path.ends_with(".app"));
            EXPECT_TRUE(h->duplicates[0]->path.ends_with(".app"));
        }
    }
    EXPECT_EQ(groups, 1U);
    EXPECT_EQ(heads.size(), 4U) << "c.pkg is a.pkg";
}

INSTANTIATE_TEST_SUITE_P(SequentialAndParallel, GroupingBothWays, ::testing::Values(0U, 2U));

TEST(Grouping, ParallelDigestsGiveTheSameGroupsAsTheSequentialLoop) {
    TempTree tree;
    std::mt19937 rng(7);
    // Few sizes, many ties, and contents that differ at the start, in the
    // middle, past the first few KiB or at the very end.
    const std::uint64_t sizes[] = {1, 100, 4095, 4096, 4097, 9000, 70000};
    std::string base(70000, '\0');
    for (char& c : base) {
        c = static_cast<char>('a' + rng() % 26);
    }
    for (int k = 0; k < 600; ++k) {
        const std::uint64_t size = sizes[rng() % std::size(sizes)];
        std::string body = base.substr(0, size);
        const int variant = static_cast<int>(rng() % 4);
        if (variant > 0) {
            const std::size_t at = variant == 1 ? 0 : variant == 2 ? size / 2 : size - 1;
            body[at] = static_cast<char>('A' + rng() % 3);
        }
        tree.write("d" + std::to_string(rng() % 9) + "/f" + std::to_string(k), body);
    }
    // Many copies that agree beyond their first bytes take the one-by-one path.
    for (int k = 0; k < 40; ++k) {
        tree.write("many/c" + std::to_string(k), base.substr(0, 30000));
    }
    FileTools sequential;
    prepare(sequential, 0);
    const auto expected = names(search(sequential, {tree.root()}), tree.root());
    for (unsigned threads : {1U, 2U, 3U}) {
        FileTools parallel;
        prepare(parallel, threads);
        EXPECT_EQ(names(search(parallel, {tree.root()}), tree.root()), expected) << threads;
    }
}
