// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/platform/HelpPages.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QStandardPaths>
#include <QUrl>

namespace twinsweep::ui {

namespace {

// The page in the language the windows speak: German pages for a German
// desktop, English otherwise (also for the C locale).
QString pageName(const QString& base) {
    for (const QString& language : QLocale().uiLanguages()) {
        if (language.startsWith(QLatin1String("de"))) {
            return base + QStringLiteral(".de.html");
        }
        if (language.startsWith(QLatin1String("en"))) {
            break;
        }
    }
    return base + QStringLiteral(".html");
}

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

// The installed copy (share/twinsweep/help beside the program's bin folder)
// opens offline as it stands; a build that runs uninstalled writes its
// built-in copy to the cache folder instead.
QString pageAddress(const QString& base) {
    const QString name = pageName(base);
    const QString installed =
        QCoreApplication::applicationDirPath() + QStringLiteral("/../share/twinsweep/help/") + name;
    if (QFile::exists(installed)) {
        return QUrl::fromLocalFile(QDir::cleanPath(installed)).toString();
    }
    return writePage(QStringLiteral(":/help/") + name, name);
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
        return pageAddress(QStringLiteral("removing-duplicates"));
    case HelpTopic::CustomSelection:
        return pageAddress(QStringLiteral("custom-selection"));
    }
    return {};
}

} // namespace twinsweep::ui
