#pragma once

namespace twinsweep::cli {

// --undo: puts back what the last run with --trash moved to the Trash, as
// its record lists, printing "restored: " lines on standard output and what
// could not be restored on standard error. What is left and may be tried
// again stays in the record. Returns the exit status: 0 when everything was
// put back, 1 otherwise.
int undoLastTrash();

} // namespace twinsweep::cli
