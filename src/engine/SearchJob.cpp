// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SearchJob.h"

#include "engine/FileTools.h"
#include "engine/GentleRead.h"
#include "engine/ProtectedFolders.h"
#include "engine/SameFile.h"
#include "engine/WalkedFolders.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

namespace {

// One file seen under two names (a bind mount, an overlay view) is one
// member: its later names leave the group.
void dropSecondViews(File& group, const SameFile& sameFile) {
    std::vector<DuplicateFilePtr> kept;
    const auto id = [](const FileIdentity& s) { return SameFile::DevIno{s.device, s.inode}; };
    for (const DuplicateFilePtr& m : group.duplicates) {
        bool twice = sameFile.known(group.path, id(group.seen), m->path, id(m->seen));
        for (std::size_t i = 0; !twice && i < kept.size(); ++i) {
            twice = sameFile.known(kept[i]->path, id(kept[i]->seen), m->path, id(m->seen));
        }
        if (!twice) {
            kept.push_back(m);
        }
    }
    group.duplicates = std::move(kept);
}

} // namespace

bool runSearchJob(SettingsManager& settings, FileTools& tools) {
    SearchContext context(settings.searchCanceledByUser);
    return runSearchJob(settings, tools, context);
}

bool runSearchJob(SettingsManager& settings, FileTools& tools, SearchContext& context) {
    tools.compareLargeFilesByContent = settings.compareLargeFilesByContent;
    // The reading threads start below and inherit it.
    const IdleIoPriority idle(settings.idleSearch);
    // The walked folders stay open until each head's own entry is dated too.
    const WalkedFolderSession openFolders;
    beginGentleSearch();
    const std::vector<std::string> extensions =
        settings.customFileTypes ? settings.listFileExtensions : std::vector<std::string>{};
    settings.fileList =
        tools.findDuplicateFiles(context, settings.listFolderPaths, settings.minimumFileSize,
                                 settings.maximumFileSize, settings.ignorePackages, extensions);
    const bool completed = !tools.runWasCancelled();
    const SameFile sameFile;
    for (const FilePtr& file : settings.fileList) {
        dropSecondViews(*file, sameFile);
        if (file->duplicates.empty()) {
            continue;
        }
        auto own = std::make_shared<DuplicateFile>(
            file->path,
            FileTools::fileDateText(file->path, DateKind::Creation, file->folder).value_or(""), 0);
        own->seen = file->seen;
        own->folder = file->folder;
        file->duplicates.insert(file->duplicates.begin(), std::move(own));
        settings.duplicateFileList.push_back(file);
    }
    settings.fileList.clear();
    applyProtection(settings.duplicateFileList, settings.protectedFolders);
    return completed;
}

} // namespace twinsweep
