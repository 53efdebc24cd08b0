// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Cli.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "support/TempTree.h"

namespace twinsweep::testing {

namespace {

[[noreturn]] void execCli(const CliRun& run, const RunningCli& r, const std::string& tty,
                          const std::string& scratch) {
    if (!tty.empty()) {
        ::setsid();
    }
    ::dup2(::open(tty.empty() ? "/dev/null" : tty.c_str(), O_RDWR), 0);
    int out = ::open(r.outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    int p[2];
    if (run.closedOutput && ::pipe(p) == 0) {
        ::close(p[0]);
        out = p[1];
    }
    ::dup2(out, 1);
    ::dup2(::open(r.errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 2);
    if (run.unprivileged && ::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
        ::_exit(126);
    }
    ::setenv("XDG_RUNTIME_DIR", (scratch + "/run").c_str(), 1);
    ::setenv("XDG_STATE_HOME", (scratch + "/state").c_str(), 1);
    ::setenv("XDG_DATA_HOME", (scratch + "/data").c_str(), 1);
    for (const std::string& kv : run.env) {
        ::putenv(const_cast<char*>(kv.c_str()));
    }
    std::vector<char*> argv{const_cast<char*>(TWINSWEEP_CLI_PATH)};
    for (const std::string& a : run.args) {
        argv.push_back(const_cast<char*>(a.c_str()));
    }
    argv.push_back(nullptr);
    ::execv(TWINSWEEP_CLI_PATH, argv.data());
    ::_exit(127);
}

} // namespace

RunningCli startCli(const CliRun& run) {
    auto scratch = std::make_shared<TempTree>();
    scratch->openToEveryone();
    // Lock and records need folders of the run's user alone, under a sticky one.
    ::chmod(scratch->root().c_str(), 01777);
    for (const char* own : {"run", "state"}) {
        ::chmod(scratch->mkdir(own).c_str(), 0700);
        if (run.unprivileged && ::geteuid() == 0 &&
            ::chown(scratch->path(own).c_str(), 65534, 65534) != 0) {
            ADD_FAILURE() << "cannot hand " << own << " to nobody";
        }
    }
    RunningCli r{-1, scratch->path("stdout"), scratch->path("stderr"), scratch, -1};
    std::string tty;
    if (!run.prompt.empty()) {
        r.terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (r.terminal < 0 || ::grantpt(r.terminal) != 0 || ::unlockpt(r.terminal) != 0) {
            ADD_FAILURE() << "no pseudo-terminal: " << std::strerror(errno);
        } else {
            tty = ::ptsname(r.terminal);
        }
    }
    r.pid = ::fork();
    if (r.pid == 0) {
        execCli(run, r, tty, scratch->root());
    }
    return r;
}

CliOutcome finishCli(const RunningCli& running) {
    int raw = 0;
    ::waitpid(running.pid, &raw, 0);
    if (running.terminal >= 0) {
        ::close(running.terminal);
    }
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw), slurp(running.outPath),
            slurp(running.errPath)};
}

bool waitForText(const std::string& path, const std::string& needle, pid_t pid) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
    while (std::chrono::steady_clock::now() < deadline) {
        if (slurp(path).find(needle) != std::string::npos) {
            return true;
        }
        siginfo_t ended{};
        if (pid > 0 && ::waitid(P_PID, pid, &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
            ended.si_pid == pid) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

CliOutcome runCli(const CliRun& run) {
    const RunningCli r = startCli(run);
    if (r.terminal >= 0 && !waitForText(r.errPath, run.prompt, r.pid)) {
        ADD_FAILURE() << "twinsweep-cli never asked: " << run.prompt;
        ::kill(r.pid, SIGKILL);
    } else if (r.terminal >= 0) {
        if (run.between) {
            run.between(r.pid);
        }
        EXPECT_GE(::write(r.terminal, run.answer.data(), run.answer.size()), 0)
            << std::strerror(errno);
    }
    return finishCli(r);
}

std::vector<std::string> listed(const std::string& report, const std::string& prefix) {
    std::vector<std::string> out;
    for (const std::string& l : lines(report)) {
        if (l.rfind(prefix, 0) == 0) {
            out.push_back(l.substr(prefix.size()));
        }
    }
    return out;
}

::testing::AssertionResult says(const std::string& text, const std::string& needle) {
    if (text.find(needle) != std::string::npos) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "no \"" << needle << "\" in:\n" << text;
}

} // namespace twinsweep::testing
