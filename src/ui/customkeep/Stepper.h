// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QToolButton;

namespace twinsweep::ui {

// Two small arrow buttons that step a number up and down within a range; it
// has no text of its own and sits beside the field it steps.
class Stepper : public QWidget {
    Q_OBJECT
  public:
    explicit Stepper(QWidget* parent = nullptr);

    double value() const { return value_; }
    // Clamped to the range; sends nothing.
    void setValue(double value);
    void setRange(double minimum, double maximum);
    void stepBy(int steps);

  signals:
    // The user stepped.
    void stepped();

  private:
    double value_ = 0;
    double minimum_ = 0;
    double maximum_ = 100000;
    double increment_ = 1;
};

} // namespace twinsweep::ui
