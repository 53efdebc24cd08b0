// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/customkeep/Stepper.h"

#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

namespace twinsweep::ui {

Stepper::Stepper(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* up = new QToolButton(this);
    up->setObjectName(QStringLiteral("stepUp"));
    up->setArrowType(Qt::UpArrow);
    up->setAutoRepeat(true);
    up->setFixedSize(18, 12);
    up->setAccessibleName(tr("Increase size"));
    up->setAccessibleDescription(tr("Adds one to the size."));
    auto* down = new QToolButton(this);
    down->setObjectName(QStringLiteral("stepDown"));
    down->setArrowType(Qt::DownArrow);
    down->setAutoRepeat(true);
    down->setFixedSize(18, 12);
    down->setAccessibleName(tr("Decrease size"));
    down->setAccessibleDescription(tr("Takes one from the size."));
    layout->addWidget(up);
    layout->addWidget(down);
    connect(up, &QToolButton::clicked, this, [this] { stepBy(1); });
    connect(down, &QToolButton::clicked, this, [this] { stepBy(-1); });
}

void Stepper::setValue(double value) {
    value_ = std::clamp(value, minimum_, maximum_);
}

void Stepper::setRange(double minimum, double maximum) {
    minimum_ = minimum;
    maximum_ = maximum;
    setValue(value_);
}

void Stepper::stepBy(int steps) {
    setValue(value_ + steps * increment_);
    emit stepped();
}

} // namespace twinsweep::ui
