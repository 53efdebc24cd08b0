// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/duplicates/CleanProgress.h"

#include <QFile>
#include <QFontMetrics>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "engine/FileTools.h"

namespace twinsweep::ui {

void CleanProgressState::setCurrent(const std::string& path) {
    std::lock_guard guard(lock_);
    current_ = path;
}

std::string CleanProgressState::current() const {
    std::lock_guard guard(lock_);
    return current_;
}

CleanProgress::CleanProgress(QWidget* parent, CleanProgressState& state, std::int64_t marked)
    : QDialog(parent), state_(state), marked_(std::max<std::int64_t>(marked, 1)) {
    setWindowTitle(tr("Cleaning"));
    setWindowModality(Qt::ApplicationModal);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Checking and cleaning the marked copies..."), this));
    progressIndicator = new QProgressBar(this);
    progressIndicator->setRange(0, 1000);
    progressIndicator->setValue(0);
    layout->addWidget(progressIndicator);
    textFieldCopiesDone = new QLabel(this);
    textFieldBytesFreed = new QLabel(this);
    textFieldCurrentCopy = new QLabel(this);
    textFieldCurrentCopy->setMinimumWidth(420);
    for (QLabel* label : {textFieldCopiesDone, textFieldBytesFreed, textFieldCurrentCopy}) {
        layout->addWidget(label);
    }
    buttonStop = new QPushButton(tr("Stop"), this);
    buttonStop->setAutoDefault(false);
    layout->addWidget(buttonStop, 0, Qt::AlignRight);
    progressIndicator->setAccessibleName(tr("Clean progress"));
    progressIndicator->setAccessibleDescription(tr("Share of the marked copies done"));
    textFieldCopiesDone->setAccessibleName(tr("Copies done"));
    textFieldCopiesDone->setAccessibleDescription(tr("Marked copies done so far"));
    textFieldBytesFreed->setAccessibleName(tr("Space freed"));
    textFieldBytesFreed->setAccessibleDescription(tr("Space freed so far"));
    textFieldCurrentCopy->setAccessibleName(tr("Copy being checked"));
    textFieldCurrentCopy->setAccessibleDescription(tr("The path of the copy checked now"));
    buttonStop->setAccessibleName(tr("Stop"));
    buttonStop->setAccessibleDescription(tr("Stops the clean after the copy under way"));
    connect(buttonStop, &QPushButton::clicked, this, &CleanProgress::OnStop);
    connect(&repaint_, &QTimer::timeout, this, &CleanProgress::repaintLatest);
    repaint_.start(kRepaintIntervalMs);
    repaintLatest();
}

void CleanProgress::repaintLatest() {
    // Other names of a linked file may add attempts beyond the marked copies.
    const std::int64_t done = std::min(state_.done.load(), marked_);
    progressIndicator->setValue(static_cast<int>(done * 1000 / marked_));
    textFieldCopiesDone->setText(tr("%1 of %2 copies done").arg(done).arg(marked_));
    textFieldBytesFreed->setText(
        tr("Freed: %1").arg(QString::fromStdString(FileTools::fileSizeText(state_.bytes.load()))));
    const std::string path = state_.current();
    const QString current = QFile::decodeName(QByteArray::fromStdString(path));
    const QFontMetrics metrics(textFieldCurrentCopy->font());
    textFieldCurrentCopy->setText(
        metrics.elidedText(current, Qt::ElideMiddle, textFieldCurrentCopy->width()));
    textFieldCurrentCopy->setToolTip(current);
}

void CleanProgress::OnStop() {
    state_.stop = true;
    buttonStop->setEnabled(false);
    buttonStop->setText(tr("Stopping..."));
}

void CleanProgress::reject() {
    // The removal under way ends first; finish() closes the display.
    if (!finished_) {
        OnStop();
        return;
    }
    QDialog::reject();
}

void CleanProgress::finish() {
    finished_ = true;
    repaint_.stop();
    repaintLatest();
    accept();
}

} // namespace twinsweep::ui
