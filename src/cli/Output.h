// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "engine/FileTools.h"
#include "export/ResultsExport.h"

namespace twinsweep::cli {

// Receives the report piece by piece; false stops the writing.
using ReportSink = std::function<bool(std::string_view)>;

// One path per line, head first, a blank line between groups.
bool writeTextReport(const FileList& groups, const ReportSink& sink);
// {"groups":[{"path","size","ext","category","md5","members":[{"path","date"}]}]},
// "protected":true on protected members (writeJsonExport).
bool writeJsonReport(const FileList& groups, const FileTools& tools, const ReportSink& sink);
// One line per member (writeCsvExport), with a "protected" column when asked.
bool writeCsvReport(const FileList& groups, const FileTools& tools, bool protection,
                    const ReportSink& sink);

// The same, as one text.
std::string textReport(const FileList& groups);
std::string jsonReport(const FileList& groups, const FileTools& tools);

// Control characters and backslashes as C escapes, every other byte as is,
// so that each path stays on one line.
std::string textEscaped(std::string_view bytes);
using twinsweep::jsonString;

} // namespace twinsweep::cli
