// SPDX-License-Identifier: GPL-3.0-or-later
// twinsweep-cli: finds duplicate files from the command line with the same
// engine as the desktop application.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <limits.h>
#include <memory>
#include <poll.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include "cli/Acting.h"
#include "cli/Apply.h"
#include "cli/FolderArgs.h"
#include "cli/Options.h"
#include "cli/Output.h"
#include "cli/Progress.h"
#include "cli/Undo.h"
#include "engine/FileTools.h"
#include "engine/ProtectedFolders.h"
#include "engine/SearchContext.h"
#include "engine/SearchJob.h"
#include "fingerprints/FingerprintCache.h"
#include "removal/PlatformRemover.h"
#include "removal/Share.h"
#include "removal/StoppedCleans.h"
#include "settings/SettingsManager.h"

using namespace twinsweep;

namespace {

constexpr int kExitBadUsage = 2;

AtomicFlag* cancelFlag = nullptr;
volatile std::sig_atomic_t lastSignal = 0;

extern "C" void onInterrupt(int sig) {
    // Lock-free stores only: safe in a signal handler.
    lastSignal = sig;
    if (cancelFlag != nullptr) {
        cancelFlag->store(true);
    }
}

// One line per phase that ran, in order: its name, seconds, items and bytes.
void printPhaseTimings(const PhaseProgress& phases) {
    for (const PhaseProgress::Timing& t : phases.timings()) {
        std::fprintf(stderr, "twinsweep-cli: %s: %.3f s, %llu items, %llu bytes\n",
                     std::string(phaseName(t.phase)).c_str(), t.seconds,
                     static_cast<unsigned long long>(t.items),
                     static_cast<unsigned long long>(t.bytes));
    }
}

bool interrupted() {
    return lastSignal != 0;
}

// Ctrl-C, SIGTERM and SIGHUP end the run between two steps, never within one;
// the exit code is 128 + the signal, as shells expect.
[[noreturn]] void leaveInterrupted() {
    std::fprintf(stderr, "twinsweep-cli: interrupted\n");
    std::fflush(nullptr);
    ::_exit(128 + static_cast<int>(lastSignal));
}

// A reader that went away shows as an error on the pipe: stop before the
// next removal rather than remove what can't be reported.
bool outputGone(int fd) {
    pollfd p{fd, POLLOUT, 0};
    return ::poll(&p, 1, 0) == 1 && (p.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
}

bool writeAll(int fd, std::string_view text) {
    const char* data = text.data();
    std::size_t left = text.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, data, left);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += n;
        left -= static_cast<std::size_t>(n);
    }
    return true;
}

std::string currentFolder() {
    char buf[PATH_MAX];
    return ::getcwd(buf, sizeof buf) != nullptr ? std::string(buf) : std::string("/");
}

} // namespace

