#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <sys/types.h>
#include <vector>

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

struct CliOutcome {
    int status = -1; // exit code, or 128 + signal
    std::string out;
    std::string err;
};

// One run of the real twinsweep-cli.
struct CliRun {
    std::vector<std::string> args;
    // When prompt is set, standard input is a terminal: once standard error
    // shows prompt, between() runs and answer is typed.
    std::string prompt;
    std::function<void()> between;
    std::string answer = "y\n";
    // Extra environment settings, NAME=VALUE.
    std::vector<std::string> env;
    // Run as an ordinary user (nobody) when the tests run as root.
    bool unprivileged = false;
    // Called with the tool's process id while it runs (to signal it, say).
    std::function<void(pid_t)> whileRunning;
    // Standard output is a pipe nobody reads any more.
    bool closedOutput = false;
    std::string cwd;
};

CliOutcome runCli(const CliRun& run);

// A run of the tool in the background (no terminal).
struct RunningCli {
    pid_t pid = -1;
    std::string outPath;
    std::string errPath;
    std::shared_ptr<void> scratch;
};
RunningCli startCli(const CliRun& run);
CliOutcome finishCli(const RunningCli& running);
// Waits (up to a minute) until the file at path holds needle.
bool waitForText(const std::string& path, const std::string& needle);

// Moves this test process into a mount namespace of its own, so tests may
// mount; false (skip) when the system does not allow it.
bool privateMounts();

// Holds the first read of a file in folder by another process until
// whileHeld has run. As root the read itself waits in the kernel (fanotify
// permission event), so the race is exact under any load; elsewhere the
// process pid is stopped (SIGSTOP) as soon as inotify sees the read. False
// when nothing came within a minute.
class AccessWatch {
  public:
    explicit AccessWatch(const std::string& folder);
    ~AccessWatch();
    bool holdFirstAccess(pid_t pid, const std::function<void()>& whileHeld);

  private:
    bool stopOnAccess(pid_t pid);
    void allow(int eventFd);
    int fd_ = -1;  // inotify
    int fan_ = -1; // fanotify
};
inline CliOutcome runCli(std::vector<std::string> args) {
    CliRun run;
    run.args = std::move(args);
    return runCli(run);
}

// The lines of a text that are not empty.
std::vector<std::string> nonEmptyLines(const std::string& text);

// Whether some line of text contains needle.
bool anyLineHas(const std::string& text, const std::string& needle);

// Overwrites path with contents of the same length, keeping its inode.
void rewriteInPlace(const std::string& path, const std::string& contents);

} // namespace twinsweep::testing
