// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/File.h"

namespace twinsweep {

// A Boolean that one thread may set while another reads it. Copying takes the
// current value, so a whole settings object can still be copied or reset.
class AtomicFlag {
  public:
    AtomicFlag(bool value = false) : value_(value) {}
    AtomicFlag(const AtomicFlag& other) : value_(other.load()) {}
    AtomicFlag& operator=(const AtomicFlag& other) {
        store(other.load());
        return *this;
    }
    AtomicFlag& operator=(bool value) {
        store(value);
        return *this;
    }
    operator bool() const { return load(); }
    bool load() const { return value_.load(std::memory_order_relaxed); }
    void store(bool value) { value_.store(value, std::memory_order_relaxed); }

  private:
    std::atomic<bool> value_;
};

// Seconds since 1970-01-01 00:00 UTC.
using DateTime = double;

// Midnight at the start of the day written "dd/MM/yyyy", in local time.
// Returns false (and leaves out untouched) when the text is not such a date.
bool parseDayText(const std::string& text, DateTime& out);

// The one shared object for the user's options, the last search's results and
// the custom rules' working copy. Plain public fields, no behaviour.
class SettingsManager {
  public:
    SettingsManager();

    // The process-wide instance, made on first use from whichever thread asks.
    static std::shared_ptr<SettingsManager> shared();

    std::vector<std::string> listFolderPaths;
    std::uint64_t minimumFileSize = 204800;
    std::uint64_t maximumFileSize = 107374182400ULL;
    bool customFileTypes = false;
    std::vector<std::string> listFileExtensions;
    bool moveToTrash = true;
    bool ignorePackages = true;
    FileList fileList;
    FileList duplicateFileList;
    std::uint64_t spaceSaved = 0;
    AtomicFlag searchCanceledByUser{false};
    bool openDuplicatesWindow = false;
    std::int64_t customMessageRespone = 1;
    std::string currentSelectedFilePath;
    std::int64_t selectedFile = 0;
    std::int64_t firstDateState = 0;
    std::int64_t firstDateSelectedItem = 0;
    std::int64_t firstDateComparisonItem = 1;
    DateTime firstDate = 0;
    std::int64_t secondDateState = 0;
    std::int64_t secondDateSelectedItem = 0;
    std::int64_t secondDateComparisonItem = 0;
    DateTime secondDate = 0;
    std::int64_t firstFileSizeState = 0;
    std::int64_t firstFileSizeComparisonItem = 1;
    std::int64_t firstFileSize = 200;
    std::int64_t firstFileSizeUnit = 1;
    std::int64_t secondFileSizeState = 0;
    std::int64_t secondFileSizeComparisonItem = 0;
    std::int64_t secondFileSize = 100;
    std::int64_t secondFileSizeUnit = 3;
    std::int64_t customFileTypesState = 0;
    std::vector<std::string> customFileExtensions;
    std::string customFileType = "jpg";
    std::int64_t customFilePathState = 0;
    std::string customFilePath = " ";
    std::int64_t subfoldersState = 1;
    std::int64_t matchState = 0;
    std::string customSettingsOption = "Cancel";

    // Our extra option: compare files of 100 MiB and more by content too.
    bool compareLargeFilesByContent = false;
    // Our extra option: folders whose copies are never marked or removed.
    // Each is also one of listFolderPaths (or inside one).
    std::vector<std::string> protectedFolders;
    // Our extra removal choice: marked copies become hard links to a kept
    // copy (moveToTrash is then not consulted).
    bool replaceWithHardLinks = false;
    // Our extra removal choice: marked copies share their storage with a
    // kept copy (copy-on-write); nothing is removed, and moveToTrash and
    // replaceWithHardLinks are then not consulted.
    bool shareStorage = false;
    // Our extra option: fingerprints of the contents are remembered between
    // searches ($XDG_CACHE_HOME/twinsweep) and trusted for unchanged files.
    bool rememberFingerprints = false;
    // Our extra option: the search reads at idle I/O priority.
    bool idleSearch = false;
    // Our extra option: keep oldest and keep newest compare the exact
    // creation times instead of the displayed date texts.
    bool exactKeepTimes = false;
    // Our extra option: the window's search takes any folder, as the
    // command-line tool's --any-location does.
    bool searchAnyLocation = false;
    // Our addition: the diagnostic lines of the window's last search (items
    // that could not be read), which the results window counts.
    std::vector<std::string> searchRefusals;
};

} // namespace twinsweep
