// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "engine/ByteProgress.h"
#include "engine/File.h"
#include "engine/Fingerprints.h"
#include "engine/LocationGate.h"
#include "engine/NotificationCenter.h"
#include "engine/SearchContext.h"

namespace twinsweep {

class AtomicFlag;
class SettingsManager;

enum class DateKind { Creation, Modification };

// The scan engine. One object per search, or wherever a list, a measure or a
// text is needed. Its operations live in files by concern: ExtensionLists.cpp,
// Walker.cpp, Grouping.cpp, SearchRun.cpp, Comparison.cpp, Categories.cpp,
// Formatting.cpp. A search reads no settings: its starter hands in a
// SearchContext.
class FileTools {
  public:
    FileTools();
    ~FileTools();
    FileTools(const FileTools&) = delete;
    FileTools& operator=(const FileTools&) = delete;

    std::shared_ptr<SettingsManager> settingsManager;
    FileList fileList;
    std::vector<std::string> packageExtension;
    std::vector<std::string> pictureExtension;
    std::vector<std::string> musicExtension;
    std::vector<std::string> movieExtension;
    std::vector<std::string> archiveExtension;
    std::vector<std::string> documentExtension;
    UserInfo userInfo;

    // Where the walk may look; starts as LocationGate::processDefault().
    LocationGate locationGate;
    // Our extra option: files of 100 MiB and more are compared by content too.
    bool compareLargeFilesByContent = false;
    // Threads that read and compare contents ahead of the comparison loop
    // (0 counts as 1).
    unsigned digestThreads = defaultDigestThreads();
    static unsigned defaultDigestThreads();
    // Threads that list folders and read attributes ahead of the walk, which
    // still takes everything in its own order. They start once the walk's
    // listings have waited on the disk for walkAheadAfter in all (a cold
    // cache); a warm walk is quicker on the search thread alone. 0: never.
    unsigned walkThreads = defaultWalkThreads();
    std::chrono::nanoseconds walkAheadAfter = std::chrono::milliseconds(20);
    static unsigned defaultWalkThreads();
    // Fingerprints remembered between searches (our extra option): the
    // comparison on threads trusts them for runs whose every file is
    // remembered unchanged, and remembers what it reads. None: every run is read.
    std::shared_ptr<FingerprintStore> fingerprints;

    // The context that the walk, the comparison and their diagnostics use:
    // a run's own during findDuplicateFiles, else the one set here (the
    // engine's own until then, with a cancel flag nobody sets).
    void useContext(SearchContext& context) { context_ = &context; }
    SearchContext& context() const { return *context_; }
    Diagnostics& diagnostics() const { return context_->diagnostics; }

    // --- Walk (Walker.cpp) ---
    // Appends accepted files to fileList in walk order. Every call, the top
    // one included, posts "UpdateProgress" once more when it returns.
    void scanFolders(const std::vector<std::string>& folders, bool ignorePackages,
                     const std::vector<std::string>& extensions, std::uint64_t minimum,
                     std::uint64_t maximum);
    // Total size of the regular files inside the folder at path, at any depth.
    std::uint64_t packageSize(const std::string& path);

    // --- Sorting and grouping (Grouping.cpp) ---
    void quickSort(std::int64_t low, std::int64_t high);
    std::int64_t partition(std::int64_t low, std::int64_t high);
    // MD5 of the contents; an unreadable file is digested as empty after its
    // "Ooops! Something went wrong: " line.
    static std::array<unsigned char, 16> contentDigest(const std::string& path);
    // The digest text of a group head: MD5Hash, computed on first request and
    // kept there (the comparison itself goes by the bytes, and only some
    // outputs show a digest). "" for a file without copies and for files
    // compared by size alone. Safe to call from several threads.
    std::string digestText(File& file) const;

    // --- Search run (SearchRun.cpp, Comparison.cpp) ---
    // The whole run over context, phase by phase: walk, size order,
    // comparison, collection. Cancelled: "SearchThreadFinished" once, nothing
    // returned.
    FileList findDuplicateFiles(SearchContext& context, const std::vector<std::string>& folders,
                                std::uint64_t minimum, std::uint64_t maximum, bool ignorePackages,
                                const std::vector<std::string>& extensions);
    // The phases one by one, on the context in use. Each but the walk returns
    // false when it found the run cancelled (nothing posted yet: the caller
    // posts the one "SearchThreadFinished").
    void walkPhase(const std::vector<std::string>& folders, bool ignorePackages,
                   const std::vector<std::string>& extensions, std::uint64_t minimum,
                   std::uint64_t maximum);
    bool sizeOrderPhase();
    bool comparisonPhase();
    std::optional<FileList> collectionPhase();
    static std::vector<std::string> removeNestedFolders(const std::vector<std::string>& folders);

    // --- Categories (Categories.cpp) ---
    int categoryOf(const File& file) const;
    std::uint64_t categorySize(int code) const;
    std::uint64_t listedSize() const;
    std::uint64_t markedSize(const FileList& groups) const;

    // --- Display texts (Formatting.cpp) ---
    static std::string fileSizeText(std::uint64_t bytes);
    // Absent when the item's attributes can't be read. folder: the walked
    // folder the item was found in (FolderRegistry), so that a path deeper
    // than PATH_MAX has a date too; 0 when not known.
    static std::optional<std::string> fileDateText(PathArg path, DateKind which,
                                                   std::uint32_t folder = 0);

    // Sets "totalFiles" to the length of fileList and "checkedFiles" to 0, and
    // posts "UpdateProgress".
    void postWalkProgress();
    // Posts name with the current userInfo.
    void post(const std::string& name);
    bool canceled() const;
    // Whether the last run ended by cancellation ("SearchThreadFinished" posted).
    bool runWasCancelled() const { return finishedPosted_; }

    // Sets "checkedFiles" to i + 1 and posts "UpdateProgress": the start of
    // comparison step i.
    void postComparisonStep(std::size_t i);
    // Whether files of this size are compared by their contents (else by size).
    bool byContent(std::uint64_t size) const;
    DuplicateFilePtr memberFor(const File& file) const;

  private:
    struct WalkState;
    struct Runs;
    Runs contentRuns() const;
    bool compareBySize(std::size_t i);
    // Drops a file met again under another name that the walk let through.
    void takeEachFileOnce();
    class Walk;
    friend class Walk;
    std::uint64_t packageSizeAt(int parentFd, const std::string& name, const std::string& path);

    std::unique_ptr<WalkState> walk_;
    std::unordered_set<std::string_view> packageSet_;
    std::int64_t* totalFilesSlot_ = nullptr;
    std::int64_t* checkedFilesSlot_ = nullptr;
    bool finishedPosted_ = false;
    // The walk's bytes so far: the sizes of fileList up to walkCounted_.
    std::size_t walkCounted_ = 0;
    std::uint64_t walkBytes_ = 0;
    std::unique_ptr<AtomicFlag> neverCancelled_;
    std::unique_ptr<SearchContext> ownContext_;
    SearchContext* context_;
};

} // namespace twinsweep
