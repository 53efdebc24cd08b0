// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "engine/File.h"

namespace twinsweep {

class FileTools;

// Receives the written text piece by piece; false stops the writing.
using ExportSink = std::function<bool(std::string_view)>;

// What goes into an export beyond the groups themselves.
struct ExportFields {
    bool marks = false;      // each member's mark (the results window's export)
    bool protection = false; // CSV: a "protected" column (JSON names protected copies always)
};

// {"groups":[{"path","size","ext","category","md5","members":[{"path","date"}],"sizeOnly"}]}
// with "marked":true|false on each member when fields.marks, and
// "protected":true on each protected member. "md5" is null for files compared
// by size alone, and "sizeOnly" is true for them (files of 100 MiB and more
// when tools does not compare those by content). Each member also carries what the search saw of it
// ("device", "inode", "mtime", "mtimeNsec"; its size is the group's) and of
// the folder it was found in ("folderDevice", "folderInode"), so a plan can be
// applied later (twinsweep-cli --apply). One group a line, written in bounded pieces.
bool writeJsonExport(const FileList& groups, const FileTools& tools, ExportFields fields,
                     const ExportSink& sink);

// Whether the search matched group by size alone, its contents never
// compared: files of 100 MiB and more, unless largeByContent.
bool matchedBySizeOnly(const File& group, bool largeByContent);

// RFC 4180: a header line, then one line per member: group (counted from 1),
// path, size, date, category, then "marked" (1 or 0) and "protected" (1 or 0)
// as fields asks, and last "size_only" (1 when the group was matched by size
// alone, its contents not compared). Lines end in CR LF; a field holding a comma, a quote, CR or
// LF is quoted, with its quotes doubled. Paths: backslashes doubled and bytes
// that are not UTF-8 written \udcXX, as in the JSON, so the bytes come back.
bool writeCsvExport(const FileList& groups, const FileTools& tools, ExportFields fields,
                    const ExportSink& sink);

// ,"device":…,"folderInode":… of a member, as writeJsonExport describes
// (nothing for what the search did not record).
std::string jsonIdentity(const DuplicateFile& member);

// A JSON string literal, quotes included. Bytes that are not valid UTF-8
// become \udcXX (XX the byte), which Python's surrogateescape turns back
// into the original bytes.
std::string jsonString(std::string_view bytes);

// The path escaping of writeCsvExport, and its reverse (false when text is not
// such an escaped path).
std::string csvPathText(std::string_view bytes);
bool csvPathBytes(std::string_view text, std::string& bytes);

// The names of category codes 1 to 6: "pictures" ... "other".
const char* categoryName(int code);

} // namespace twinsweep
