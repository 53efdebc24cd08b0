// SPDX-License-Identifier: GPL-3.0-or-later
#include "KillAt.h"

#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/TempTree.h"

namespace twinsweep::testing {

namespace {

// The kernel's struct ptrace_syscall_info, as far as an entry goes (its
// header and glibc's can't both be included).
struct SyscallInfo {
    std::uint8_t op;
    std::uint8_t pad[3];
    std::uint32_t arch;
    std::uint64_t instructionPointer;
    std::uint64_t stackPointer;
    std::uint64_t nr;
    std::uint64_t args[6];
    std::uint32_t retData;
};
constexpr std::uint8_t kEntry = 1;

} // namespace

std::string SyscallEntry::text(int arg) const {
    const int mem = ::open(("/proc/" + std::to_string(pid) + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    char buf[4096] = {};
    const ssize_t n =
        mem >= 0 ? ::pread(mem, buf, sizeof buf - 1, static_cast<off_t>(args[arg])) : -1;
    if (mem >= 0) {
        ::close(mem);
    }
    return n > 0 ? std::string(buf) : std::string();
}

CliOutcome killedAt(const CliRun& run, const std::function<bool(const SyscallEntry&)>& when,
                    bool& killed) {
    killed = false;
    const RunningCli r = startCli(run);
    if (::ptrace(static_cast<__ptrace_request>(PTRACE_SEIZE), r.pid, nullptr,
                 PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) != 0) {
        ADD_FAILURE() << "twinsweep-cli could not be traced";
        ::kill(r.pid, SIGKILL);
        return finishCli(r);
    }
    int status = 0;
    ::ptrace(static_cast<__ptrace_request>(PTRACE_INTERRUPT), r.pid, nullptr, nullptr);
    ::waitpid(r.pid, &status, __WALL);
    if (r.terminal >= 0) { // read when the tool asks
        EXPECT_GE(::write(r.terminal, run.answer.data(), run.answer.size()), 0);
    }
    int signal = 0;
    for (;;) {
        ::ptrace(PTRACE_SYSCALL, r.pid, nullptr, signal);
        if (::waitpid(r.pid, &status, __WALL) != r.pid || WIFEXITED(status) ||
            WIFSIGNALED(status)) {
            break;
        }
        signal = 0;
        const int stop = WSTOPSIG(status);
        if (stop != (SIGTRAP | 0x80)) {
            // An event stop continues as it was; a signal goes on to the tool.
            signal = (status >> 16) != 0 ? 0 : stop;
            continue;
        }
        SyscallInfo info{};
        if (::ptrace(static_cast<__ptrace_request>(PTRACE_GET_SYSCALL_INFO), r.pid, sizeof info,
                     &info) <= 0 ||
            info.op != kEntry) {
            continue;
        }
        SyscallEntry entry{r.pid, static_cast<long>(info.nr), {}};
        for (int i = 0; i < 6; ++i) {
            entry.args[i] = info.args[i];
        }
        if (when(entry)) {
            killed = true;
            ::kill(r.pid, SIGKILL);
            ::waitpid(r.pid, &status, __WALL);
            break;
        }
    }
    if (r.terminal >= 0) {
        ::close(r.terminal);
    }
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), slurp(r.outPath),
            slurp(r.errPath)};
}

} // namespace twinsweep::testing
