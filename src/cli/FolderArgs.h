// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace twinsweep {
struct LocationGate;
}

namespace twinsweep::cli {

// The folder arguments of the command line, made absolute against cwd.

// Lexically: "." and ".." folded, links left as they are.
std::string absoluteFolder(const std::string& given, const std::string& cwd);

// The path with every link and ".." resolved; absent (errno set) when it
// can't be resolved.
std::optional<std::string> physicalFolder(const std::string& given, const std::string& cwd);

// The absolute form of a folder argument in folder; an error text when it is
// not a folder (an empty argument never is).
std::string checkedFolder(const std::string& given, const std::string& cwd, std::string& folder);

// Why the search would find nothing in one of folders: the first that neither
// lies inside one of gate's roots nor holds one, named with the roots. Empty
// when every folder is searched.
std::string outsideLocationsError(const LocationGate& gate,
                                  const std::vector<std::string>& folders);

} // namespace twinsweep::cli
