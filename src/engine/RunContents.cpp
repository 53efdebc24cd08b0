// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/RunContents.h"
#include "engine/GentleRead.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string_view>
#include <sys/uio.h>
#include <unistd.h>

#include "engine/Diagnostics.h"
#include "engine/Digest.h"
#include "engine/RunFingerprints.h"
#include "engine/SideBySide.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

namespace {

const char* const kOoops = "Ooops! Something went wrong: ";

// Files up to this size are read whole at once (one byte more, to see whether
// they grew); larger ones first by their head.
constexpr std::uint64_t kWholeReadLimit = 16 * 1024;
constexpr std::size_t kHeadLength = 4096;
// The heads of one run held at once; a run of very many files reads less each.
constexpr std::size_t kHeadBudget = 4 * 1024 * 1024;
constexpr std::size_t kMinHead = 256;
constexpr std::size_t kHashedBytes = 256;

struct Head {
    std::size_t k;      // member, counted from the run's start
    std::size_t offset; // of its head in the arena
    std::size_t length; // of its head
    std::uint64_t hash;
    bool complete; // the head is the whole file
};

std::uint64_t mix(std::uint64_t h, std::uint64_t v) {
    h = (h ^ v) * 0xFF51AFD7ED558CCDULL;
    return h ^ (h >> 32);
}

// Reads the first length bytes like preadFully, and tells whether they had to
// come from the disk: a read that must not wait fails when they are not in
// memory yet. That is also whether the file was cached (firstReadWas).
// expected: the size the walk saw.
long readFirst(int fd, unsigned char* data, std::size_t length, std::uint64_t expected,
               bool& cold) {
    cold = false;
#ifdef RWF_NOWAIT
    iovec v{data, length};
    const ssize_t n = ::preadv2(fd, &v, 1, 0, RWF_NOWAIT);
    if (n > 0) {
        firstReadWas(fd, FirstRead::InMemory);
        // A read from memory stops short at the end of the file or where a
        // page is missing, which is always at a page's start: a short count
        // that is the walk's size and ends inside a page is the end, with no
        // further read to find it.
        static const auto page = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
        const auto got = static_cast<std::uint64_t>(n);
        if (got == length || (got == expected && got % page != 0)) {
            return static_cast<long>(n);
        }
        const long rest = preadFully(fd, data + n, length - static_cast<std::size_t>(n),
                                     static_cast<std::uint64_t>(n));
        return rest < 0 ? -1 : n + rest;
    }
    cold = n < 0 && errno == EAGAIN;
    firstReadWas(fd, cold ? FirstRead::FromDisk : FirstRead::Unknown);
    if (n == 0) {
        return 0;
    }
#else
    firstReadWas(fd, FirstRead::Unknown);
#endif
    return preadFully(fd, data, length, 0);
}

class RunComparer final : public RunFiles {
  public:
    RunComparer(const FileList& list, std::size_t begin, std::size_t end, const AtomicFlag& cancel,
                ReadSignals& signals, ByteProgress& progress, Diagnostics& diagnostics,
                FingerprintStore* store, std::vector<std::uint32_t>& setOf)
        : list_(list), begin_(begin), count_(end - begin), cancel_(cancel), signals_(signals),
          progress_(progress), diagnostics_(diagnostics), budget_(count_ * list[begin]->size),
          setOf_(setOf) {
        setOf_.assign(count_, 0);
        if (store != nullptr) {
            prints_.emplace(list, begin, count_, *store);
        }
    }

    bool run() {
        if (prints_ && prints_->allRemembered(cancel_)) {
            prints_->setsByFingerprint(setOf_);
            progress_.add(budget_);
            progress_.remembered(budget_);
            return true;
        }
        if (!readHeads()) {
            return false;
        }
        auto bytes = [&](const Head& h) {
            return std::string_view(reinterpret_cast<const char*>(arena_.data() + h.offset),
                                    h.length);
        };
        std::sort(heads_.begin(), heads_.end(), [&](const Head& a, const Head& b) {
            if (a.complete != b.complete) {
                return a.complete < b.complete;
            }
            if (a.hash != b.hash) {
                return a.hash < b.hash;
            }
            const int c = bytes(a).compare(bytes(b));
            return c != 0 ? c < 0 : a.k < b.k;
        });
        auto sameHead = [&](const Head& a, const Head& b) {
            return a.complete == b.complete && a.hash == b.hash && bytes(a) == bytes(b);
        };
        for (std::size_t s = 0; s < heads_.size();) {
            std::size_t e = s + 1;
            while (e < heads_.size() && sameHead(heads_[s], heads_[e])) {
                ++e;
            }
            if (e - s >= 2) {
                // Agree so far: complete heads are whole files, the others are
                // compared from where their heads end.
                std::vector<std::size_t> ks;
                for (std::size_t m = s; m < e; ++m) {
                    ks.push_back(heads_[m].k);
                }
                if (heads_[s].complete) {
                    newSet(ks);
                } else if (!compareRest(std::move(ks), heads_[s].length)) {
                    return false;
                }
            }
            s = e; // a head that matches no other: no copy, never read further
        }
        // Files read as empty (unreadable, or emptied since the walk) all have
        // the digest of no bytes: together they are copies of each other.
        if (empty_.size() >= 2) {
            std::sort(empty_.begin(), empty_.end());
            newSet(empty_);
            const std::string text = base64Text(md5Of(nullptr, 0));
            for (std::size_t k : empty_) {
                file(k).MD5Hash = text;
            }
        }
        if (prints_ && !prints_->finish(cancel_)) {
            return false;
        }
        // What was not read needed no reading.
        progress_.add(budget_ - counted_);
        return true;
    }

