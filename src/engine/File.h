#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/RuleText.h"

namespace twinsweep {

// What the search saw of a file, so that cleaning can tell whether the file at
// a path is still the one that was compared.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t mtimeSec = 0;
    std::int32_t mtimeNsec = 0;
    bool known = false;

    bool operator==(const FileIdentity&) const = default;
};

// Reads the identity of the item at path without following a final link.
// Returns an identity with known == false when the item can't be read.
FileIdentity identityOf(const std::string& path);

class DuplicateFile {
  public:
    DuplicateFile(std::string path, std::string date, std::int64_t checkState);

    std::string path;
    std::string date;
    std::int64_t checkState = 0;

    // What the search saw of this member (filled by the engine).
    FileIdentity seen;
};

using DuplicateFilePtr = std::shared_ptr<DuplicateFile>;

class File {
  public:
    explicit File(std::string path);

    std::string path;
    std::string ext;
    std::uint64_t size = 0;
    std::vector<DuplicateFilePtr> duplicates;
    bool wasFound = false;
    std::int64_t keepOption = 0;
    RuleText customSettings;
    std::string MD5Hash;

    // What the walk saw of this file; copied into its own member entry.
    FileIdentity seen;

    // For the walk, which has already read the attributes: the same record as
    // the path constructor makes, without reading them again.
    struct Seen {};
    File(std::string path, const FileIdentity& identity, Seen);
};

using FilePtr = std::shared_ptr<File>;
using FileList = std::vector<FilePtr>;

// The text after the last "." of the last path component, lower-cased; "" when none.
std::string extensionOf(const std::string& path);

// The 23-line custom rule text every new record starts with.
const std::string& defaultRuleText();

} // namespace twinsweep
