// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/shell/Alert.h"

#include <QAbstractButton>
#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QVector>

#include "ui/platform/CoreTexts.h"

namespace twinsweep::ui {

int runAlert(QWidget* parent, const QString& informativeText, const QStringList& buttons) {
    QMessageBox box(parent);
    box.setIcon(QMessageBox::Warning);
    box.setWindowTitle(QStringLiteral("Twinsweep"));
    box.setText(QString());
    // The libraries' texts arrive in English; the windows' own are already
    // translated and pass through unchanged.
    box.setInformativeText(coreText(informativeText));
    box.setWindowModality(Qt::ApplicationModal);
    QVector<QAbstractButton*> made;
    for (const QString& title : buttons) {
        // Action role keeps the buttons in the order given, whatever the
        // desktop's usual Yes/No placement.
        made.push_back(box.addButton(coreText(title), QMessageBox::ActionRole));
    }
    if (!made.isEmpty()) {
        box.setDefaultButton(qobject_cast<QPushButton*>(made.front()));
        box.setEscapeButton(made.back());
    }
    // An empty message text leaves the box as narrow as its buttons; give the
    // sentence room so it reads in two or three lines, not six.
    if (auto* grid = qobject_cast<QGridLayout*>(box.layout())) {
        grid->addItem(new QSpacerItem(380, 0, QSizePolicy::Minimum, QSizePolicy::Expanding),
                      grid->rowCount(), 0, 1, grid->columnCount());
    }
    box.exec();
    const int index = static_cast<int>(made.indexOf(box.clickedButton()));
    return index < 0 ? static_cast<int>(made.size()) - 1 : index;
}

void showInformation(QWidget* parent, const QString& informativeText) {
    runAlert(parent, informativeText, {QStringLiteral("OK")});
}

bool askYesNo(QWidget* parent, const QString& informativeText) {
    return runAlert(parent, informativeText, {QStringLiteral("Yes"), QStringLiteral("No")}) != 1;
}

} // namespace twinsweep::ui
