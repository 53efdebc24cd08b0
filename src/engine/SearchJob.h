// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace twinsweep {

class FileTools;
class SearchContext;
class SettingsManager;

// The search job's whole run, shared by the progress window and the
// command-line tool: takes the options from settings, runs
// tools.findDuplicateFiles, and leaves every group that has copies in
// settings.duplicateFileList with the head's own entry first; settings.fileList
// is empty afterwards. Each member's `seen` holds what the search saw of that
// file, so that cleaning can refuse a file that changed since. Copies under
// settings.protectedFolders are flagged, and groups with nothing but such
// copies are left out.
// The run polls context's cancel flag and reports through its sink.
// Returns false when the run was cancelled (nothing is added then).
bool runSearchJob(SettingsManager& settings, FileTools& tools, SearchContext& context);
// The same over a context of its own, cancelled by settings.searchCanceledByUser.
bool runSearchJob(SettingsManager& settings, FileTools& tools);

} // namespace twinsweep
