#pragma once

#include <string>
#include <string_view>

#include "engine/FileTools.h"

namespace twinsweep::cli {

// One path per line, head first, a blank line between groups.
std::string textReport(const FileList& groups);
// {"groups":[{"path","size","ext","category","md5","members":[{"path","date"}]}]}
std::string jsonReport(const FileList& groups, const FileTools& tools);

// Control characters and backslashes as C escapes, every other byte as is,
// so that each path stays on one line.
std::string textEscaped(std::string_view bytes);
// A JSON string literal, quotes included. Bytes that are not valid UTF-8
// become \udcXX (XX the byte), which Python's surrogateescape turns back
// into the original bytes.
std::string jsonString(std::string_view bytes);

} // namespace twinsweep::cli
