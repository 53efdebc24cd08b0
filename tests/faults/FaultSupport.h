#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <sys/types.h>
#include <vector>

#include "support/Cli.h"

namespace twinsweep::testing {

// Everything under a folder, by path relative to it: a regular file's size and
// digest, a link's target text, or the kind of a folder or special file. Links
// are never followed.
using Snapshot = std::map<std::string, std::string>;
Snapshot snapshot(const std::string& root);

// How a snapshot shows a regular file holding bytes.
std::string fileEntry(const std::string& bytes);

// Passes when every item of before is still in after, unchanged, apart from
// the relative paths in gone (which must really be gone).
::testing::AssertionResult nothingLost(const Snapshot& before, const Snapshot& after,
                                       const std::set<std::string>& gone = {});

// Moves this test process into a mount namespace of its own, so tests may
// mount; false (skip) when the system does not allow it.
bool privateMounts();

// Holds the first read of a file in folder by another process, in the kernel
// (fanotify permission event), until whileHeld has run: the race is exact
// under any load. False when nothing came within a minute.
class AccessWatch {
  public:
    static bool available(); // fanotify needs root
    explicit AccessWatch(const std::string& folder);
    ~AccessWatch();
    bool holdFirstAccess(const std::function<void()>& whileHeld);

  private:
    void allow(int eventFd);
    int fan_ = -1;
};

// Paths under root, relative to it.
std::string rel(const std::string& root, const std::string& path);
std::set<std::string> relSet(const std::string& root, const std::vector<std::string>& paths);

// Overwrites path with contents of the same length, keeping its inode.
void rewriteInPlace(const std::string& path, const std::string& contents);

} // namespace twinsweep::testing
