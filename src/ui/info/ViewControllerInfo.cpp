// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/info/ViewControllerInfo.h"

#include <QFile>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QProgressBar>
#include <QVBoxLayout>

#include "engine/FileTools.h"
#include "ui/duplicates/BackgroundJob.h"
#include "ui/info/InfoText.h"
#include "ui/platform/FileTypeIcons.h"

namespace twinsweep::ui {

namespace {

constexpr QSize kPreviewSize(360, 280);

QLabel* makeValue(QWidget* parent, const QString& name) {
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

ViewControllerInfo::ViewControllerInfo(QWidget* opener)
    : ModalWindow(opener), settingsManager(SettingsManager::shared()) {
    setWindowTitle(tr("File Information"));
    auto* contents = new QWidget(this);
    auto* outer = new QHBoxLayout(contents);

    auto* previewBox = new QVBoxLayout;
    imageView = new QLabel(contents);
    imageView->setObjectName(QStringLiteral("imageView"));
    imageView->setFixedSize(kPreviewSize);
    imageView->setAlignment(Qt::AlignCenter);
    progressIndicator = new QProgressBar(contents);
    progressIndicator->setObjectName(QStringLiteral("progressIndicator"));
    progressIndicator->setRange(0, 0);
    progressIndicator->setTextVisible(false);
    progressIndicator->setFixedWidth(120);
    previewBox->addWidget(imageView);
    previewBox->addWidget(progressIndicator, 0, Qt::AlignHCenter);
    outer->addLayout(previewBox);

    auto* form = new QFormLayout;
    labelFileName = makeValue(contents, QStringLiteral("labelFileName"));
    labelFileSize = makeValue(contents, QStringLiteral("labelFileSize"));
    labelExtension = makeValue(contents, QStringLiteral("labelExtension"));
    labelCreationDate = makeValue(contents, QStringLiteral("labelCreationDate"));
    labelModificationDate = makeValue(contents, QStringLiteral("labelModificationDate"));
    // Our addition: where the file is, the folder that tells copies apart.
    labelPath = makeValue(contents, QStringLiteral("labelPath"));
    labelPath->setWordWrap(true);
    labelPath->setTextFormat(Qt::PlainText);
    form->addRow(tr("Name:"), labelFileName);
    form->addRow(tr("Size:"), labelFileSize);
    form->addRow(tr("Extension:"), labelExtension);
    form->addRow(tr("Created:"), labelCreationDate);
    form->addRow(tr("Modified:"), labelModificationDate);
    form->addRow(tr("Path:"), labelPath);
    outer->addLayout(form, 1);
    describeControls();
    setContents(contents);
    resize(680, 340);
    viewDidLoad();
}

// A value label is spoken as its text, the value: only a description is set,
// and the label in front of it names it.
void ViewControllerInfo::describeControls() {
    imageView->setAccessibleName(tr("Preview"));
    imageView->setAccessibleDescription(tr("The file's picture, or the icon of its type."));
    progressIndicator->setAccessibleName(tr("Loading the preview"));
    progressIndicator->setAccessibleDescription(tr("Shown while the file's picture is read."));
    labelFileName->setAccessibleDescription(tr("The file's name without its extension."));
    labelFileSize->setAccessibleDescription(tr("The size of the file."));
    labelExtension->setAccessibleDescription(tr("The file's extension."));
    labelCreationDate->setAccessibleDescription(tr("When the file was created."));
    labelModificationDate->setAccessibleDescription(tr("When the file was last changed."));
    labelPath->setAccessibleDescription(tr("The folder and name of the file."));
}

void ViewControllerInfo::viewDidLoad() {
    loadPreview();
}

void ViewControllerInfo::fillLabels(const std::string& path, std::uint64_t groupSize) {
    labelFileName->setText(
        QFile::decodeName(QByteArray::fromStdString(nameWithoutExtension(path))));
    labelFileSize->setText(QString::fromStdString(FileTools::fileSizeText(groupSize)));
    labelPath->setText(QFile::decodeName(QByteArray::fromStdString(path)));
    labelExtension->setText(
        QFile::decodeName(QByteArray::fromStdString(extensionKeepingCase(path))));
    // A file gone since the search has no dates: the labels stay empty.
    const auto created = FileTools::fileDateText(path, DateKind::Creation);
    const auto modified = FileTools::fileDateText(path, DateKind::Modification);
    labelCreationDate->setText(QString::fromStdString(created.value_or(std::string())));
    labelModificationDate->setText(QString::fromStdString(modified.value_or(std::string())));
}

void ViewControllerInfo::loadPreview() {
    previewPath_ = settingsManager->currentSelectedFilePath;
    progressIndicator->show();
    runInBackground(
        this, [path = previewPath_] { return loadPreviewPicture(path, kPreviewSize); },
        [this](QImage picture) { showPreview(picture); });
}

void ViewControllerInfo::showPreview(const QImage& picture) {
    progressIndicator->hide();
    previewIsPicture_ = !picture.isNull();
    if (previewIsPicture_) {
        imageView->setPixmap(QPixmap::fromImage(picture));
    } else {
        // Not a picture, or one that can't be read: the file type's icon. Icons
        // come from the theme, which only the GUI thread may use.
        imageView->setPixmap(fileIcon(previewPath_).pixmap(128, 128));
    }
    previewShown_ = true;
}

} // namespace twinsweep::ui
