// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace twinsweep::cli {

enum class OutputFormat { Text, Json, Csv };
enum class Locations { PlatformDefault, MacLayoutUnder, Anywhere };
// What happens to the marked copies: listed only, moved to the Trash, deleted,
// replaced by hard links to a kept copy, sharing storage with a kept copy.
enum class Removal { DryRun, Trash, Delete, Link, Share };

struct Options {
    std::vector<std::string> folders; // absolute, as given otherwise
    // --protect: searched like the folders (and among them), never removed from.
    std::vector<std::string> protectedFolders;
    std::uint64_t minimumSize = 1;
    std::uint64_t maximumSize = UINT64_MAX;
    std::vector<std::string> extensions; // lower-case, no dot; empty: every type
    bool ignorePackages = true;
    bool compareLargeByContent = false;
    bool idle = false;    // --idle: the search reads at idle I/O priority
    bool verbose = false; // --verbose: each phase's time on standard error after the search
    Locations locations = Locations::PlatformDefault;
    std::string locationRoot;
    OutputFormat format = OutputFormat::Text;
    // Marking: a keep option (0 to 3) or a rule-text file, for every group.
    std::optional<std::int64_t> keepOption;
    std::string rulesFile;
    std::int64_t keepOne = 1; // with --rules: 1 oldest, 2 newest, 3 no
    bool keepOneGiven = false;
    Removal removal = Removal::DryRun;
    bool removalGiven = false;
    // --dry-run with --trash, --delete, --link or --share: says what that clean would do.
    bool dryRunGiven = false;
    bool yes = false;
    // --apply: the JSON plan whose marks the clean acts on, instead of a search.
    std::string planFile;
    bool undo = false; // put back what the last run with --trash moved there
    // Remember fingerprints between searches, trusting those still valid.
    bool cache = false;
    bool clearCache = false; // forget every remembered fingerprint
    bool help = false;
    bool version = false;
};

// True when the marked copies are only checked and listed, never acted on.
inline bool dryRun(const Options& o) {
    return o.removal == Removal::DryRun || o.dryRunGiven;
}

// True when the options mark copies, so the run acts instead of reporting.
inline bool marks(const Options& o) {
    return o.keepOption.has_value() || !o.rulesFile.empty() || !o.planFile.empty();
}

struct ParseResult {
    Options options;
    // Set when the command line is wrong: one line, naming what is wrong.
    std::optional<std::string> error;
};

// Parses the arguments after the program name. Folders are made absolute
// against cwd and checked to be folders.
ParseResult parseOptions(const std::vector<std::string>& args, const std::string& cwd);

// "10", "64K", "1.5M" is not accepted; suffixes K, M, G, T are powers of 1024.
std::optional<std::uint64_t> parseSize(const std::string& text);

std::string usageText();

} // namespace twinsweep::cli
