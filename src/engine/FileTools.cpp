// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/FileTools.h"

#include "engine/WalkState.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

void fillExtensionLists(FileTools& tools);

FileTools::FileTools()
    : settingsManager(SettingsManager::shared()), locationGate(LocationGate::processDefault()),
      neverCancelled_(std::make_unique<AtomicFlag>(false)),
      ownContext_(std::make_unique<SearchContext>(*neverCancelled_)), context_(ownContext_.get()) {
    fillExtensionLists(*this);
    for (const std::string& ext : packageExtension) {
        packageSet_.insert(ext);
    }
}

FileTools::~FileTools() = default;

bool FileTools::canceled() const {
    return context_->canceled();
}

void FileTools::post(const std::string& name) {
    if (name == kSearchThreadFinished) {
        finishedPosted_ = true;
    }
    NotificationCenter::defaultCenter().post(name, userInfo);
}

void FileTools::postWalkProgress() {
    if (totalFilesSlot_ == nullptr) {
        // Map nodes never move, so the two slots stay valid for the engine's life.
        totalFilesSlot_ = &userInfo[kTotalFiles];
        checkedFilesSlot_ = &userInfo[kCheckedFiles];
    }
    *totalFilesSlot_ = static_cast<std::int64_t>(fileList.size());
    *checkedFilesSlot_ = 0;
    for (; walkCounted_ < fileList.size(); ++walkCounted_) {
        walkBytes_ += fileList[walkCounted_]->size;
    }
    context_->phases.advance(fileList.size(), walkBytes_);
    post(kUpdateProgress);
}

void FileTools::postComparisonStep(std::size_t i) {
    if (checkedFilesSlot_ == nullptr) {
        checkedFilesSlot_ = &userInfo[kCheckedFiles];
    }
    *checkedFilesSlot_ = static_cast<std::int64_t>(i) + 1;
    context_->phases.advance(i + 1, 0);
    post(kUpdateProgress);
}

} // namespace twinsweep
