// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "engine/PathText.h"

namespace twinsweep {

using Md5 = std::array<unsigned char, 16>;

// Files of this size and more are taken as copies on equal size alone.
inline constexpr std::uint64_t kLargeFileThreshold = 104857600;

// Base64 (standard alphabet, "=" padding): always 24 characters for a digest.
std::string base64Text(const Md5& digest);

Md5 md5Of(const void* data, std::size_t length);

// MD5 of the whole contents, read through a fixed buffer. A file that can't be
// read is digested as empty, after its "Ooops! Something went wrong: " line.
// folder: the walked folder it was found in (FolderRegistry), so that a path
// deeper than PATH_MAX is read too; 0 when not known.
Md5 streamDigest(PathArg path, std::uint32_t folder = 0);
// The same for a file already open (openForReading), which it closes; path
// names it in the message.
Md5 streamDigestOf(int fd, PathArg path);

// Opens a regular file for reading, never blocking on a FIFO or a device;
// anything else fails (EISDIR for a folder, EINVAL otherwise). Returns -1 with
// errno set on failure. folder as for streamDigest. headFirst: the caller
// reports whether its first read waited for the disk (firstReadWas).
int openForReading(PathArg path, std::uint32_t folder = 0, bool headFirst = false);

// Reads up to length bytes, retrying short reads; the count read (less only at
// the end of the file), or -1 with errno set.
long readFully(int fd, unsigned char* data, std::size_t length);
// The same at an offset.
long preadFully(int fd, unsigned char* data, std::size_t length, std::uint64_t offset);

// A fast hash of a few bytes, only to sort likely-equal byte strings together.
std::uint64_t quickHash(const unsigned char* data, std::size_t length);

} // namespace twinsweep
