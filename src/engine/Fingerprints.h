// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <sys/stat.h>

namespace twinsweep {

// What identifies a file's contents without reading them: a remembered
// fingerprint holds only while every part is what it was when the contents
// were read. A write changes the modification and change times; a rename or a
// replacement, the inode or the change time; the change time can't be set back.
struct FingerprintKey {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t mtimeNs = 0;
    std::int64_t ctimeNs = 0;

    bool operator==(const FingerprintKey&) const = default;
};

FingerprintKey fingerprintKeyOf(const struct stat& st);

// BLAKE2b-512 of the whole contents.
using Fingerprint = std::array<unsigned char, 64>;

// Fingerprints remembered between searches. The comparison asks it from
// several threads at once.
class FingerprintStore {
  public:
    virtual ~FingerprintStore() = default;
    // The fingerprint remembered under exactly this key.
    virtual std::optional<Fingerprint> find(const FingerprintKey& key) = 0;
    // Remembers a fingerprint (kept at the latest by flush).
    virtual void remember(const FingerprintKey& key, const Fingerprint& fingerprint) = 0;
    // Writes what was remembered since the last flush.
    virtual void flush() = 0;
};

// A BLAKE2b-512 fed in pieces, from OpenSSL.
class FingerprintHasher {
  public:
    FingerprintHasher();
    ~FingerprintHasher();
    FingerprintHasher(const FingerprintHasher&) = delete;
    FingerprintHasher& operator=(const FingerprintHasher&) = delete;

    void add(const unsigned char* data, std::size_t length);
    Fingerprint finish();

  private:
    struct Context;
    std::unique_ptr<Context> context_;
};

} // namespace twinsweep
