#include "cli/Undo.h"

#include <cstdio>

#include "cli/Output.h"
#include "removal/PlatformRemover.h"
#include "removal/TrashRestore.h"
#include "removal/TrashRecord.h"

namespace twinsweep::cli {

int undoLastTrash() {
    const std::string path = lastTrashRecordPath();
    std::vector<TrashedCopy> copies;
    if (const std::string err = loadTrashRecord(path, copies); !err.empty()) {
        std::fprintf(stderr, "twinsweep-cli: %s\n", err.c_str());
        return 1;
    }
    // Not while a clean runs: it may be moving the very files back.
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
    const RestoreOutcome outcome = restoreFromTrash(copies);
    for (const std::string& p : outcome.restored) {
        std::printf("restored: %s\n", textEscaped(p).c_str());
    }
    for (const std::string& why : outcome.problems) {
        std::fprintf(stderr, "twinsweep-cli: %s\n", textEscaped(why).c_str());
    }
    if (const std::string err = saveTrashRecord(path, outcome.left); !err.empty()) {
        std::fprintf(stderr, "twinsweep-cli: %s\n", err.c_str());
    }
    std::fflush(stdout);
    return outcome.problems.empty() ? 0 : 1;
}

} // namespace twinsweep::cli
