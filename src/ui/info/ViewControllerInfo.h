// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <memory>
#include <string>

#include "settings/SettingsManager.h"
#include "ui/shell/ModalWindow.h"

class QLabel;
class QProgressBar;

namespace twinsweep::ui {

// One member's name, size, extension, dates and a preview: its picture, or
// its file-type icon. The preview is read off the GUI thread, behind a
// spinner; the labels are filled by the opener.
class ViewControllerInfo : public ModalWindow {
    Q_OBJECT
  public:
    explicit ViewControllerInfo(QWidget* opener);

    std::shared_ptr<SettingsManager> settingsManager;
    QLabel* labelFileName = nullptr;
    QLabel* labelFileSize = nullptr;
    QLabel* labelExtension = nullptr;
    QLabel* labelCreationDate = nullptr;
    QLabel* labelModificationDate = nullptr;
    QLabel* labelPath = nullptr;
    QLabel* imageView = nullptr;
    QProgressBar* progressIndicator = nullptr;

    // The labels (the path too) for the member at path in a group of groupSize bytes.
    void fillLabels(const std::string& path, std::uint64_t groupSize);

    // Whether the preview has arrived, and whether it is the file's picture
    // (rather than its icon).
    bool previewShown() const { return previewShown_; }
    bool previewIsPicture() const { return previewIsPicture_; }

  private:
    void describeControls();
    void viewDidLoad();
    void loadPreview();
    void showPreview(const QImage& picture);

    std::string previewPath_;
    bool previewShown_ = false;
    bool previewIsPicture_ = false;
};

} // namespace twinsweep::ui
