#include "ui/duplicates/SegmentedControl.h"

#include <QHBoxLayout>
#include <QToolButton>

namespace twinsweep::ui {

SegmentedControl::SegmentedControl(const QStringList& labels, QWidget* parent) : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    group_.setExclusive(true);
    for (int i = 0; i < labels.size(); ++i) {
        auto* button = new QToolButton(this);
        button->setText(labels[i]);
        button->setCheckable(true);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        group_.addButton(button, i);
        layout->addWidget(button);
    }
    if (!labels.isEmpty()) {
        group_.button(0)->setChecked(true);
    }
    connect(&group_, &QButtonGroup::idClicked, this, &SegmentedControl::clicked);
}

int SegmentedControl::selectedSegment() const {
    return group_.checkedId();
}

void SegmentedControl::setSelectedSegment(int segment) {
    if (QAbstractButton* button = group_.button(segment)) {
        button->setChecked(true);
    }
}

int SegmentedControl::segmentCount() const {
    return static_cast<int>(group_.buttons().size());
}

QAbstractButton* SegmentedControl::segmentButton(int segment) const {
    return group_.button(segment);
}

} // namespace twinsweep::ui
