// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/main/FolderTableView.h"

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QHeaderView>

namespace twinsweep::ui {

FolderTableView::FolderTableView(QWidget* parent) : QTableView(parent) {
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setDragEnabled(false);
    setDragDropMode(QAbstractItemView::DropOnly);
    setDragDropOverwriteMode(false);
    setDropIndicatorShown(true);
    setDefaultDropAction(Qt::CopyAction);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    horizontalHeader()->setStretchLastSection(true);
    verticalHeader()->setVisible(false);
    setShowGrid(false);
    setAlternatingRowColors(true);
    // Tab moves on to the next control, not to the next cell.
    setTabKeyNavigation(false);
    setTextElideMode(Qt::ElideMiddle);
}

void FolderTableView::dragEnterEvent(QDragEnterEvent* event) {
    if (event->source() != nullptr) {
        event->ignore();
        return;
    }
    QTableView::dragEnterEvent(event);
}

void FolderTableView::dragMoveEvent(QDragMoveEvent* event) {
    if (event->source() != nullptr) {
        event->ignore();
        return;
    }
    QTableView::dragMoveEvent(event);
    if (event->isAccepted()) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void FolderTableView::dropEvent(QDropEvent* event) {
    if (event->source() != nullptr) {
        event->ignore();
        return;
    }
    QTableView::dropEvent(event);
    if (event->isAccepted()) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

} // namespace twinsweep::ui
