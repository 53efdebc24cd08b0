// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QButtonGroup>
#include <QStringList>
#include <QWidget>

namespace twinsweep::ui {

// A row of exclusive buttons, one of which is selected. Setting the segment
// from code sends nothing; every click by the user sends clicked(), even on
// the segment already selected, so the custom option can be chosen again.
class SegmentedControl : public QWidget {
    Q_OBJECT
  public:
    SegmentedControl(const QStringList& labels, QWidget* parent = nullptr);

    int selectedSegment() const;
    void setSelectedSegment(int segment);
    int segmentCount() const;
    // The button of a segment, for tests and accessibility.
    QAbstractButton* segmentButton(int segment) const;

  signals:
    void clicked(int segment);

  private:
    QButtonGroup group_;
};

} // namespace twinsweep::ui
