#pragma once

#include <string>
#include <vector>

#include "engine/File.h"
#include "removal/Removal.h"

namespace twinsweep {

// One copy a clean moved to the Trash, and what the search saw of it, so it
// is put back only when it is still that file.
struct TrashedCopy {
    TrashedItem where;
    FileIdentity seen;
};

// The record of a clean to the Trash as text: a header line, then one line
// per copy: device, inode, size, modification time (seconds, nanoseconds),
// then the original path, the item in the Trash and its .trashinfo, each
// percent-encoded so any name fits on the line.
std::string trashRecordText(const std::vector<TrashedCopy>& copies);
// False (out untouched) when text is not such a record.
bool readTrashRecordText(const std::string& text, std::vector<TrashedCopy>& out);

// Where the command-line tool keeps the record of its last run with --trash:
// $XDG_STATE_HOME/twinsweep/last-trash, by default ~/.local/state/...
// "" when no home is known.
std::string lastTrashRecordPath();

// Writes the record in place of the old one, whole or not at all (a
// temporary file renamed over it); the folders are made 0700, the file 0600.
// An empty list removes the record. Returns "" or the reason it failed.
std::string saveTrashRecord(const std::string& path, const std::vector<TrashedCopy>& copies);
// Reads it back; "" or the reason (a missing record says so).
std::string loadTrashRecord(const std::string& path, std::vector<TrashedCopy>& out);

} // namespace twinsweep
