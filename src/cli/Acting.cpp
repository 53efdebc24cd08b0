#include "cli/Acting.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <unistd.h>
#include <vector>

#include "cli/Output.h"
#include "engine/FileTools.h"
#include "selection/CustomMarking.h"
#include "selection/CustomSettingsText.h"
#include "selection/KeepOptions.h"

namespace twinsweep::cli {

namespace {

// Records what the cleaning code removed; a dry run removes nothing.
class RecordingRemover : public FileRemover {
  public:
    RecordingRemover(FileRemover* real) : real_(real) {}
    RemovalResult moveToTrash(const std::string& path) override {
        return note(path, real_ ? real_->moveToTrash(path) : RemovalResult{});
    }
    RemovalResult removeForGood(const std::string& path) override {
        return note(path, real_ ? real_->removeForGood(path) : RemovalResult{});
    }
    std::vector<std::string> removed;

  private:
    RemovalResult note(const std::string& path, RemovalResult r) {
        if (r.ok) {
            removed.push_back(path);
        }
        return r;
    }
    FileRemover* real_;
};

std::string readLine(int fd) {
    std::string line;
    char c = 0;
    while (::read(fd, &c, 1) == 1 && c != '\n') {
        line.push_back(c);
    }
    return line;
}

std::string textSummary(bool dryRun, std::size_t files, std::uint64_t bytes) {
    std::ostringstream out;
    out << (dryRun ? "would free " : "freed ") << FileTools::fileSizeText(bytes) << " (" << bytes
        << " bytes) from " << files << (files == 1 ? " file" : " files") << "\n";
    return out.str();
}

std::string jsonSummary(bool dryRun, const std::vector<std::string>& removed, std::uint64_t bytes,
                        std::int64_t failed) {
    std::string out = "{\"dryRun\":";
    out += dryRun ? "true" : "false";
    out += ",\"removed\":[";
    for (std::size_t i = 0; i < removed.size(); ++i) {
        out += (i ? "," : "") + jsonString(removed[i]);
    }
    out += "],\"bytesFreed\":" + std::to_string(bytes) + ",\"failed\":" + std::to_string(failed) +
           "}\n";
    return out;
}

} // namespace

std::string loadRulesFile(const std::string& path, SettingsManager& settings) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return "cannot read rule file '" + path + "': " + std::strerror(errno);
    }
    std::stringstream text;
    text << in.rdbuf();
    if (!loadCustomSettings(settings, text.str())) {
        return "'" + path + "' is not a custom rule text (23 lines or more: see the user guide)";
    }
    return {};
}

CommandLinePrompt::CommandLinePrompt(bool yes, bool dryRun, int inputFd, std::FILE* messages)
    : yes_(yes), dryRun_(dryRun), inputFd_(inputFd), messages_(messages) {}

bool CommandLinePrompt::ask(CleaningAlert alert) {
    switch (alert) {
    case CleaningAlert::NothingMarked:
        std::fprintf(messages_, "twinsweep-cli: no copy is marked for removal\n");
        return true;
    case CleaningAlert::Done:
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
                       FileRemover& remover) {
    const FileList groups = settings.duplicateFileList;
    if (options.keepOption) {
        const SamePathIndex samePath(groups);
        for (const FilePtr& g : groups) {
            applyKeepOption(*g, *options.keepOption, samePath);
        }
    } else {
        settings.customSettingsOption = "OK";
        settings.customMessageRespone = options.keepOne;
        applyCustomRulesToAll(groups, settings);
    }

    const bool dryRun = options.removal == Removal::DryRun;
    settings.moveToTrash = options.removal != Removal::Delete;
    RecordingRemover recorder(dryRun ? nullptr : &remover);
    const CleaningReport report = clean(groups, settings, prompt, recorder);

    ActResult result;
    if (report.outcome == CleaningOutcome::Declined) {
        std::fprintf(stderr, "twinsweep-cli: nothing was removed\n");
        result.exitCode = 1;
        return result;
    }
    if (options.format == OutputFormat::Json) {
        result.report = jsonSummary(dryRun, recorder.removed, report.bytesFreed, report.failed);
    } else {
        for (const std::string& path : recorder.removed) {
            result.report += (dryRun ? "would remove: " : "removed: ") + textEscaped(path) + "\n";
        }
        result.report += textSummary(dryRun, recorder.removed.size(), report.bytesFreed);
    }
    if (report.failed > 0) {
        std::fprintf(stderr, "twinsweep-cli: %lld %s not removed (see the Error lines above)\n",
                     static_cast<long long>(report.failed),
                     report.failed == 1 ? "copy was" : "copies were");
        result.exitCode = 1;
    }
    return result;
}

} // namespace twinsweep::cli
