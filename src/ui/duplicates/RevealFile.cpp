// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/duplicates/RevealFile.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QFile>
#include <QUrl>

namespace twinsweep::ui {

namespace {

const QString kService = QStringLiteral("org.freedesktop.FileManager1");

QUrl fileUrl(const std::string& path) {
    return QUrl::fromLocalFile(QFile::decodeName(QByteArray::fromStdString(path)));
}

void openFolder(const std::string& path) {
    QDesktopServices::openUrl(fileUrl(parentFolder(path)));
}

// Asking for a service that nobody provides would wait for the bus to give up
// on starting it; ask only when it runs or can be started.
bool fileManagerAvailable(const QDBusConnection& bus) {
    QDBusConnectionInterface* names = bus.interface();
    if (names == nullptr) {
        return false;
    }
    if (names->isServiceRegistered(kService).value()) {
        return true;
    }
    const QDBusReply<QStringList> startable = names->call(QStringLiteral("ListActivatableNames"));
    return startable.isValid() && startable.value().contains(kService);
}

} // namespace

std::string parentFolder(const std::string& path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? std::string("/") : path.substr(0, slash);
}

void revealInFileManager(const std::string& path) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !fileManagerAvailable(bus)) {
        openFolder(path);
        return;
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(kService, QStringLiteral("/org/freedesktop/FileManager1"),
                                       kService, QStringLiteral("ShowItems"));
    call << QStringList{fileUrl(path).toString(QUrl::FullyEncoded)} << QString();
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, path] {
        if (watcher->isError()) {
            openFolder(path);
        }
        watcher->deleteLater();
    });
}

} // namespace twinsweep::ui
