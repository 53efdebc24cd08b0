// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QMetaObject>
#include <QPointer>
#include <QThreadPool>
#include <utility>

namespace twinsweep::ui {

// Runs work() on the shared thread pool, then done(result) on the GUI thread,
// in the order the jobs finish. done is dropped when owner is gone by then,
// so a closed window is never touched; the work itself always runs to its end.
template <class Owner, class Work, class Done>
void runInBackground(Owner* owner, Work work, Done done) {
    QPointer<Owner> guard(owner);
    QThreadPool::globalInstance()->start(
        [guard = std::move(guard), work = std::move(work), done = std::move(done)]() mutable {
            auto result = work();
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [guard = std::move(guard), done = std::move(done),
                 result = std::move(result)]() mutable {
                    if (guard) {
                        done(std::move(result));
                    }
                },
                Qt::QueuedConnection);
        });
}

} // namespace twinsweep::ui
