// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Undo.h"

#include <cstdio>

#include "cli/Output.h"
#include "removal/PlatformRemover.h"
#include "removal/TrashRecord.h"
#include "removal/UndoHistory.h"

namespace twinsweep::cli {

int undoLastTrash() {
    // Not while a clean runs: the newest record is read only once it is over.
    CleaningLock lock;
    CleaningLock::Outcome taken = lock.tryTake();
    if (taken == CleaningLock::Outcome::Busy) {
        std::fprintf(stderr, "twinsweep-cli: %s; waiting for it to end\n", lock.message().c_str());
        taken = lock.take([] { return false; }); // Ctrl-C still ends the wait: nothing changed yet
    }
    if (taken != CleaningLock::Outcome::Taken) {
        std::fprintf(stderr, "twinsweep-cli: %s; nothing was restored\n", lock.message().c_str());
        return 1;
    }
    const UndoReport report = undoNewestClean();
    for (const std::string& note : report.notes) {
        std::fprintf(stderr, "Note:   %s\n", textEscaped(note).c_str());
    }
    if (!report.error.empty()) {
        std::fprintf(stderr, "twinsweep-cli: %s\n", textEscaped(report.error).c_str());
        return 1;
    }
    std::fprintf(stderr, "twinsweep-cli: undoing the clean of %s (%zu %s moved to the Trash)\n",
                 recordTimeText(report.time).c_str(), report.count,
                 report.count == 1 ? "item" : "items");
    for (const std::string& p : report.outcome.restored) {
        std::printf("restored: %s\n", textEscaped(p).c_str());
    }
    for (const std::string& why : report.outcome.problems) {
        std::fprintf(stderr, "twinsweep-cli: %s\n", textEscaped(why).c_str());
    }
    std::fflush(stdout);
    return report.outcome.problems.empty() ? 0 : 1;
}

} // namespace twinsweep::cli
