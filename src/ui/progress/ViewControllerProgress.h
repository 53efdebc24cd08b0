// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>

#include "engine/ByteProgress.h"
#include "engine/NotificationCenter.h"
#include "ui/shell/ModalWindow.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace twinsweep {
class SettingsManager;
}

namespace twinsweep::ui {

// The modal window that runs a search on a background thread, shows how far
// it has got, lets the user cancel it, and closes when it is over. A new one
// is made for every search.
class ViewControllerProgress : public ModalWindow {
    Q_OBJECT
  public:
    explicit ViewControllerProgress(QWidget* opener);
    ~ViewControllerProgress() override;

    std::shared_ptr<SettingsManager> settingsManager;
    QProgressBar* progressIndicator = nullptr;
    QLabel* textFieldPercents = nullptr;
    QLabel* textFieldFilesScanned = nullptr;
    // Our addition below the counts: bytes compared and the time left.
    QLabel* textFieldBytesCompared = nullptr;
    QPushButton* buttonCancelSearch = nullptr;

    // How often the counts are repainted at most: the engine posts per file,
    // far more often than anyone can read.
    static constexpr int kRepaintIntervalMs = 33;

  public slots:
    void OnCancel();
    void ShowProgress(std::int64_t total, std::int64_t checked);
    void SearchDone();
    void CloseProgressWindow();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

  private:
    void buildLayout();
    void RunSearch();
    void repaintLatest();

    ScopedObserver updateProgressObserver_;
    ScopedObserver searchFinishedObserver_;
    std::atomic<std::int64_t> latestTotal_{0};
    std::atomic<std::int64_t> latestChecked_{0};
    // Handed to the engine; read here while its readers add to it.
    std::shared_ptr<ByteProgress> bytes_ = std::make_shared<ByteProgress>();
    TimeLeft timeLeft_;
    QTimer repaintTimer_;
    bool closed_ = false;
    std::thread job_;
};

} // namespace twinsweep::ui
