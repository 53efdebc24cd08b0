// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMetaObject>
#include <QObject>
#include <utility>

namespace twinsweep::ui {

// Queues work onto the GUI thread, after everything queued before it. The call
// is dropped if context is destroyed first, so a closed window never runs it.
template <class Work> void submitToMain(QObject* context, Work&& work) {
    QMetaObject::invokeMethod(context, std::forward<Work>(work), Qt::QueuedConnection);
}

} // namespace twinsweep::ui
