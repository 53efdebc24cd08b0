// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Acting.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "cli/Output.h"
#include "engine/Diagnostics.h"
#include "engine/FileTools.h"
#include "export/CleanReport.h"
#include "removal/Share.h"
#include "removal/TrashRecord.h"
#include "removal/UndoHistory.h"
#include "selection/CustomMarking.h"
#include "selection/CustomSettingsText.h"
#include "selection/KeepOptions.h"

namespace twinsweep::cli {

namespace {

// A signal ends the read: the answer is then no.
std::string readLine(int fd) {
    std::string line;
    char c = 0;
    while (::read(fd, &c, 1) == 1 && c != '\n') {
        line.push_back(c);
    }
    return line;
}

constexpr std::uint64_t kMaxRuleText = 1024 * 1024;

std::string textSummary(bool dryRun, std::size_t files, std::uint64_t bytes) {
    std::ostringstream out;
    out << (dryRun ? "would free " : "freed ") << FileTools::fileSizeText(bytes) << " (" << bytes
        << " bytes) from " << files << (files == 1 ? " file" : " files") << "\n";
    return out.str();
}

// Says how to undo the clean: its record was kept as it went (PlatformRemover).
void noteTrashed(std::size_t trashed, const FileRemover& remover) {
    if (const std::string err = remover.trashRecordError(); !err.empty()) {
        std::fprintf(stderr,
                     "twinsweep-cli: cannot keep a record to undo this clean: %s; nothing more "
                     "was moved to the Trash\n",
                     err.c_str());
        return;
    }
    if (trashed == 0) {
        return;
    }
    std::fprintf(stderr,
                 "twinsweep-cli: %zu %s moved to the Trash; to put %s back, run: "
                 "twinsweep-cli --undo\n",
                 trashed, trashed == 1 ? "copy was" : "copies were", trashed == 1 ? "it" : "them");
}

} // namespace

std::string loadRulesFile(const std::string& path, SettingsManager& settings) {
    // Never blocks on a FIFO or a device: only a regular file is read.
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) {
        return "cannot read rule file '" + path + "': " + std::strerror(errno);
    }
    struct stat st {};
    std::string text;
    std::string error;
    if (::fstat(fd, &st) != 0) {
        error = "cannot read rule file '" + path + "': " + std::strerror(errno);
    } else if (!S_ISREG(st.st_mode)) {
        error = "rule file '" + path + "' is not a regular file (see docs/rules.md)";
    } else if (static_cast<std::uint64_t>(st.st_size) > kMaxRuleText) {
        error = "rule file '" + path +
                "' is larger than 1 MiB; a rule text is a few lines (see "
                "docs/rules.md)";
    } else {
        char buf[65536];
        ssize_t n = 0;
        while ((n = ::read(fd, buf, sizeof buf)) > 0 && text.size() <= kMaxRuleText) {
            text.append(buf, static_cast<std::size_t>(n));
        }
        if (n < 0) {
            error = "cannot read rule file '" + path + "': " + std::strerror(errno);
        } else if (text.size() > kMaxRuleText) {
            error = "rule file '" + path + "' is larger than 1 MiB (see docs/rules.md)";
        }
    }
    ::close(fd);
    if (error.empty() && !loadCustomSettings(settings, text)) {
        error = "'" + path + "' is not a custom rule text (23 lines or more: see docs/rules.md)";
    }
    return error;
}

CommandLinePrompt::CommandLinePrompt(bool yes, bool dryRun, int inputFd, std::FILE* messages)
    : yes_(yes), dryRun_(dryRun), inputFd_(inputFd), messages_(messages) {}

bool CommandLinePrompt::ask(CleaningAlert alert) {
    switch (alert) {
    case CleaningAlert::NothingMarked:
        std::fprintf(messages_, "twinsweep-cli: no copy is marked for removal\n");
        return true;
    case CleaningAlert::Done:
    case CleaningAlert::NothingLinked:
    case CleaningAlert::NothingShared:
        return true;
    case CleaningAlert::CantShare:
        std::fprintf(messages_, "twinsweep-cli: %s\n", kNothingCanShare);
        return true;
    case CleaningAlert::WholeGroupsShared:
        std::fprintf(messages_, "twinsweep-cli: note: some groups have every copy marked; with "
                                "--share they are left as they are\n");
        return true;
    case CleaningAlert::WholeGroupsLinked:
        // Nothing is lost: those copies are left as they are, each reported.
        std::fprintf(messages_, "twinsweep-cli: note: some groups have every copy marked; with "
                                "--link they are left as they are\n");
        return true;
    case CleaningAlert::WholeGroups:
    case CleaningAlert::PermanentDeletion:
        break;
    }
    if (dryRun_) {
        if (alert == CleaningAlert::WholeGroups) {
            std::fprintf(messages_, "twinsweep-cli: note: some groups would lose every copy\n");
        }
        return true;
    }
    if (yes_) {
        return true;
    }
    if (::isatty(inputFd_)) {
        std::fprintf(messages_, "%s [y/N] ", alertText(alert).informativeText.c_str());
        std::fflush(messages_);
        const std::string answer = readLine(inputFd_);
        return answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes";
    }
    std::fprintf(messages_, "twinsweep-cli: %s\n",
                 alert == CleaningAlert::WholeGroups
                     ? "some groups would lose every copy; add --yes to remove them anyway"
                     : "--delete needs --yes when standard input is not a terminal");
    return false;
}

