// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/ResultsExport.h"

#include "engine/Digest.h"
#include "engine/FileTools.h"
#include "engine/FolderRegistry.h"
#include "export/Chunked.h"

namespace twinsweep {

namespace {

void appendCsvField(std::string& out, std::string_view field) {
    if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
        out.append(field);
        return;
    }
    out.push_back('"');
    for (const char c : field) {
        if (c == '"') {
            out.push_back('"');
        }
        out.push_back(c);
    }
    out.push_back('"');
}

} // namespace

bool matchedBySizeOnly(const File& group, bool largeByContent) {
    return group.size >= kLargeFileThreshold && !largeByContent;
}

const char* categoryName(int code) {
    static const char* const kNames[] = {"pictures", "music",     "movies",
                                         "archives", "documents", "other"};
    return code >= 1 && code <= 6 ? kNames[code - 1] : "other";
}

std::string jsonIdentity(const DuplicateFile& member) {
    std::string out;
    if (member.seen.known) {
        out += ",\"device\":" + std::to_string(member.seen.device) +
               ",\"inode\":" + std::to_string(member.seen.inode) +
               ",\"mtime\":" + std::to_string(member.seen.mtimeSec) +
               ",\"mtimeNsec\":" + std::to_string(member.seen.mtimeNsec);
    }
    if (const FolderIdentity folder = FolderRegistry::at(member.folder); folder.known) {
        out += ",\"folderDevice\":" + std::to_string(folder.device) +
               ",\"folderInode\":" + std::to_string(folder.inode);
    }
    return out;
}

bool writeJsonExport(const FileList& groups, const FileTools& tools, ExportFields fields,
                     const ExportSink& sink) {
    Chunked chunked(sink);
    std::string& out = chunked.text();
    out = "{\"groups\":[";
    for (std::size_t g = 0; g < groups.size(); ++g) {
        File& head = *groups[g];
        if (g > 0) {
            out.push_back(',');
        }
        out += "\n{\"path\":" + jsonString(head.path);
        out += ",\"size\":" + std::to_string(head.size);
        out += ",\"ext\":" + jsonString(head.ext);
        out += ",\"category\":\"";
        out += categoryName(tools.categoryOf(head));
        // Computed on demand (and kept); files compared by size alone have none.
        const std::string digest = tools.digestText(head);
        out += "\",\"md5\":" + (digest.empty() ? std::string("null") : jsonString(digest));
        out += ",\"members\":[";
        for (std::size_t m = 0; m < head.duplicates.size(); ++m) {
            const DuplicateFile& member = *head.duplicates[m];
            if (m > 0) {
                out.push_back(',');
            }
            out += "{\"path\":" + jsonString(member.path) + ",\"date\":" + jsonString(member.date);
            out += jsonIdentity(member);
            if (fields.marks) {
                out += member.checkState == 1 ? ",\"marked\":true" : ",\"marked\":false";
            }
            if (member.isProtected) {
                out += ",\"protected\":true";
            }
            out += "}";
        }
        out += "],\"sizeOnly\":";
        out += matchedBySizeOnly(head, tools.compareLargeFilesByContent) ? "true}" : "false}";
        if (!chunked.maybeFlush()) {
            return false;
        }
    }
    out += groups.empty() ? "]}\n" : "\n]}\n";
    return chunked.flush();
}

bool writeCsvExport(const FileList& groups, const FileTools& tools, ExportFields fields,
                    const ExportSink& sink) {
    Chunked chunked(sink);
    std::string& out = chunked.text();
    out = "group,path,size,date,category";
    out += fields.marks ? ",marked" : "";
    out += fields.protection ? ",protected" : "";
    out += ",size_only\r\n";
    for (std::size_t g = 0; g < groups.size(); ++g) {
        const File& head = *groups[g];
        const std::string number = std::to_string(g + 1);
        const std::string size = std::to_string(head.size);
        const char* category = categoryName(tools.categoryOf(head));
        const char* sizeOnlyField =
            matchedBySizeOnly(head, tools.compareLargeFilesByContent) ? ",1\r\n" : ",0\r\n";
        for (const DuplicateFilePtr& member : head.duplicates) {
            out += number;
            out.push_back(',');
            appendCsvField(out, csvPathText(member->path));
            out += "," + size + ",";
            appendCsvField(out, member->date);
            out += ",";
            out += category;
            if (fields.marks) {
                out += member->checkState == 1 ? ",1" : ",0";
            }
            if (fields.protection) {
                out += member->isProtected ? ",1" : ",0";
            }
            out += sizeOnlyField;
        }
        if (!chunked.maybeFlush()) {
            return false;
        }
    }
    return chunked.flush();
}

} // namespace twinsweep
