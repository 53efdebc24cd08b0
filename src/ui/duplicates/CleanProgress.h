// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QTimer>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

class QLabel;
class QProgressBar;
class QPushButton;

namespace twinsweep::ui {

// What the clean's worker thread tells its progress display; the display
// reads it on the GUI thread from a timer.
class CleanProgressState {
  public:
    std::atomic<std::int64_t> done{0};   // copies attempted
    std::atomic<std::uint64_t> bytes{0}; // bytes freed so far
    std::atomic<bool> stop{false};       // Stop was pressed

    void setCurrent(const std::string& path);
    std::string current() const;

  private:
    mutable std::mutex lock_;
    std::string current_; // the copy being checked
};

// The modal display of a running clean: copies done of marked, bytes freed,
// the copy being checked, and Stop. Stop (or Escape, or the close button)
// asks the worker to stop after the removal under way; the display closes
// only when finish() says the worker is done, so nothing is left half-done.
class CleanProgress : public QDialog {
    Q_OBJECT
  public:
    CleanProgress(QWidget* parent, CleanProgressState& state, std::int64_t marked);

    QProgressBar* progressIndicator = nullptr;
    QLabel* textFieldCopiesDone = nullptr;
    QLabel* textFieldBytesFreed = nullptr;
    QLabel* textFieldCurrentCopy = nullptr;
    QPushButton* buttonStop = nullptr;

    // The worker has ended: closes the display.
    void finish();

    static constexpr int kRepaintIntervalMs = 33;

  public slots:
    void OnStop();

  protected:
    void reject() override;

  private:
    void repaintLatest();

    CleanProgressState& state_;
    std::int64_t marked_;
    QTimer repaint_;
    bool finished_ = false;
};

} // namespace twinsweep::ui
