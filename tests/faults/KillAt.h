// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <sys/types.h>

#include "support/Cli.h"

namespace twinsweep::testing {

// One system call the tool is about to make.
struct SyscallEntry {
    pid_t pid;
    long nr;
    unsigned long long args[6];
    std::string text(int arg) const; // a path argument, read from the tool's memory
};

// Runs the tool traced from its start (a prompt, if any, is answered ahead),
// and kills it (SIGKILL) on entering the first system call when picks: a stop
// at an exact moment, as a crash or the OOM killer would make it. killed says
// whether that moment came.
CliOutcome killedAt(const CliRun& run, const std::function<bool(const SyscallEntry&)>& when,
                    bool& killed);

} // namespace twinsweep::testing
