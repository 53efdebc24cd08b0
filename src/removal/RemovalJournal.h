// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace twinsweep {

// An entry a clean hides for a moment: a copy set aside (".twinsweep-aside-…")
// while its kept copy is checked again, or a link to the kept file made under
// a temporary name (".twinsweep-link-…") before it is swapped in. Each is
// written to the journal in the user's state folder before the entry is made
// and forgotten once it is resolved, so a clean killed in between (SIGKILL,
// a crash) is found by the next one whatever it searches
// (recoverStoppedCleans, StoppedCleans.h).
struct JournalRecord {
    enum class Kind { Aside, Link };
    Kind kind = Kind::Aside;
    // The clean that made it: a pid alone may name another process after a
    // reboot or once it was reused.
    std::string bootId;
    std::int64_t pid = 0;
    std::uint64_t startTime = 0;
    std::string folder; // the folder's path, to open it again
    std::uint64_t device = 0;
    std::uint64_t inode = 0; // the folder's identity, checked when opened again
    std::string hidden;      // the hidden entry
    std::string name;        // the name it stands for
    std::uint64_t copyInode = 0;
    std::uint64_t keptInode = 0; // links: the kept file's inode
};

// This process as records name it: boot id, pid and start time.
JournalRecord thisProcessRecord();
// The boot id and start time of a running process; false when it is gone.
bool processStart(std::int64_t pid, std::uint64_t& startTime);
std::string currentBootId();

// Opens the journal (once per process); false with a whole sentence in error
// when the state folder is refused: a clean then removes nothing.
bool openJournal(std::string& error);

// Writes record before its entry is made; returns its handle, or "" with
// error set when it could not be written (the entry must then not be made).
std::string journalNote(const JournalRecord& record, std::string& error);
// The entry is resolved: gone, or back under its name.
void journalForget(const std::string& handle);

// Every readable record, with its handle (openJournal first).
std::vector<std::pair<std::string, JournalRecord>> journalRecords();

} // namespace twinsweep
