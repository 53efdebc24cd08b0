#include "engine/SearchJob.h"

#include "engine/FileTools.h"
#include "engine/ProtectedFolders.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

bool runSearchJob(SettingsManager& settings, FileTools& tools) {
    tools.compareLargeFilesByContent = settings.compareLargeFilesByContent;
    const std::vector<std::string> extensions =
        settings.customFileTypes ? settings.listFileExtensions : std::vector<std::string>{};
    settings.fileList =
        tools.findDuplicateFiles(settings.listFolderPaths, settings.minimumFileSize,
                                 settings.maximumFileSize, settings.ignorePackages, extensions);
    const bool completed = !tools.runWasCancelled();
    for (const FilePtr& file : settings.fileList) {
        if (file->duplicates.empty()) {
            continue;
        }
        auto own = std::make_shared<DuplicateFile>(
            file->path, FileTools::fileDateText(file->path, DateKind::Creation).value_or(""), 0);
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
