// SPDX-License-Identifier: GPL-3.0-or-later
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

// Sizes with their original positions.
using Entries = std::vector<std::pair<std::uint64_t, int>>;

// The plain recursive scheme, to check the engine's faster version against:
// Lomuto, pivot the last entry, largest first. The tie order it leaves
// decides which copy heads a group.
void referenceSort(Entries& v, std::int64_t low, std::int64_t high) {
    while (low < high) {
        std::int64_t i = low;
        for (std::int64_t j = low; j < high; ++j) {
            if (v[j].first > v[high].first) {
                std::swap(v[i++], v[j]);
            }
        }
        std::swap(v[i], v[high]);
        referenceSort(v, low, i - 1);
        low = i + 1;
    }
}

// Sorts engine records of the sizes, each named by its position, and checks
// the sizes and positions against the reference.
void expectSameSort(const std::vector<std::uint64_t>& sizes, const std::string& what) {
    FileTools tools;
    tools.settingsManager->searchCanceledByUser = false;
    Entries expected;
    for (std::size_t k = 0; k < sizes.size(); ++k) {
        expected.emplace_back(sizes[k], static_cast<int>(k));
        tools.fileList.push_back(std::make_shared<File>("/"));
        tools.fileList.back()->size = sizes[k];
        tools.fileList.back()->path = std::to_string(k);
    }
    const auto high = static_cast<std::int64_t>(sizes.size()) - 1;
    referenceSort(expected, 0, high);
    tools.quickSort(0, high);
    Entries sorted;
    for (const FilePtr& f : tools.fileList) {
        sorted.emplace_back(f->size, std::stoi(f->path));
    }
    ASSERT_EQ(sorted, expected) << what;
}

} // namespace

TEST(Grouping, SortKeepsTheTieOrderOfThePlainLomutoScheme) {
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
        expectSameSort(sizes, "round " + std::to_string(round));
    }
    // Ascending, every plain step scans the whole rest (the index must skip
    // it); descending nests the plain scheme as deep as the list is long.
    std::vector<std::uint64_t> ascending(20000);
    for (std::size_t k = 0; k < ascending.size(); ++k) {
        ascending[k] = k / 3;
    }
    const std::vector<std::uint64_t> descending(ascending.rbegin(), ascending.rbegin() + 10000);
    expectSameSort(ascending, "ascending");
    expectSameSort(descending, "descending");
}

TEST(Grouping, DigestIsBase64OfMd5AndUnreadableCountsAsEmpty) {
    TempTree tree;
    // Larger than the read buffer, so it is fed in several pieces.
    const std::string big(600 * 1024 + 7, 'q');
    EXPECT_EQ(FileTools::contentDigest(tree.write("big", big)), md5Of(big.data(), big.size()));
    EXPECT_EQ(base64Text(FileTools::contentDigest(tree.write("abc", "abc"))),
              "kAFQmDzST7DWlj99KOF/cg==");
    DiagnosticsCapture out;
    EXPECT_EQ(base64Text(FileTools::contentDigest(tree.mkdir("folder"))),
              "1B2M2Y8AsgTpgAmY7PhCfg==");
    EXPECT_TRUE(out.finish().starts_with("Ooops! Something went wrong: "));
}

class GroupingBothWays : public ::testing::TestWithParam<unsigned> {};

TEST_P(GroupingBothWays, EqualSizesAreSplitByContentWithHeadsFirstInSortedOrder) {
    TempTree tree;
    // Same size, contents X Y X Y in walk order, plus a three-copy group of
    // another size and a file of a size of its own.
    for (const char* name : {"a1", "a2", "a3", "a4"}) {
        tree.write(name, std::string(4, name[1] % 2 ? 'X' : 'Y'));
    }
    for (const char* name : {"b1", "b2", "b3"}) {
        tree.write(name, "same content");
    }
    tree.write("u", "unique size, never read");
    FileTools tools;
    prepare(tools, GetParam());
    const FileList heads = search(tools, {tree.root()});
    EXPECT_EQ(groupLines(heads, tree.root()),
              (std::vector<std::string>{"u", "b3 b1 b2", "a1 a3", "a2 a4"}));
    // Every byte of the files with a same-size rival counted, the unique one not.
    EXPECT_EQ(tools.context().bytes->total(), 3U * 12 + 4 * 4);
    EXPECT_EQ(tools.context().bytes->done(), 3U * 12 + 4 * 4);
    EXPECT_EQ(tools.digestText(*heads[0]), "") << "a unique size is never read";
    for (std::size_t g = 1; g < heads.size(); ++g) {
        // Groups come from the bytes; the digest only when asked.
        EXPECT_TRUE(heads[g]->MD5Hash.empty());
        EXPECT_EQ(tools.digestText(*heads[g]),
                  base64Text(FileTools::contentDigest(heads[g]->path)));
        for (const DuplicateFilePtr& d : heads[g]->duplicates) {
            EXPECT_EQ(d->checkState, 0);
            EXPECT_TRUE(d->seen.known);
            EXPECT_EQ(d->seen, identityOf(d->path));
        }
    }
}

TEST_P(GroupingBothWays, LargeFilesGoBySizeAloneFromTheThresholdOn) {
    TempTree tree;
    for (const auto& [name, size] :
         {std::pair{"big/", kLargeFileThreshold}, std::pair{"below/", kLargeFileThreshold - 1}}) {
        for (const char last : {'a', 'b'}) {
            const int fd = ::open(tree.sparse(name + std::string(1, last), size).c_str(), O_WRONLY);
            ASSERT_EQ(::pwrite(fd, &last, 1, static_cast<off_t>(size - 1)), 1);
            ::close(fd);
        }
    }
    FileTools tools;
    prepare(tools, GetParam());
    const FileList heads = search(tools, {tree.root()});
    EXPECT_EQ(groupLines(heads, tree.root()),
              (std::vector<std::string>{"big/b big/a", "below/a", "below/b"}));
    EXPECT_EQ(heads[0]->MD5Hash, "") << "large files are never read";
    // Our extra option compares them by content too.
    FileTools byContent;
    prepare(byContent, GetParam());
    byContent.compareLargeFilesByContent = true;
    EXPECT_EQ(search(byContent, {tree.path("big")}).size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(OneReaderAndSeveral, GroupingBothWays, ::testing::Values(1U, 4U));
