// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Fingerprints.h"

#include <openssl/evp.h>
#include <stdexcept>

namespace twinsweep {

FingerprintKey fingerprintKeyOf(const struct stat& st) {
    auto ns = [](const timespec& t) {
        return static_cast<std::int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec;
    };
    return {static_cast<std::uint64_t>(st.st_dev), static_cast<std::uint64_t>(st.st_ino),
            static_cast<std::uint64_t>(st.st_size), ns(st.st_mtim), ns(st.st_ctim)};
}

struct FingerprintHasher::Context {
    EVP_MD_CTX* ctx = EVP_MD_CTX_new();
    ~Context() { EVP_MD_CTX_free(ctx); }
};

FingerprintHasher::FingerprintHasher() : context_(std::make_unique<Context>()) {
    if (context_->ctx == nullptr ||
        EVP_DigestInit_ex(context_->ctx, EVP_blake2b512(), nullptr) != 1) {
        throw std::runtime_error("BLAKE2b-512 is not available");
    }
}

FingerprintHasher::~FingerprintHasher() = default;

void FingerprintHasher::add(const unsigned char* data, std::size_t length) {
    EVP_DigestUpdate(context_->ctx, data, length);
}

Fingerprint FingerprintHasher::finish() {
    Fingerprint out{};
    unsigned int length = 0;
    EVP_DigestFinal_ex(context_->ctx, out.data(), &length);
    return out;
}

} // namespace twinsweep
