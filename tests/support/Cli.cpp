#include "support/Cli.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "support/TempTree.h"

namespace twinsweep::testing {

namespace {

// The child's side of a run: standard streams, user, environment, exec.
[[noreturn]] void execCli(const CliRun& run, const std::string& outPath, const std::string& errPath,
                          const std::string& slaveName, const std::string& scratch) {
    if (!slaveName.empty()) {
        ::setsid();
        const int slave = ::open(slaveName.c_str(), O_RDWR);
        ::dup2(slave, 0);
    } else {
        const int null = ::open("/dev/null", O_RDONLY);
        ::dup2(null, 0);
    }
    int o = -1;
    if (run.closedOutput) {
        int p[2];
        if (::pipe(p) == 0) {
            ::close(p[0]);
            o = p[1];
        }
    } else {
        o = ::open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    }
    const int e = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ::dup2(o, 1);
    ::dup2(e, 2);
    if (!run.cwd.empty() && ::chdir(run.cwd.c_str()) != 0) {
        ::_exit(125);
    }
    if (run.unprivileged && ::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
        ::_exit(126);
    }
    // Each run has a lock and a Trash of its own unless the test says otherwise.
    ::setenv("XDG_RUNTIME_DIR", scratch.c_str(), 1);
    ::setenv("XDG_DATA_HOME", (scratch + "/data").c_str(), 1);
    for (const std::string& kv : run.env) {
        ::putenv(const_cast<char*>(kv.c_str()));
    }
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(TWINSWEEP_CLI_PATH));
    for (const std::string& a : run.args) {
        argv.push_back(const_cast<char*>(a.c_str()));
    }
    argv.push_back(nullptr);
    ::execv(TWINSWEEP_CLI_PATH, argv.data());
    ::_exit(127);
}

CliOutcome outcomeOf(int raw, const std::string& outPath, const std::string& errPath) {
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw), slurp(outPath),
            slurp(errPath)};
}

} // namespace

RunningCli startCli(const CliRun& run) {
    auto scratch = std::make_shared<TempTree>();
    scratch->openToEveryone();
    ::chmod(scratch->root().c_str(), 0777);
    RunningCli r{-1, scratch->path("stdout"), scratch->path("stderr"), scratch};
    r.pid = ::fork();
    if (r.pid == 0) {
        execCli(run, r.outPath, r.errPath, "", scratch->root());
    }
    return r;
}

CliOutcome finishCli(const RunningCli& running) {
    int raw = 0;
    ::waitpid(running.pid, &raw, 0);
    return outcomeOf(raw, running.outPath, running.errPath);
}

bool waitForText(const std::string& path, const std::string& needle) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (std::chrono::steady_clock::now() < deadline) {
        if (slurp(path).find(needle) != std::string::npos) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

CliOutcome runCli(const CliRun& run) {
    TempTree scratch;
    scratch.openToEveryone();
    ::chmod(scratch.root().c_str(), 0777);
    const std::string outPath = scratch.path("stdout");
    const std::string errPath = scratch.path("stderr");
    int master = -1;
    std::string slaveName;
    if (!run.prompt.empty()) {
        master = ::posix_openpt(O_RDWR | O_NOCTTY);
        if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0) {
            ADD_FAILURE() << "no pseudo-terminal: " << std::strerror(errno);
            return {};
        }
        slaveName = ::ptsname(master);
    }
    const pid_t pid = ::fork();
    if (pid == 0) {
        if (master >= 0) {
            ::close(master);
        }
        execCli(run, outPath, errPath, slaveName, scratch.root());
    }
    if (run.whileRunning) {
        run.whileRunning(pid);
    }
    if (master >= 0) {
        // Wait for the question, act, then answer it.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
        bool asked = false;
        while (std::chrono::steady_clock::now() < deadline) {
            if (slurp(errPath).find(run.prompt) != std::string::npos) {
                asked = true;
                break;
            }
            int raw = 0;
            if (::waitpid(pid, &raw, WNOHANG) == pid) {
                ADD_FAILURE() << "twinsweep-cli ended without asking";
                ::close(master);
                return outcomeOf(raw, outPath, errPath);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        if (!asked) {
            ADD_FAILURE() << "twinsweep-cli never asked: " << run.prompt;
            ::kill(pid, SIGKILL);
        } else {
            if (run.between) {
                run.between();
            }
            if (::write(master, run.answer.data(), run.answer.size()) < 0) {
                ADD_FAILURE() << "cannot answer: " << std::strerror(errno);
            }
        }
    }
    int raw = 0;
    ::waitpid(pid, &raw, 0);
    if (master >= 0) {
        ::close(master);
    }
    return outcomeOf(raw, outPath, errPath);
}

} // namespace twinsweep::testing