  private:
    File& file(std::size_t k) const { return *list_[begin_ + k]; }

    void counted(long bytes) override {
        if (bytes <= 0) {
            return;
        }
        const std::uint64_t add =
            std::min<std::uint64_t>(static_cast<std::uint64_t>(bytes), budget_ - counted_);
        counted_ += add;
        progress_.add(add);
    }

    void readBytes(std::size_t k, std::uint64_t offset, const unsigned char* data, long n,
                   std::size_t requested) override {
        if (prints_) {
            prints_->read(k, offset, data, n, requested);
        }
    }

    void newSet(const std::vector<std::size_t>& ks) {
        for (std::size_t k : ks) {
            setOf_[k] = nextSet_;
        }
        ++nextSet_;
    }

    int openFile(std::size_t k) const override {
        return openForReading(file(k).path, file(k).folder);
    }

    // The heads' pass reports its first read (readFirst).
    int openForHead(std::size_t k) const {
        return openForReading(file(k).path, file(k).folder, true);
    }

    void unreadable(std::size_t k) override {
        diagnostics_.report(kOoops, file(k).path, errno);
        empty_.push_back(k);
        if (prints_) {
            prints_->failed(k);
        }
    }

    // Member k opened for reading, or -1 with it set aside as unreadable.
    int openMember(std::size_t k, bool head = false) {
        const int fd = head ? openForHead(k) : openFile(k);
        if (fd < 0) {
            unreadable(k);
        }
        return fd;
    }

    bool readHeads() {
        const std::uint64_t size = file(0).size;
        std::size_t cap =
            size <= kWholeReadLimit ? static_cast<std::size_t>(size) + 1 : kHeadLength;
        cap = std::min(cap, std::max(kMinHead, kHeadBudget / count_));
        heads_.reserve(count_);
        arena_.reserve(count_ * cap);
        for (std::size_t k = 0; k < count_; ++k) {
            if (cancel_.load()) {
                return false;
            }
            const int fd = openMember(k, true);
            if (fd < 0) {
                continue;
            }
            Head h{k, arena_.size(), 0, 0, false};
            arena_.resize(h.offset + cap);
            bool cold = false;
            const long n = readFirst(fd, arena_.data() + h.offset, cap, size, cold);
            signals_.sawRead(cold);
            counted(n);
            readBytes(k, 0, arena_.data() + h.offset, n, cap);
            if (n < 0) {
                arena_.resize(h.offset);
                closeKeepingErrno(fd);
                unreadable(k);
                continue;
            }
            // A file read only in part is read again by the comparison.
            closeAfterReading(fd, static_cast<std::size_t>(n) < cap);
            h.length = static_cast<std::size_t>(n);
            arena_.resize(h.offset + h.length);
            // A short read is the real end of the file, whatever the walk saw.
            h.complete = h.length < cap;
            if (h.complete && h.length == 0) {
                empty_.push_back(k);
                continue;
            }
            // The first bytes separate nearly all different files; ties are
            // settled by comparing the bytes themselves.
            h.hash = quickHash(arena_.data() + h.offset, std::min(h.length, kHashedBytes));
            heads_.push_back(h);
        }
        return true;
    }

    // Files ks agree in their first offset bytes: sort them into sets by the rest.
    bool compareRest(std::vector<std::size_t> ks, std::uint64_t offset) {
        if (ks.size() <= kMaxSideBySide) {
            std::vector<std::vector<std::size_t>> sets;
            if (!compareSideBySide(ks, offset, cancel_, *this, sets)) {
                return false;
            }
            for (const auto& set : sets) {
                newSet(set);
            }
            return true;
        }
        return compareMany(std::move(ks), offset);
    }

