// SPDX-License-Identifier: GPL-3.0-or-later
#include "FaultSupport.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/Digest.h"

namespace twinsweep::testing {

namespace {

std::string ownerAndMode(const struct stat& st) {
    char mode[8];
    std::snprintf(mode, sizeof mode, "%04o", static_cast<unsigned>(st.st_mode & 07777));
    return " " + std::to_string(st.st_uid) + ":" + std::to_string(st.st_gid) + " " + mode;
}

} // namespace

Snapshot snapshot(const std::string& root) {
    Snapshot out;
    namespace fs = std::filesystem;
    for (const fs::directory_entry& e :
         fs::recursive_directory_iterator(root, fs::directory_options::skip_permission_denied)) {
        const std::string p = e.path().string();
        struct stat st {};
        ::lstat(p.c_str(), &st);
        out[rel(root, p)] =
            (S_ISDIR(st.st_mode)   ? "folder"
             : S_ISLNK(st.st_mode) ? "link:" + fs::read_symlink(p).string()
             : S_ISREG(st.st_mode)
                 ? "file:" + std::to_string(st.st_size) + ":" + base64Text(streamDigest(p))
                 : "special") +
            (S_ISLNK(st.st_mode) ? " " + std::to_string(st.st_uid) : ownerAndMode(st));
    }
    return out;
}

::testing::AssertionResult nothingLost(const Snapshot& before, const Snapshot& after,
                                       const std::set<std::string>& gone) {
    std::string problems;
    for (const auto& [rel, what] : before) {
        const auto it = after.find(rel);
        if (gone.count(rel) != 0 && it != after.end()) {
            problems += "\n  still there: " + rel;
        } else if (gone.count(rel) == 0 && it == after.end()) {
            problems += "\n  lost: " + rel;
        } else if (gone.count(rel) == 0 && it->second != what) {
            problems += "\n  changed: " + rel;
        }
    }
    if (problems.empty()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << problems;
}

std::string fileEntry(const std::string& bytes, const std::string& path) {
    struct stat st {};
    ::lstat(path.c_str(), &st);
    return "file:" + std::to_string(bytes.size()) + ":" +
           base64Text(md5Of(bytes.data(), bytes.size())) + ownerAndMode(st);
}

std::string rel(const std::string& root, const std::string& path) {
    return path.substr(std::min(path.size(), root.size() + 1));
}

std::set<std::string> relSet(const std::string& root, const std::vector<std::string>& paths) {
    std::set<std::string> out;
    for (const std::string& p : paths) {
        out.insert(rel(root, p));
    }
    return out;
}

void rewriteInPlace(const std::string& path, const std::string& contents) {
    const int fd = ::open(path.c_str(), O_WRONLY);
    ASSERT_GE(fd, 0) << path;
    ASSERT_EQ(::pwrite(fd, contents.data(), contents.size(), 0),
              static_cast<ssize_t>(contents.size()));
    ::close(fd);
}

void twins(const TempTree& tree, const std::string& folder, const std::string& bytes) {
    tree.write(folder + "/a/x", bytes);
    tree.write(folder + "/b/x", bytes);
}

std::string own(const std::string& path, uid_t uid) {
    EXPECT_EQ(::lchown(path.c_str(), uid, uid), 0) << path;
    return path;
}

std::string inodeOf(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 ? std::to_string(st.st_ino) : "0";
}

bool mountAt(const std::string& src, const std::string& at, const char* type,
             const std::string& data) {
    return ::mount(src.c_str(), at.c_str(), type, type ? 0 : MS_BIND, data.c_str()) == 0;
}

} // namespace twinsweep::testing