int main(int argc, char** argv) {
    const cli::ParseResult parsed =
        cli::parseOptions(std::vector<std::string>(argv + 1, argv + argc), currentFolder());
    if (parsed.error) {
        std::fprintf(stderr, "twinsweep-cli: %s\n", parsed.error->c_str());
        return kExitBadUsage;
    }
    const cli::Options& options = parsed.options;
    if (options.help) {
        return writeAll(STDOUT_FILENO, cli::usageText()) ? 0 : 1;
    }
    if (options.version) {
        return writeAll(STDOUT_FILENO, std::string("twinsweep-cli ") + TWINSWEEP_VERSION + "\n")
                   ? 0
                   : 1;
    }

    if (options.undo) {
        return cli::undoLastTrash();
    }
    if (options.clearCache) {
        if (const std::string err = clearFingerprintCache(); !err.empty()) {
            std::fprintf(stderr, "twinsweep-cli: %s\n", err.c_str());
            return 1;
        }
        return 0;
    }

    switch (options.locations) {
    case cli::Locations::PlatformDefault:
        LocationGate::setProcessDefault(LocationGate::platformDefault());
        break;
    case cli::Locations::MacLayoutUnder:
        LocationGate::setProcessDefault(LocationGate::macLayoutUnder(options.locationRoot));
        break;
    case cli::Locations::Anywhere:
        LocationGate::setProcessDefault(LocationGate::anywhere());
        break;
    }
    if (options.planFile.empty()) {
        // A folder the gate shuts out would give an empty report: say why instead.
        if (const std::string err =
                cli::outsideLocationsError(LocationGate::processDefault(), options.folders);
            !err.empty()) {
            std::fprintf(stderr, "twinsweep-cli: %s\n", err.c_str());
            return kExitBadUsage;
        }
    }

    const std::shared_ptr<SettingsManager> settings = SettingsManager::shared();
    if (cli::marks(options)) {
        // Refuse before searching, not after.
        if (!options.rulesFile.empty()) {
            if (const std::string err = cli::loadRulesFile(options.rulesFile, *settings);
                !err.empty()) {
                std::fprintf(stderr, "twinsweep-cli: %s\n", err.c_str());
                return kExitBadUsage;
            }
        }
        if (options.removal == cli::Removal::Share && !anyCanShareStorage(options.folders)) {
            std::fprintf(stderr, "twinsweep-cli: %s\n", kNothingCanShare);
            return kExitBadUsage;
        }
        if (options.removal == cli::Removal::Delete && !cli::dryRun(options) && !options.yes &&
            !::isatty(STDIN_FILENO)) {
            std::fprintf(stderr, "twinsweep-cli: --delete needs --yes when standard input is not a "
                                 "terminal\n");
            return kExitBadUsage;
        }
    }
    settings->listFolderPaths = options.folders;
    settings->protectedFolders = options.protectedFolders;
    settings->minimumFileSize = options.minimumSize;
    settings->maximumFileSize = options.maximumSize;
    settings->customFileTypes = !options.extensions.empty();
    settings->listFileExtensions = options.extensions;
    settings->ignorePackages = options.ignorePackages;
    settings->compareLargeFilesByContent = options.compareLargeByContent;
    settings->idleSearch = options.idle;
    settings->searchCanceledByUser = false;

    cancelFlag = &settings->searchCanceledByUser;
    // No SA_RESTART: a signal must also end a wait for the terminal or the
    // cleaning lock.
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;
    for (const int sig : {SIGINT, SIGTERM, SIGHUP}) {
        ::sigaction(sig, &action, nullptr);
    }
    ::signal(SIGPIPE, SIG_IGN);

    // Diagnostic lines (the search's, the fingerprint store's, the clean's)
    // go to standard error: standard output carries the report alone.
    static DescriptorDiagnostics errors(STDERR_FILENO);
    setProcessDiagnostics(&errors);
    const int reportFd = STDOUT_FILENO;
    SearchContext context(settings->searchCanceledByUser, errors);

    // The engine lives until the process ends: tearing down a million
    // records only to exit would cost time for nothing.
    auto* tools = new FileTools;
    if (options.cache) {
        tools->fingerprints = openFingerprintCache(); // says why when there is none
    }
    bool completed = false;
    if (!options.planFile.empty()) {
        // The plan stands for the search: its groups, marks and identities.
        FileList groups;
        if (const std::string err = cli::loadPlan(options, groups); !err.empty()) {
            std::fprintf(stderr, "twinsweep-cli: %s; nothing was removed\n", err.c_str());
            std::fflush(nullptr);
            ::_exit(kExitBadUsage);
        }
        applyProtection(groups, options.protectedFolders);
        settings->duplicateFileList = std::move(groups);
        completed = true;
    } else {
        std::unique_ptr<cli::TerminalProgress> progress;
        if (::isatty(STDERR_FILENO)) {
            progress = std::make_unique<cli::TerminalProgress>(STDERR_FILENO, context);
        }
        completed = runSearchJob(*settings, *tools, context);
        progress.reset();
        if (options.verbose) {
            printPhaseTimings(context.phases);
        }
    }

    if (!completed || settings->searchCanceledByUser.load()) {
        leaveInterrupted();
    }

    const cli::ReportSink sink = [&](std::string_view piece) { return writeAll(reportFd, piece); };
    if (cli::marks(options)) {
        const bool dryRun = cli::dryRun(options);
        CleaningLock lock;
        if (!dryRun) {
            CleaningLock::Outcome taken = lock.tryTake();
            if (taken == CleaningLock::Outcome::Busy) {
                std::fprintf(stderr, "twinsweep-cli: %s; waiting for it to end\n",
                             lock.message().c_str());
                taken = lock.take(interrupted);
            }
            if (taken == CleaningLock::Outcome::Interrupted) {
                leaveInterrupted();
            }
            if (taken != CleaningLock::Outcome::Taken) {
                std::fprintf(stderr, "twinsweep-cli: %s; nothing was removed\n",
                             lock.message().c_str());
                std::fflush(nullptr);
                ::_exit(1);
            }
            // What a stopped clean left hidden comes back first, wherever it is.
            const Recovery recovered = recoverStoppedCleans();
            if (!recovered.ok) {
                std::fprintf(stderr, "twinsweep-cli: %s; nothing was removed\n",
                             recovered.error.c_str());
                std::fflush(nullptr);
                ::_exit(1);
            }
        }
        PlatformRemover remover;
        cli::CommandLinePrompt prompt(options.yes, dryRun, STDIN_FILENO, stderr);
        bool closed = false;
        const auto stop = [&] {
            closed = closed || outputGone(reportFd);
            return interrupted() || closed;
        };
        const cli::ActResult acted =
            cli::markAndClean(options, *settings, prompt, remover, sink, stop);
        if (interrupted()) {
            leaveInterrupted();
        }
        if (acted.outputClosed || closed) {
            std::fprintf(stderr, "twinsweep-cli: standard output is closed; stopped before the "
                                 "next removal\n");
        }
        // Like the plain report below: leave without taking the records apart.
        std::fflush(nullptr);
        ::_exit(acted.outputClosed || closed ? 1 : acted.exitCode);
    }

    // From here on an interrupt can't cut the report short.
    sigset_t block;
    sigemptyset(&block);
    for (const int sig : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&block, sig);
    }
    ::sigprocmask(SIG_BLOCK, &block, nullptr);
    bool written = false;
    switch (options.format) {
    case cli::OutputFormat::Json:
        written = cli::writeJsonReport(settings->duplicateFileList, *tools, sink);
        break;
    case cli::OutputFormat::Csv:
        written = cli::writeCsvReport(settings->duplicateFileList, *tools,
                                      !options.protectedFolders.empty(), sink);
        break;
    case cli::OutputFormat::Text:
        written = cli::writeTextReport(settings->duplicateFileList, sink);
        break;
    }
    if (!written) {
        std::fprintf(stderr, "twinsweep-cli: cannot write the report: %s\n", std::strerror(errno));
        std::fflush(nullptr);
        ::_exit(1);
    }
    std::fflush(nullptr);
    ::_exit(0);
}