ActResult markAndClean(const Options& options, SettingsManager& settings, CleaningPrompt& prompt,
                       FileRemover& remover, const ReportSink& out,
                       const std::function<bool()>& stop) {
    const FileList groups = settings.duplicateFileList;
    // Oldest and newest by the exact creation time, never by a date text
    // rounded to the second on a 12-hour clock.
    settings.exactKeepTimes = true;
    if (!options.planFile.empty()) {
        // Marked as the plan says (loadPlan).
    } else if (options.keepOption) {
        const SamePathIndex samePath(groups);
        for (const FilePtr& g : groups) {
            applyKeepOption(*g, *options.keepOption, samePath, KeepTimeBasis::ExactTime);
        }
    } else {
        settings.customSettingsOption = "OK";
        settings.customMessageRespone = options.keepOne;
        applyCustomRulesToAll(groups, settings);
    }

    const bool dryRun = cli::dryRun(options);
    const bool json = options.format == OutputFormat::Json;
    settings.moveToTrash = options.removal != Removal::Delete;
    settings.replaceWithHardLinks = options.removal == Removal::Link;
    settings.shareStorage = options.removal == Removal::Share;
    const bool linking = options.removal == Removal::Link;
    const bool sharing = options.removal == Removal::Share;
    if (!dryRun) {
        // What a stopped clean left half done is finished first (the caller holds the lock).
        for (const std::string& note : tidyTrashRecords()) {
            printErrorLine("Note:   ", note);
        }
    }
    if (options.removal == Removal::Trash && !dryRun) {
        if (const PrivateFolder undo = openUndoFolder(); !undo.ok()) {
            std::fprintf(stderr,
                         "twinsweep-cli: cannot keep a record to undo this clean: %s; nothing "
                         "was removed\n",
                         undo.error.c_str());
            ActResult refused;
            refused.exitCode = 1;
            return refused;
        }
    }
    std::size_t trashed = 0;
    ActResult result;
    CleanLog log(groups, dryRun, linking, sharing);
    const std::string doneLine = std::string(log.doneWord()) + ": ";
    CleaningRun run;
    run.dryRun = dryRun;
    run.stop = stop;
    run.done = [&](const DuplicateFile& m, const RemovalResult& r) {
        log.record(m, r);
        if (!r.ok && !dryRun) {
            return true; // its "Error:  " line is written
        }
        if (!r.trashed.originalPath.empty()) {
            ++trashed;
        }
        const std::string line = !r.ok             ? "would be left: " + textEscaped(r.error)
                                 : r.alreadyShared ? "already shared: " + textEscaped(m.path)
                                                   : doneLine + textEscaped(m.path);
        if (!json && !out(line + "\n")) {
            result.outputClosed = true;
            return false;
        }
        return true;
    };
    const CleaningReport report = clean(groups, settings, prompt, remover, run);
    result.stopped = report.stopped;
    noteTrashed(trashed, remover);

    if (report.outcome == CleaningOutcome::CantShare) {
        result.exitCode = 2;
        return result;
    }
    if (report.outcome == CleaningOutcome::Declined) {
        std::fprintf(stderr, "twinsweep-cli: nothing was removed\n");
        result.exitCode = 1;
        return result;
    }
    if (!result.outputClosed) {
        result.outputClosed =
            !(json ? log.writeJson(report.bytesFreed, report.failed, out)
                   : out(textSummary(dryRun, log.done().size(), report.bytesFreed)));
    }
    if (!remover.trashRecordError().empty()) {
        result.exitCode = 1;
    }
    // A dry run fails where the clean would: it says so the same way.
    if (report.failed > 0 && dryRun) {
        std::fprintf(stderr, "twinsweep-cli: %lld %s be left (see the \"would be left\" lines)\n",
                     static_cast<long long>(report.failed),
                     report.failed == 1 ? "copy would" : "copies would");
        result.exitCode = 1;
    } else if (report.failed > 0) {
        std::fprintf(stderr, "twinsweep-cli: %lld %s not %s (see the Error lines above)\n",
                     static_cast<long long>(report.failed),
                     report.failed == 1 ? "copy was" : "copies were",
                     sharing   ? "shared"
                     : linking ? "replaced by a link"
                               : "removed");
        result.exitCode = 1;
    }
    if (result.outputClosed) {
        result.exitCode = 1;
    }
    return result;
}

} // namespace twinsweep::cli
