// SPDX-License-Identifier: GPL-3.0-or-later
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
        group_.button(0)->setProperty("segment", QStringLiteral("first"));
        group_.button(static_cast<int>(labels.size()) - 1)
            ->setProperty("segment", QStringLiteral("last"));
    }
    // The toolkit's own checked button is barely darker than the others: the
    // chosen option is filled with the selection colour instead. Focus
    // underlines the caption, which changes no size.
    setStyleSheet(QStringLiteral(
        "QToolButton { border: 1px solid palette(mid); border-left-width: 0px;"
        " background: palette(button); color: palette(button-text); padding: 4px 8px; }"
        "QToolButton[segment=\"first\"] { border-left-width: 1px;"
        " border-top-left-radius: 4px; border-bottom-left-radius: 4px; }"
        "QToolButton[segment=\"last\"] { border-top-right-radius: 4px;"
        " border-bottom-right-radius: 4px; }"
        "QToolButton:hover { background: palette(midlight); }"
        "QToolButton:checked { background: palette(highlight); color: palette(highlighted-text);"
        " border-color: palette(highlight); }"
        "QToolButton:focus { text-decoration: underline; }"));
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
