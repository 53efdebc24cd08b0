#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

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
    // Absolute path of rel inside the tree.
    std::string path(const std::string& rel) const;
    // Makes the folder rel and its parents.
    std::string mkdir(const std::string& rel) const;
    // Writes a file (making parent folders) and returns its absolute path.
    std::string write(const std::string& rel, const std::string& contents) const;
    // Writes a file of size bytes filled with fill.
    std::string writeSized(const std::string& rel, std::uint64_t size, char fill = 'x') const;
    // Makes a sparse file of size bytes (nothing written).
    std::string sparse(const std::string& rel, std::uint64_t size) const;
    std::string symlink(const std::string& target, const std::string& rel) const;
    // Lets every user read and walk the tree (for runUnprivileged).
    void openToEveryone() const;

  private:
    std::string root_;
};

// Removes a whole tree, making folders writable first.
void removeTree(const std::string& path);

// Captures what the code under test writes to standard output.
class StdoutCapture {
  public:
    StdoutCapture();
    ~StdoutCapture();
    // Stops capturing and returns everything written.
    std::string finish();

  private:
    int saved_ = -1;
    std::string file_;
    bool done_ = false;
};

std::vector<std::string> lines(const std::string& text);

// The whole contents of a file (empty when it cannot be read).
std::string slurp(const std::string& path);

// Runs body in a child process with the rights of an ordinary user (nobody)
// when the tests run as root, so that permission checks really apply; runs it
// directly otherwise. The tree must be reachable by that user (see
// TempTree::openToEveryone). Returns body's result, or -1 if the child failed.
int runUnprivileged(const std::function<int()>& body);

} // namespace twinsweep::testing
