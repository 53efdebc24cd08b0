// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

#include "engine/Fingerprints.h"

namespace twinsweep {

// The folder of remembered fingerprints: $XDG_CACHE_HOME/twinsweep, by
// default ~/.cache/twinsweep ("" when neither is set to an absolute path).
std::string fingerprintFolderPath();

// The file of the store inside that folder.
inline constexpr const char* kFingerprintFile = "fingerprints.sqlite";

// Opens the store of remembered fingerprints (SQLite) in a private folder
// (openPrivateFolder), making it when missing. A store twinsweep can't trust
// (not a SQLite file, another schema or version, another owner, writable by
// others) or a folder refused as not private is set aside under a dated name,
// with a "Note:   " line, and a new one is made; null, after an "Error:  "
// line, when no trusted store can be had. folder: the path to use instead of
// fingerprintFolderPath().
std::shared_ptr<FingerprintStore> openFingerprintCache(const std::string& folder = {});

// Forgets every remembered fingerprint. "" when done (or nothing was
// remembered), else why not, a whole sentence naming the path.
std::string clearFingerprintCache(const std::string& folder = {});

} // namespace twinsweep
