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
    setWindowTitle(QStringLiteral("File Information"));
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
    form->addRow(QStringLiteral("Name:"), labelFileName);
    form->addRow(QStringLiteral("Size:"), labelFileSize);
    form->addRow(QStringLiteral("Extension:"), labelExtension);
    form->addRow(QStringLiteral("Created:"), labelCreationDate);
    form->addRow(QStringLiteral("Modified:"), labelModificationDate);
    form->addRow(QStringLiteral("Path:"), labelPath);
    outer->addLayout(form, 1);
    setContents(contents);
    resize(680, 340);
    viewDidLoad();
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
