// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Options.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <sys/stat.h>

#include "cli/FolderArgs.h"
#include "engine/TextCase.h"

namespace twinsweep::cli {

namespace {

struct OptionRule {
    const char* name;
    bool takesValue;
    // Applies the option; returns an error text, or "" when fine.
    std::function<std::string(Options&, const std::string& value)> apply;
};

std::string sizeOption(const std::string& name, const std::string& value, std::uint64_t& out) {
    const auto parsed = parseSize(value);
    if (!parsed) {
        return "invalid size for " + name + ": '" + value +
               "' (bytes, optionally with K, M, G or T)";
    }
    out = *parsed;
    return {};
}

std::string removal(Options& o, Removal r) {
    if (o.removalGiven && o.removal != r) {
        return "choose one of --trash, --delete, --link and --share";
    }
    o.removal = r;
    o.removalGiven = true;
    return {};
}

const std::vector<OptionRule>& optionRules() {
    static const std::vector<OptionRule> table = {
        {"--min-size", true,
         [](Options& o, const std::string& v) {
             return sizeOption("--min-size", v, o.minimumSize);
         }},
        {"--max-size", true,
         [](Options& o, const std::string& v) {
             return sizeOption("--max-size", v, o.maximumSize);
         }},
        {"--ext", true,
         [](Options& o, const std::string& v) -> std::string {
             o.extensions.clear();
             std::size_t start = 0;
             while (start <= v.size()) {
                 std::size_t comma = v.find(',', start);
                 if (comma == std::string::npos) {
                     comma = v.size();
                 }
                 std::string ext = v.substr(start, comma - start);
                 if (!ext.empty() && ext.front() == '.') {
                     ext.erase(0, 1);
                 }
                 ext = lowerCased(ext);
                 if (!ext.empty()) {
                     o.extensions.push_back(ext);
                 }
                 start = comma + 1;
             }
             if (o.extensions.empty()) {
                 return "--ext needs at least one extension, e.g. --ext jpg,png";
             }
             return {};
         }},
        {"--include-packages", false,
         [](Options& o, const std::string&) {
             o.ignorePackages = false;
             return std::string();
         }},
        {"--large-by-content", false,
         [](Options& o, const std::string&) {
             o.compareLargeByContent = true;
             return std::string();
         }},
        {"--location-root", true,
         [](Options& o, const std::string& v) -> std::string {
             if (v.empty()) {
                 return "--location-root needs a folder";
             }
             o.locations = Locations::MacLayoutUnder;
             o.locationRoot = v;
             return {};
         }},
        {"--any-location", false,
         [](Options& o, const std::string&) {
             o.locations = Locations::Anywhere;
             return std::string();
         }},
        {"--format", true,
         [](Options& o, const std::string& v) -> std::string {
             if (v == "text") {
                 o.format = OutputFormat::Text;
             } else if (v == "json") {
                 o.format = OutputFormat::Json;
             } else if (v == "csv") {
                 o.format = OutputFormat::Csv;
             } else {
                 return "invalid --format '" + v + "' (text, json or csv)";
             }
             return {};
         }},
        {"--protect", true,
         [](Options& o, const std::string& v) -> std::string {
             if (v.empty()) {
                 return "--protect needs a folder";
             }
             o.protectedFolders.push_back(v); // made absolute with the folders
             return {};
         }},
        {"--keep", true,
         [](Options& o, const std::string& v) -> std::string {
             // The copies to keep: "all" keeps every copy, "none" keeps none.
             if (v == "all") {
                 o.keepOption = 0;
             } else if (v == "oldest") {
                 o.keepOption = 1;
             } else if (v == "newest") {
                 o.keepOption = 2;
             } else if (v == "none") {
                 o.keepOption = 3;
             } else {
                 return "invalid --keep '" + v + "' (none, oldest, newest or all)";
             }
             return {};
         }},
        {"--rules", true,
         [](Options& o, const std::string& v) -> std::string {
             if (v.empty()) {
                 return "--rules needs a file";
             }
             o.rulesFile = v;
             return {};
         }},
        {"--keep-one", true,
         [](Options& o, const std::string& v) -> std::string {
             if (v == "oldest") {
                 o.keepOne = 1;
             } else if (v == "newest") {
                 o.keepOne = 2;
             } else if (v == "no") {
                 o.keepOne = 3;
             } else {
                 return "invalid --keep-one '" + v + "' (oldest, newest or no)";
             }
             o.keepOneGiven = true;
             return {};
         }},
        {"--dry-run", false,
         [](Options& o, const std::string&) {
             o.dryRunGiven = true;
             return std::string();
         }},
        {"--trash", false,
         [](Options& o, const std::string&) { return removal(o, Removal::Trash); }},
        {"--delete", false,
         [](Options& o, const std::string&) { return removal(o, Removal::Delete); }},
        {"--link", false, [](Options& o, const std::string&) { return removal(o, Removal::Link); }},
        {"--share", false,
         [](Options& o, const std::string&) { return removal(o, Removal::Share); }},
        {"--idle", false,
         [](Options& o, const std::string&) {
             o.idle = true;
             return std::string();
         }},
        {"--verbose", false,
         [](Options& o, const std::string&) {
             o.verbose = true;
             return std::string();
         }},
        {"--apply", true,
         [](Options& o, const std::string& v) {
             if (v.empty()) {
                 return std::string("--apply needs a plan file");
             }
             o.planFile = v;
             return std::string();
         }},
        {"--undo", false,
         [](Options& o, const std::string&) {
             o.undo = true;
             return std::string();
         }},
        {"--cache", false,
         [](Options& o, const std::string&) {
             o.cache = true;
             return std::string();
         }},
        {"--clear-cache", false,
         [](Options& o, const std::string&) {
             o.clearCache = true;
             return std::string();
         }},
        {"--yes", false,
         [](Options& o, const std::string&) {
             o.yes = true;
             return std::string();
         }},
        {"--help", false,
         [](Options& o, const std::string&) {
             o.help = true;
             return std::string();
         }},
        {"--version", false,
         [](Options& o, const std::string&) {
             o.version = true;
             return std::string();
         }},
    };
    return table;
}

} // namespace

std::optional<std::uint64_t> parseSize(const std::string& text) {
    if (text.empty() || text.front() < '0' || text.front() > '9') {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    std::size_t k = 0;
    for (; k < text.size() && text[k] >= '0' && text[k] <= '9'; ++k) {
        const auto digit = static_cast<std::uint64_t>(text[k] - '0');
        if (value > (UINT64_MAX - digit) / 10) {
            return std::nullopt;
        }
        value = value * 10 + digit;
    }
    if (k == text.size()) {
        return value;
    }
    if (k + 1 != text.size()) {
        return std::nullopt;
    }
    int shift = 0;
    switch (text[k]) {
    case 'K':
    case 'k':
        shift = 10;
        break;
    case 'M':
    case 'm':
        shift = 20;
        break;
    case 'G':
    case 'g':
        shift = 30;
        break;
    case 'T':
    case 't':
        shift = 40;
        break;
    default:
        return std::nullopt;
    }
    if (value > (UINT64_MAX >> shift)) {
        return std::nullopt;
    }
    return value << shift;
}

ParseResult parseOptions(const std::vector<std::string>& args, const std::string& cwd) {
    ParseResult result;
    Options& o = result.options;
    std::vector<std::string> given;
    bool optionsEnded = false;
    for (std::size_t k = 0; k < args.size(); ++k) {
        const std::string& arg = args[k];
        if (optionsEnded || arg.empty() || arg.front() != '-' || arg == "-") {
            given.push_back(arg);
            continue;
        }
        if (arg == "--") {
            optionsEnded = true;
            continue;
        }
        const std::size_t eq = arg.find('=');
        const std::string name = arg.substr(0, eq);
        const auto rule = std::find_if(optionRules().begin(), optionRules().end(),
                                       [&](const OptionRule& s) { return name == s.name; });
        if (rule == optionRules().end()) {
            result.error = "unknown option '" + name + "' (see --help)";
            return result;
        }
        std::string value;
        if (rule->takesValue) {
            if (eq != std::string::npos) {
                value = arg.substr(eq + 1);
            } else if (k + 1 < args.size()) {
                value = args[++k];
            } else {
                result.error = "option " + name + " needs a value";
                return result;
            }
        } else if (eq != std::string::npos) {
            result.error = "option " + name + " takes no value";
            return result;
        }
        if (std::string err = rule->apply(o, value); !err.empty()) {
            result.error = err;
            return result;
        }
    }
    if (o.help || o.version) {
        return result;
    }
    if (o.undo) {
        if (args.size() != 1) {
            result.error = "--undo takes no folder and no other option";
        }
        return result;
    }
    if (o.clearCache) {
        if (args.size() != 1) {
            result.error = "--clear-cache takes no folder and no other option";
        }
        return result;
    }
    if (o.minimumSize > o.maximumSize) {
        result.error = "--min-size is larger than --max-size";
        return result;
    }
    if (!o.planFile.empty() && (o.keepOption || !o.rulesFile.empty())) {
        result.error = "--apply takes its marks from the plan; leave out --keep and --rules";
        return result;
    }
    if (!o.planFile.empty() && (!o.removalGiven || o.removal == Removal::DryRun)) {
        result.error =
            "--apply needs --trash, --delete, --link or --share (with --dry-run to check only)";
        return result;
    }
    if (!o.planFile.empty() && given.empty() && o.protectedFolders.empty()) {
        result.error = "--apply acts only inside the folders given: name at least one";
        return result;
    }
    if (o.keepOption && !o.rulesFile.empty()) {
        result.error = "choose one of --keep and --rules";
        return result;
    }
    if (o.keepOneGiven && o.rulesFile.empty()) {
        result.error = "--keep-one goes with --rules";
        return result;
    }
    if ((o.removalGiven || o.dryRunGiven || o.yes) && !marks(o)) {
        result.error =
            "--dry-run, --trash, --delete, --link, --share and --yes need --keep or --rules to say "
            "which copies go";
        return result;
    }
    if (o.format == OutputFormat::Csv && marks(o)) {
        result.error = "--format csv lists the groups; with --keep or --rules use text or json";
        return result;
    }
    if (given.empty() && o.protectedFolders.empty()) {
        result.error = "no folder given (see --help)";
        return result;
    }
    const std::vector<std::string> protectGiven = std::move(o.protectedFolders);
    o.protectedFolders.clear();
    for (const std::string& g : protectGiven) {
        std::string folder;
        if (std::string err = checkedFolder(g, cwd, folder); !err.empty()) {
            result.error = err;
            return result;
        }
        o.protectedFolders.push_back(folder);
        given.push_back(g); // a protected folder is searched too
    }
    for (const std::string& g : given) {
        std::string folder;
        if (std::string err = checkedFolder(g, cwd, folder); !err.empty()) {
            result.error = err;
            return result;
        }
        if (std::find(o.folders.begin(), o.folders.end(), folder) == o.folders.end()) {
            o.folders.push_back(folder);
        }
    }
    if (o.locations == Locations::MacLayoutUnder) {
        // The gate compares the walk's (physical) paths with it as text.
        o.locationRoot =
            physicalFolder(o.locationRoot, cwd).value_or(absoluteFolder(o.locationRoot, cwd));
    }
    return result;
}

} // namespace twinsweep::cli
