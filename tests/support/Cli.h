#pragma once

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

// Runs the real twinsweep-cli (TWINSWEEP_CLI_PATH) and reads what it wrote.
namespace twinsweep::testing {

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

inline CliOutcome runCli(std::vector<std::string> args) {
    CliRun run;
    run.args = std::move(args);
    return runCli(run);
}

} // namespace twinsweep::testing
