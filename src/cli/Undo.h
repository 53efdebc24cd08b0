// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace twinsweep::cli {

// --undo: puts back what the newest clean to the Trash (of this tool or the
// window) moved there, as its record lists, saying which clean it undoes and
// printing "restored: " lines on standard output and what
// could not be restored on standard error. What is left and may be tried
// again stays in the record. Returns the exit status: 0 when everything was
// put back, 1 otherwise.
int undoLastTrash();

} // namespace twinsweep::cli
