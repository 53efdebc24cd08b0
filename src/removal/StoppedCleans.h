// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace twinsweep {

struct Recovery {
    bool ok = true;
    std::string error;              // the journal was refused: clean nothing
    std::vector<std::string> notes; // each entry put back, freed or still waiting
};

// Resolves what the journal (RemovalJournal.h) holds of cleans that are no
// longer running (another boot, a pid that is gone or now names a process
// started at another time), whatever folders the caller searches: a copy left
// aside gets its name back when that name is free; a link left under a
// temporary name is removed when it was never swapped in, and when it was,
// the old copy it replaced (checked identical, its bytes stay in the kept
// file) is freed. Each is written as a "Note:   " line and returned. Run
// before anything else at every clean (with the cleaning lock) and at every
// start of the application.
Recovery recoverStoppedCleans();

} // namespace twinsweep
