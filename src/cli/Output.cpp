// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Output.h"

#include "engine/Diagnostics.h"
#include "export/Chunked.h"

namespace twinsweep::cli {

std::string textEscaped(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    appendEscaped(out, bytes);
    return out;
}

bool writeTextReport(const FileList& groups, const ReportSink& sink) {
    Chunked out(sink);
    bool first = true;
    for (const FilePtr& group : groups) {
        if (!first) {
            out.text().push_back('\n');
        }
        first = false;
        for (const DuplicateFilePtr& member : group->duplicates) {
            out.text() += textEscaped(member->path);
            out.text().push_back('\n');
        }
        if (!out.maybeFlush()) {
            return false;
        }
    }
    return out.flush();
}

bool writeJsonReport(const FileList& groups, const FileTools& tools, const ReportSink& sink) {
    return writeJsonExport(groups, tools, ExportFields{}, sink);
}

bool writeCsvReport(const FileList& groups, const FileTools& tools, bool protection,
                    const ReportSink& sink) {
    return writeCsvExport(groups, tools, ExportFields{false, protection}, sink);
}

std::string textReport(const FileList& groups) {
    std::string all;
    writeTextReport(groups, [&](std::string_view piece) {
        all.append(piece);
        return true;
    });
    return all;
}

std::string jsonReport(const FileList& groups, const FileTools& tools) {
    std::string all;
    writeJsonReport(groups, tools, [&](std::string_view piece) {
        all.append(piece);
        return true;
    });
    return all;
}

} // namespace twinsweep::cli
