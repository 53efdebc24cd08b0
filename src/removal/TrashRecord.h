// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "removal/Removal.h"
#include "removal/StateFolder.h"
#include "removal/Trash.h"

namespace twinsweep {

// Every clean to the Trash keeps its own record in <state folder>/undo, named
// by the time it began so the names sort from oldest to newest. A record is a
// header line with that time, then one line per note: "pending" before an
// item's .trashinfo is written, "moved" once the item is in the Trash, each
// with the identities of TrashedItem and its paths percent-encoded.
struct TrashRecordContents {
    std::int64_t time = 0;          // when the clean began, seconds since 1970
    std::vector<TrashedItem> items; // the last note of each item, in order
};

std::string trashRecordHeader(std::int64_t time);
std::string trashRecordLine(const TrashedItem& item);
// A later note of an item replaces an earlier one; an unfinished last line
// (the clean was killed while writing it) is left out. False when text is not
// a record.
bool readTrashRecordText(const std::string& text, TrashRecordContents& out);

// The records' folder, made private when missing and refused when not.
PrivateFolder openUndoFolder();

// The local time of a record, as "2024-05-01 14:03:09".
std::string recordTimeText(std::int64_t time);

// The record of the clean running now. It is made on the first note and
// locked while the clean runs, so no undo or tidy-up takes it for a dead one.
class UndoRecord : public TrashJournal {
  public:
    std::string note(const TrashedItem& item) override;
    // Why the record could not be kept ("" when it was).
    const std::string& error() const { return error_; }
    ~UndoRecord() override;

  private:
    Fd fd_;
    std::string path_;
    std::string error_;
};

// A record read back (its file locked while this lives).
struct StoredRecord {
    std::string name;
    TrashRecordContents contents;
    Fd fd;
};

// The records' names, oldest first.
std::vector<std::string> recordNames(int undoFd);
// "" or why not (a clean is still writing it, it is not a record).
std::string loadRecord(int undoFd, const std::string& name, StoredRecord& out);
// Replaces the record whole (temporary file, fsync, rename) by items; removes
// it when none is left. "" or why not.
std::string saveRecord(int undoFd, const StoredRecord& record,
                       const std::vector<TrashedItem>& items);

} // namespace twinsweep
