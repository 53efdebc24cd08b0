// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/RunFingerprints.h"

#include <map>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/Digest.h"
#include "engine/SideBySide.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

struct RunFingerprints::Member {
    std::optional<FingerprintKey> key; // when the search first looked
    std::optional<Fingerprint> remembered;
    std::unique_ptr<FingerprintHasher> hasher;
    std::uint64_t at = 0; // bytes fingerprinted so far, from the start
    bool ended = false;   // the fingerprint covers the whole file
    bool failed = false;
};

namespace {

// The key of the file open at fd, if it is one worth remembering.
std::optional<FingerprintKey> keyOf(int fd) {
    struct stat st {};
    if (fd < 0 || ::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size == 0) {
        return std::nullopt;
    }
    return fingerprintKeyOf(st);
}

} // namespace

RunFingerprints::RunFingerprints(const FileList& list, std::size_t begin, std::size_t count,
                                 FingerprintStore& store)
    : list_(list), begin_(begin), store_(store), members_(count) {}

RunFingerprints::~RunFingerprints() = default;

bool RunFingerprints::allRemembered(const AtomicFlag& cancel) {
    bool all = true;
    for (std::size_t k = 0; k < members_.size(); ++k) {
        if (cancel.load()) {
            return false;
        }
        const File& f = *list_[begin_ + k];
        const int fd = openForReading(f.path, f.folder);
        Member& m = members_[k];
        m.key = keyOf(fd);
        if (fd >= 0) {
            ::close(fd);
        }
        if (m.key) {
            m.remembered = store_.find(*m.key);
        }
        all = all && m.remembered.has_value();
    }
    return all;
}

void RunFingerprints::setsByFingerprint(std::vector<std::uint32_t>& setOf) const {
    std::map<Fingerprint, std::vector<std::size_t>> byPrint;
    for (std::size_t k = 0; k < members_.size(); ++k) {
        byPrint[*members_[k].remembered].push_back(k);
    }
    setOf.assign(members_.size(), 0);
    std::uint32_t next = 1;
    for (const auto& [print, ks] : byPrint) {
        if (ks.size() >= 2) {
            for (std::size_t k : ks) {
                setOf[k] = next;
            }
            ++next;
        }
    }
}

void RunFingerprints::read(std::size_t k, std::uint64_t offset, const unsigned char* data, long n,
                           std::size_t requested) {
    Member& m = members_[k];
    if (m.failed || m.ended || m.remembered || !m.key || n < 0 || offset != m.at) {
        return;
    }
    if (!m.hasher) {
        m.hasher = std::make_unique<FingerprintHasher>();
    }
    m.hasher->add(data, static_cast<std::size_t>(n));
    m.at += static_cast<std::uint64_t>(n);
    m.ended = static_cast<std::size_t>(n) < requested;
}

void RunFingerprints::failed(std::size_t k) {
    members_[k].failed = true;
}

bool RunFingerprints::finish(const AtomicFlag& cancel) {
    for (std::size_t k = 0; k < members_.size(); ++k) {
        Member& m = members_[k];
        if (m.failed || m.remembered || !m.key || !m.hasher) {
            continue;
        }
        if (cancel.load()) {
            return false;
        }
        const File& f = *list_[begin_ + k];
        const int fd = openForReading(f.path, f.folder);
        if (fd < 0) {
            continue;
        }
        std::vector<unsigned char>& buffer = blockBuffer(1);
        while (!m.ended && !cancel.load() && keyOf(fd) == m.key) {
            const long n = preadFully(fd, buffer.data(), kCompareBlock, m.at);
            if (n < 0) {
                m.failed = true;
                break;
            }
            read(k, m.at, buffer.data(), n, kCompareBlock);
        }
        if (cancel.load()) {
            ::close(fd);
            return false;
        }
        // Unchanged since before the first byte was read: the bytes are the
        // file's, from one version of it.
        if (m.ended && !m.failed && keyOf(fd) == m.key) {
            store_.remember(*m.key, m.hasher->finish());
        }
        ::close(fd);
    }
    return true;
}

} // namespace twinsweep
