// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/platform/HelpPages.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QUrl>

namespace twinsweep::ui {

namespace {

QString writePage(const QString& resource, const QString& name) {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    if (folder.isEmpty() || !QDir().mkpath(folder + QStringLiteral("/help"))) {
        folder = QDir::tempPath() + QStringLiteral("/twinsweep");
        QDir().mkpath(folder + QStringLiteral("/help"));
    }
    const QString target = folder + QStringLiteral("/help/") + name;
    QFile source(resource);
    if (source.open(QIODevice::ReadOnly)) {
        const QByteArray page = source.readAll();
        QFile out(target);
        // Rewritten every time: a newer build may ship a newer page.
        if (out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            out.write(page);
        }
    }
    return QUrl::fromLocalFile(target).toString();
}

} // namespace

void OpenHelpVideo(const QString& address) {
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty()) {
        return;
    }
    QDesktopServices::openUrl(url);
}

QString helpPageAddress(HelpTopic topic) {
    switch (topic) {
    case HelpTopic::RemovingDuplicates:
        return writePage(QStringLiteral(":/help/removing-duplicates.html"),
                         QStringLiteral("removing-duplicates.html"));
    case HelpTopic::CustomSelection:
        return writePage(QStringLiteral(":/help/custom-selection.html"),
                         QStringLiteral("custom-selection.html"));
    }
    return {};
}

} // namespace twinsweep::ui
