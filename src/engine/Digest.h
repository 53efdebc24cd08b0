#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace twinsweep {

using Md5 = std::array<unsigned char, 16>;

// Files of this size and more are taken as copies on equal size alone.
inline constexpr std::uint64_t kLargeFileThreshold = 104857600;

// Base64 (standard alphabet, "=" padding): always 24 characters for a digest.
std::string base64Text(const Md5& digest);

Md5 md5Of(const void* data, std::size_t length);

// MD5 of the whole contents, read through a fixed buffer. A file that can't be
// read is digested as empty, after its "Ooops! Something went wrong: " line.
Md5 streamDigest(const std::string& path);

// The first bytes of a file, enough to tell most same-size files apart
// without reading them whole.
struct Prefix {
    static constexpr std::size_t kLength = 4096;
    std::uint64_t hash = 0;
    std::uint32_t length = 0;
    // The whole contents were read (small file, or unreadable and so taken as
    // empty): its digest needs no second read.
    bool complete = false;
    std::array<unsigned char, kLength> bytes{};
};

// Reads the first bytes of the file at path, of which the walk saw size bytes.
void readPrefix(const std::string& path, std::uint64_t size, Prefix& out);

} // namespace twinsweep
