// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/Diagnostics.h"

namespace twinsweep::testing {

// A temporary folder, removed with everything in it when the object goes.
class TempTree {
  public:
    // In the system's temporary folder, or under base when given.
    explicit TempTree(const std::string& base = {});
    ~TempTree();
    TempTree(const TempTree&) = delete;
    TempTree& operator=(const TempTree&) = delete;

    const std::string& root() const { return root_; }
    std::string path(const std::string& rel) const { return root_ + "/" + rel; }
    // These make the missing parent folders and return the absolute path.
    std::string mkdir(const std::string& rel) const;
    std::string write(const std::string& rel, const std::string& contents) const;
    std::string writeSized(const std::string& rel, std::uint64_t size, char fill = 'x') const {
        return write(rel, std::string(size, fill));
    }
    std::string sparse(const std::string& rel, std::uint64_t size) const; // nothing written
    std::string symlink(const std::string& target, const std::string& rel) const;
    // Lets every user read and walk the tree (for runUnprivileged).
    void openToEveryone() const;
    // Every entry by relative path: a file's bytes, "/" for a folder, "-> target" for a link.
    std::map<std::string, std::string> snapshot() const;

  private:
    std::string withParent(const std::string& rel) const;
    std::string root_;
};

// Collects the diagnostic lines that the code under test reports through the
// process's sink (where a search without a sink of its own reports too).
class DiagnosticsCapture {
  public:
    DiagnosticsCapture();
    ~DiagnosticsCapture();
    std::string finish(); // stops collecting; returns the lines, each ending in a line feed

  private:
    CollectedDiagnostics sink_;
    Diagnostics* before_ = nullptr;
    bool done_ = false;
};

// The lines, each ending in a line feed.
std::string joined(const std::vector<std::string>& lines);

std::vector<std::string> lines(const std::string& text);

// The whole contents of a file (empty when it cannot be read).
std::string slurp(const std::string& path);

// Runs body in a child process as an ordinary user (nobody) when the tests
// run as root, so that permission checks really apply; directly otherwise.
// The tree must be reachable by that user (TempTree::openToEveryone).
// Returns body's result, or -1 if the child failed.
int runUnprivileged(const std::function<int()>& body);

// A mount namespace of this process's own, so tests may mount; false: skip.
bool privateMounts();

// Mounts an empty tmpfs at folder (in the private mount namespace); the
// returned guard detaches it. Null when the mount failed.
std::shared_ptr<void> mountTmpfs(const std::string& folder);

} // namespace twinsweep::testing
