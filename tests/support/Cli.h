// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

// Runs the real twinsweep-cli (TWINSWEEP_CLI_PATH) and reads what it wrote.
namespace twinsweep::testing {

inline const std::string kDeleteQuestion =
    "permanently remove the selected duplicate files. Continue? [y/N]";

struct CliOutcome {
    int status = -1; // exit code, or 128 + signal
    std::string out;
    std::string err;
};

struct CliRun {
    CliRun(std::vector<std::string> a = {}, std::string p = {})
        : args(std::move(a)), prompt(std::move(p)) {}
    std::vector<std::string> args;
    // With a prompt, standard input is a terminal: on it, between runs, answer is typed.
    std::string prompt;
    std::function<void(pid_t)> between;
    std::string answer = "y\n";
    std::vector<std::string> env; // NAME=VALUE, or NAME to unset
    bool unprivileged = false;    // as nobody when the tests run as root
    bool closedOutput = false;    // standard output is a pipe nobody reads
};

// A run in progress; its own lock and Trash live in scratch unless env says otherwise.
struct RunningCli {
    pid_t pid = -1;
    std::string outPath;
    std::string errPath;
    std::shared_ptr<void> scratch;
    int terminal = -1;
};
RunningCli startCli(const CliRun& run);
CliOutcome finishCli(const RunningCli& running);
CliOutcome runCli(const CliRun& run);
inline CliOutcome runCli(std::vector<std::string> args) {
    return runCli(CliRun{std::move(args)});
}

// Waits (two minutes at most) for needle in the file; false if pid ends first.
bool waitForText(const std::string& path, const std::string& needle, pid_t pid = -1);

// The rest of each line of a report that starts with prefix ("removed: ").
std::vector<std::string> listed(const std::string& report, const std::string& prefix);

// Whether text holds needle, showing the text when it does not.
::testing::AssertionResult says(const std::string& text, const std::string& needle);

} // namespace twinsweep::testing
