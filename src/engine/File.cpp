// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/File.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

#include "engine/Diagnostics.h"
#include "engine/TextCase.h"

namespace twinsweep {

// A million records are held at once: keep what each one carries small.
static_assert(sizeof(FileIdentity) == 32);
static_assert(sizeof(DigestText) == sizeof(void*));
static_assert(sizeof(ShortText) == 8);
static_assert(sizeof(RuleText) == 8);
// With its shared count, a record is one 128-byte allocation; its path is one more.
static_assert(sizeof(PathText) == sizeof(void*));
static_assert(sizeof(File) <= 112);

FileIdentity identityFromStat(const struct stat& st) {
    FileIdentity id;
    id.device = static_cast<std::uint32_t>(st.st_dev);
    id.inode = static_cast<std::uint64_t>(st.st_ino);
    id.size = static_cast<std::uint64_t>(st.st_size);
    id.mtimeSec = static_cast<std::int64_t>(st.st_mtim.tv_sec);
    id.mtimeNsec = static_cast<std::int32_t>(st.st_mtim.tv_nsec);
    id.known = true;
    return id;
}

namespace {

const RuleText& sharedDefaultRuleText() {
    static const RuleText text(
        "0\n0\n1\n01/01/2017\n0\n0\n0\n01/01/2017\n0\n1\n200\n1\n0\n0\n100\n3\n0\njpg\n0\n "
        "\n1\n0\n0\n");
    return text;
}

} // namespace

FileIdentity identityOf(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0) {
        return {};
    }
    return identityFromStat(st);
}

const std::string& defaultRuleText() {
    return sharedDefaultRuleText().str();
}

std::string extensionOf(std::string_view path) {
    const auto slash = path.find_last_of('/');
    const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    const auto dot = path.find_last_of('.');
    if (dot == std::string::npos || dot < nameStart) {
        return {};
    }
    return lowerCased(path.substr(dot + 1));
}

DuplicateFile::DuplicateFile(PathText p, std::string d, std::int64_t state)
    : path(std::move(p)), date(std::move(d)), checkState(state) {}

File::File(PathText p) : path(std::move(p)) {
    ext = extensionOf(path);
    struct stat st {};
    if (::lstat(path.c_str(), &st) == 0) {
        size = static_cast<std::uint64_t>(st.st_size);
        seen = identityFromStat(st);
    } else {
        printErrorLine("Error: ", path, errno);
    }
    customSettings = sharedDefaultRuleText();
}

File::File(PathText p, const FileIdentity& identity, Seen)
    : path(std::move(p)), size(identity.size), customSettings(sharedDefaultRuleText()),
      seen(identity) {
    ext = extensionOf(path);
}

} // namespace twinsweep
