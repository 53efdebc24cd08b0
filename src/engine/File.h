// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "engine/DigestText.h"
#include "engine/PathText.h"
#include "engine/RuleText.h"
#include "engine/ShortText.h"

namespace twinsweep {

// What the search saw of a file, so that cleaning can tell whether the file at
// a path is still the one that was compared. Every record carries one, so it
// is packed into 32 bytes: device numbers fit in 32 bits (the kernel keeps 12
// bits of major and 20 of minor number), nanoseconds in 30.
struct FileIdentity {
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t mtimeSec = 0;
    std::uint32_t device = 0;
    std::int32_t mtimeNsec : 31 = 0;
    bool known : 1 = false;

    bool operator==(const FileIdentity&) const = default;
};

// A signed 64-bit value that the results window's background job may write
// while the window's tables read it. Relaxed atomic access costs nothing more
// than a plain one here and keeps the sharing well defined.
class SharedInt {
  public:
    SharedInt(std::int64_t value = 0) : value_(value) {}
    SharedInt(const SharedInt& other) : value_(other.load()) {}
    SharedInt& operator=(const SharedInt& other) {
        store(other.load());
        return *this;
    }
    SharedInt& operator=(std::int64_t value) {
        store(value);
        return *this;
    }
    operator std::int64_t() const { return load(); }
    std::int64_t load() const { return value_.load(std::memory_order_relaxed); }
    void store(std::int64_t value) { value_.store(value, std::memory_order_relaxed); }

  private:
    std::atomic<std::int64_t> value_;
};

// Reads the identity of the item at path without following a final link.
// Returns an identity with known == false when the item can't be read.
FileIdentity identityOf(const std::string& path);
// The identity a stat of the item gave.
FileIdentity identityFromStat(const struct stat& st);

class DuplicateFile {
  public:
    DuplicateFile(PathText path, std::string date, std::int64_t checkState);

    // Shared with the record it was made from: one text for both.
    PathText path;
    std::string date;
    SharedInt checkState = 0;

    // What the search saw of this member (filled by the engine).
    FileIdentity seen;
    // The folder the walk found it in (FolderRegistry; 0 when unknown).
    std::uint32_t folder = 0;
    // Under a folder the user protected: never marked, never removed.
    bool isProtected = false;
};

using DuplicateFilePtr = std::shared_ptr<DuplicateFile>;

class File {
  public:
    explicit File(PathText path);

    PathText path;
    ShortText ext;
    std::uint64_t size = 0;
    std::vector<DuplicateFilePtr> duplicates;
    bool wasFound = false;
    // The folder the walk found this item in (FolderRegistry; 0 when unknown).
    std::uint32_t folder = 0;
    SharedInt keepOption = 0;
    RuleText customSettings;
    DigestText MD5Hash;

    // What the walk saw of this file; copied into its own member entry.
    FileIdentity seen;

    // For the walk, which has already read the attributes: the same record as
    // the path constructor makes, without reading them again.
    struct Seen {};
    File(PathText path, const FileIdentity& identity, Seen);
};

using FilePtr = std::shared_ptr<File>;
using FileList = std::vector<FilePtr>;

// The text after the last "." of the last path component, lower-cased; "" when none.
std::string extensionOf(std::string_view path);

// The 23-line custom rule text every new record starts with.
const std::string& defaultRuleText();

} // namespace twinsweep
