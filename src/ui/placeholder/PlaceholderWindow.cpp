// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/placeholder/PlaceholderWindow.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "settings/SettingsManager.h"

namespace twinsweep::ui {

PlaceholderWindow::PlaceholderWindow(QWidget* opener, const QString& title, bool ownsResults)
    : ModalWindow(opener), ownsResults_(ownsResults) {
    setWindowTitle(title);
    auto* contents = new QWidget(this);
    auto* layout = new QVBoxLayout(contents);
    const auto settings = SettingsManager::shared();
    auto* label =
        new QLabel(tr("%1 groups of duplicate files were found.\nThis window is not ready yet.")
                       .arg(settings->duplicateFileList.size()),
                   contents);
    label->setObjectName(QStringLiteral("labelPlaceholder"));
    layout->addWidget(label);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, contents);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    setContents(contents);
    resize(420, 160);
}

void PlaceholderWindow::viewDidDisappear() {
    if (ownsResults_) {
        const auto settings = SettingsManager::shared();
        settings->fileList.clear();
        settings->duplicateFileList.clear();
    }
    ModalWindow::viewDidDisappear();
}

} // namespace twinsweep::ui