    // Too many to hold open at once: a hash of the rest of each file sorts
    // them into likely sets, and each is then confirmed byte for byte against
    // its first file, a few files at a time.
    bool compareMany(std::vector<std::size_t> ks, std::uint64_t offset) {
        std::vector<std::pair<std::pair<std::uint64_t, std::uint64_t>, std::size_t>> keyed;
        std::vector<unsigned char>& buffer = blockBuffer(1);
        for (std::size_t k : ks) {
            if (cancel_.load()) {
                return false;
            }
            const int fd = openMember(k);
            if (fd < 0) {
                continue;
            }
            std::uint64_t h = 0x9E3779B97F4A7C15ULL;
            std::uint64_t at = offset;
            long n = 0;
            while ((n = preadFully(fd, buffer.data(), kCompareBlock, at)) > 0) {
                h = mix(h, quickHash(buffer.data(), static_cast<std::size_t>(n)));
                counted(n);
                readBytes(k, at, buffer.data(), n, kCompareBlock);
                at += static_cast<std::uint64_t>(n);
                if (static_cast<std::size_t>(n) < kCompareBlock) {
                    break;
                }
            }
            if (n < 0) {
                closeKeepingErrno(fd);
                unreadable(k);
                continue;
            }
            closeAfterReading(fd);
            keyed.push_back({{h, at}, k});
        }
        std::sort(keyed.begin(), keyed.end());
        for (std::size_t s = 0; s < keyed.size();) {
            std::size_t e = s + 1;
            while (e < keyed.size() && keyed[e].first == keyed[s].first) {
                ++e;
            }
            std::vector<std::size_t> candidates;
            for (std::size_t m = s; m < e; ++m) {
                candidates.push_back(keyed[m].second);
            }
            if (!confirm(std::move(candidates), offset)) {
                return false;
            }
            s = e;
        }
        return true;
    }

    bool confirm(std::vector<std::size_t> candidates, std::uint64_t offset) {
        std::vector<char> withFirst(count_, 0);
        while (candidates.size() >= 2) {
            const std::size_t first = candidates.front();
            const auto emptyBefore = static_cast<std::ptrdiff_t>(empty_.size());
            auto lost = [&](std::size_t k) {
                return std::find(empty_.begin() + emptyBefore, empty_.end(), k) != empty_.end();
            };
            std::vector<std::size_t> same{first};
            for (std::size_t at = 1; at < candidates.size() && !lost(first);
                 at += kMaxSideBySide - 1) {
                std::vector<std::size_t> batch{first};
                for (std::size_t m = at; m < std::min(candidates.size(), at + kMaxSideBySide - 1);
                     ++m) {
                    batch.push_back(candidates[m]);
                }
                std::vector<std::vector<std::size_t>> sets;
                if (!compareSideBySide(batch, offset, cancel_, *this, sets)) {
                    return false;
                }
                for (const auto& set : sets) {
                    if (std::find(set.begin(), set.end(), first) != set.end()) {
                        same.insert(same.end(), set.begin() + (set.front() == first ? 1 : 0),
                                    set.end());
                    }
                }
            }
            // Unreadable now, the first file can't confirm anything: those it
            // matched start over with the others.
            const bool firstLost = lost(first);
            if (!firstLost && same.size() >= 2) {
                std::sort(same.begin(), same.end());
                same.erase(std::unique(same.begin(), same.end()), same.end());
                newSet(same);
                for (std::size_t k : same) {
                    withFirst[k] = 1;
                }
            }
            std::vector<std::size_t> rest;
            for (std::size_t k : candidates) {
                if (k != first && !withFirst[k] && !lost(k)) {
                    rest.push_back(k);
                }
            }
            candidates = std::move(rest);
        }
        return true;
    }

    const FileList& list_;
    const std::size_t begin_;
    const std::size_t count_;
    const AtomicFlag& cancel_;
    ReadSignals& signals_;
    ByteProgress& progress_;
    Diagnostics& diagnostics_;
    const std::uint64_t budget_; // the run's share of the bytes to compare
    std::uint64_t counted_ = 0;
    std::vector<std::uint32_t>& setOf_;
    std::uint32_t nextSet_ = 1;
    std::vector<Head> heads_;
    std::vector<unsigned char> arena_;
    std::vector<std::size_t> empty_; // read as empty: unreadable, or empty now
    std::optional<RunFingerprints> prints_;
};

} // namespace

bool compareRunContents(const FileList& list, std::size_t begin, std::size_t end,
                        const AtomicFlag& cancel, ReadSignals& signals, ByteProgress& progress,
                        Diagnostics& diagnostics, FingerprintStore* store,
                        std::vector<std::uint32_t>& setOf) {
    return RunComparer(list, begin, end, cancel, signals, progress, diagnostics, store, setOf)
        .run();
}

} // namespace twinsweep
