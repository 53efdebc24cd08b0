// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdio>
#include <string>

#include "cli/Options.h"
#include "cli/Output.h"
#include "selection/Cleaning.h"
#include "settings/SettingsManager.h"

namespace twinsweep::cli {

// Reads the rule file of --rules into settings before the search, so a bad
// file stops the run before any work. Returns an error line, or "" when fine.
std::string loadRulesFile(const std::string& path, SettingsManager& settings);

// Answers the cleaning questions from the options: --yes says yes; otherwise a
// terminal on standard input is asked, and without one the answer is no, with
// a line on standard error saying what to add.
class CommandLinePrompt : public CleaningPrompt {
  public:
    CommandLinePrompt(bool yes, bool dryRun, int inputFd, std::FILE* messages);
    bool ask(CleaningAlert alert) override;

  private:
    bool yes_;
    bool dryRun_;
    int inputFd_;
    std::FILE* messages_;
};

struct ActResult {
    int exitCode = 0;
    bool outputClosed = false; // standard output went away: stopped there
    bool stopped = false;      // stopped before the end
};

// Marks every group as the options say, then removes the marked copies (or,
// for a dry run, lists them) through the cleaning code the windows use. Each
// "removed: " line goes to out as soon as its copy is gone; stop is asked
// before each removal.
ActResult markAndClean(const Options& options, SettingsManager& settings, CleaningPrompt& prompt,
                       FileRemover& remover, const ReportSink& out,
                       const std::function<bool()>& stop);

} // namespace twinsweep::cli
