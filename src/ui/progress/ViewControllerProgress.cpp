// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/progress/ViewControllerProgress.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "engine/FileTools.h"
#include "engine/LocationGate.h"
#include "engine/SearchJob.h"
#include "fingerprints/FingerprintCache.h"
#include "settings/SettingsManager.h"
#include "ui/platform/MainQueue.h"
#include "ui/progress/ProgressText.h"
#include "ui/shell/Alert.h"

namespace twinsweep::ui {

namespace {

void setIfChanged(QLabel* label, const QString& text) {
    if (label->text() != text) {
        label->setText(text);
    }
}

} // namespace

ViewControllerProgress::ViewControllerProgress(QWidget* opener)
    : ModalWindow(opener), settingsManager(SettingsManager::shared()) {
    setObjectName(QStringLiteral("WindowControllerProgress"));
    setWindowTitle(tr("Searching for Duplicate Files"));
    buildLayout();
    ShowProgress(0, 0);

    // The observers run on the search thread: they only note the latest
    // counts, and the repaint timer shows them on the GUI thread.
    updateProgressObserver_ =
        ScopedObserver(kUpdateProgress, [this](const std::string&, const UserInfo& info) {
            const auto total = info.find(kTotalFiles);
            const auto checked = info.find(kCheckedFiles);
            if (total == info.end() || checked == info.end()) {
                return;
            }
            latestChecked_.store(checked->second, std::memory_order_relaxed);
            latestTotal_.store(total->second, std::memory_order_relaxed);
        });
    searchFinishedObserver_ =
        ScopedObserver(kSearchThreadFinished, [this](const std::string&, const UserInfo&) {
            submitToMain(this, [this] { CloseProgressWindow(); });
        });
    repaintTimer_.setInterval(kRepaintIntervalMs);
    connect(&repaintTimer_, &QTimer::timeout, this, &ViewControllerProgress::repaintLatest);
    repaintTimer_.start();

    job_ = std::thread([this] { RunSearch(); });
}

ViewControllerProgress::~ViewControllerProgress() {
    if (job_.joinable()) {
        // Only reached early when the application goes away mid-search.
        settingsManager->searchCanceledByUser = true;
        job_.join();
    }
}

void ViewControllerProgress::buildLayout() {
    auto* contents = new QWidget(this);
    auto* layout = new QVBoxLayout(contents);
    auto* title = new QLabel(tr("Looking for duplicate files..."), contents);
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    layout->addWidget(title);

    progressIndicator = new QProgressBar(contents);
    progressIndicator->setObjectName(QStringLiteral("progressIndicator"));
    progressIndicator->setRange(0, 100);
    progressIndicator->setTextVisible(false);
    progressIndicator->setMinimumWidth(380);
    layout->addWidget(progressIndicator);

    auto* counts = new QHBoxLayout;
    textFieldFilesScanned = new QLabel(contents);
    textFieldFilesScanned->setObjectName(QStringLiteral("textFieldFilesScanned"));
    textFieldPercents = new QLabel(contents);
    textFieldPercents->setObjectName(QStringLiteral("textFieldPercents"));
    textFieldPercents->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    counts->addWidget(textFieldFilesScanned, 1);
    counts->addWidget(textFieldPercents);
    layout->addLayout(counts);
    textFieldBytesCompared = new QLabel(contents);
    textFieldBytesCompared->setObjectName(QStringLiteral("textFieldBytesCompared"));
    layout->addWidget(textFieldBytesCompared);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttonCancelSearch = new QPushButton(tr("Cancel"), contents);
    buttonCancelSearch->setObjectName(QStringLiteral("buttonCancelSearch"));
    buttonCancelSearch->setAutoDefault(false);
    connect(buttonCancelSearch, &QPushButton::clicked, this, &ViewControllerProgress::OnCancel);
    buttons->addWidget(buttonCancelSearch);
    layout->addLayout(buttons);

    progressIndicator->setAccessibleName(tr("Search progress"));
    progressIndicator->setAccessibleDescription(tr("Share of the search done"));
    buttonCancelSearch->setAccessibleName(tr("Cancel"));
    buttonCancelSearch->setAccessibleDescription(
        tr("Stops the search; the window closes once it has stopped."));
    setContents(contents);
}

void ViewControllerProgress::RunSearch() {
    {
        FileTools tools;
        // Its lines still go to standard output; the results window counts them.
        CollectedDiagnostics said(&processDiagnostics());
        SearchContext context(settingsManager->searchCanceledByUser, said);
        context.bytes = bytes_;
        if (settingsManager->searchAnyLocation) {
            tools.locationGate = LocationGate::anywhere();
        }
        if (settingsManager->rememberFingerprints) {
            tools.fingerprints = openFingerprintCache(); // says why when there is none
        }
        runSearchJob(*settingsManager, tools, context);
        settingsManager->searchRefusals = said.lines();
    } // the engine's records are freed here, before SearchDone joins this thread
    submitToMain(this, [this] { SearchDone(); });
}

void ViewControllerProgress::repaintLatest() {
    // Every tick, not only when a count changed: the bytes move while one
    // large file is read.
    ShowProgress(latestTotal_.load(std::memory_order_relaxed),
                 latestChecked_.load(std::memory_order_relaxed));
}

void ViewControllerProgress::ShowProgress(std::int64_t total, std::int64_t checked) {
    const TimeLeft::Clock::time_point now = TimeLeft::Clock::now();
    // Times the estimate from the comparison's start, however late it is
    // first looked at; the figures shown are read once, below.
    timeLeft_.line(*bytes_, now, checked, total);
    const std::uint64_t bytesTotal = bytes_->total();
    const std::uint64_t bytesDone = std::min(bytes_->done(), bytesTotal);
    const ProgressTexts texts = progressTexts(total, checked, bytesDone, bytesTotal);
    setIfChanged(textFieldFilesScanned, texts.filesScanned);
    setIfChanged(textFieldPercents, texts.percents);
    setIfChanged(textFieldBytesCompared,
                 bytesTotal == 0 ? QString()
                                 : comparedText(bytesDone, bytesTotal,
                                                timeLeft_.secondsLeft(bytesDone, bytesTotal, now,
                                                                      checked, total)));
    if (texts.busy) {
        progressIndicator->setRange(0, 0);
        return;
    }
    progressIndicator->setRange(0, 100);
    // The same percentage as the text, to the whole percent the bar can hold.
    progressIndicator->setValue(static_cast<int>(std::lround(texts.percent)));
}

void ViewControllerProgress::SearchDone() {
    repaintTimer_.stop();
    if (job_.joinable()) {
        job_.join(); // it has queued this call as its very last step
    }
    if (settingsManager->searchCanceledByUser) {
        CloseProgressWindow();
        return;
    }
    CloseProgressWindow();
    if (settingsManager->duplicateFileList.empty()) {
        showInformation(parentWidget(), tr("No duplicate files found."));
        return;
    }
    settingsManager->openDuplicatesWindow = true;
}

void ViewControllerProgress::CloseProgressWindow() {
    if (closed_) {
        return;
    }
    closed_ = true;
    repaintTimer_.stop();
    // A minimised window that closes would keep its session; restore it first.
    if (isMinimized()) {
        showNormal();
    }
    done(QDialog::Accepted);
}

void ViewControllerProgress::OnCancel() {
    buttonCancelSearch->setText(tr("Cancelling..."));
    buttonCancelSearch->setEnabled(false);
    settingsManager->searchCanceledByUser = true;
}

void ViewControllerProgress::closeEvent(QCloseEvent* event) {
    // The close button cancels; the window closes once the search has stopped.
    event->ignore();
    if (!closed_) {
        OnCancel();
    }
}

void ViewControllerProgress::reject() {
    // Escape, like the close button, cancels instead of closing.
    if (!closed_) {
        OnCancel();
    }
}

} // namespace twinsweep::ui
