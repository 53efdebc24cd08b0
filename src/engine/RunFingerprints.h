// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "engine/File.h"
#include "engine/Fingerprints.h"

namespace twinsweep {

class AtomicFlag;

// The remembered fingerprints of one run of equal size (see
// compareRunContents). A run is told apart by fingerprints alone only when
// every member's key is remembered; otherwise its bytes are compared as
// without a store, and each member not remembered is fingerprinted from the
// bytes that comparison reads, then read on to its end, so that its next
// search needs no reading.
class RunFingerprints {
  public:
    RunFingerprints(const FileList& list, std::size_t begin, std::size_t count,
                    FingerprintStore& store);
    ~RunFingerprints();

    // Reads every member's key (opening it, reading nothing) and looks it up.
    // True when every member is remembered. False too when cancelled.
    bool allRemembered(const AtomicFlag& cancel);
    // The sets of members with the same remembered fingerprint, numbered as
    // compareRunContents numbers them.
    void setsByFingerprint(std::vector<std::uint32_t>& setOf) const;

    // The comparison read n bytes of member k at offset, asking for requested
    // (fewer: the end of the file). Only a read that continues where the
    // fingerprint stands is taken.
    void read(std::size_t k, std::uint64_t offset, const unsigned char* data, long n,
              std::size_t requested);
    // Member k could not be read: nothing is remembered of it.
    void failed(std::size_t k);
    // Reads each member not remembered on from where the comparison left it,
    // and remembers its fingerprint when its key did not change meanwhile.
    // False when cancelled part way.
    bool finish(const AtomicFlag& cancel);

  private:
    struct Member;
    const FileList& list_;
    const std::size_t begin_;
    FingerprintStore& store_;
    std::vector<Member> members_;
};

} // namespace twinsweep
