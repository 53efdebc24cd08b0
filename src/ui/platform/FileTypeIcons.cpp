// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/platform/FileTypeIcons.h"

#include <QFileIconProvider>
#include <QHash>
#include <QMimeDatabase>

#include "engine/File.h"

namespace twinsweep::ui {

// Without a desktop session (a bare X server, a minimal window manager) Qt
// picks no icon theme and every type gets the same blank page; the theme the
// project installs has an icon for each kind of file.
void chooseIconTheme() {
    static const bool chosen = [] {
        const QString current = QIcon::themeName();
        if (current.isEmpty() || current == QStringLiteral("hicolor")) {
            QIcon::setThemeName(QStringLiteral("Adwaita"));
        }
        return true;
    }();
    (void)chosen;
}

QIcon iconForExtension(const QString& extension) {
    chooseIconTheme();
    static QHash<QString, QIcon> cache;
    const auto found = cache.constFind(extension);
    if (found != cache.constEnd()) {
        return *found;
    }
    QIcon icon;
    if (!extension.isEmpty()) {
        const QMimeDatabase types;
        const QMimeType type = types.mimeTypeForFile(QStringLiteral("file.") + extension,
                                                     QMimeDatabase::MatchExtension);
        icon = QIcon::fromTheme(type.iconName());
        if (icon.isNull()) {
            icon = QIcon::fromTheme(type.genericIconName());
        }
    }
    if (icon.isNull()) {
        icon = QFileIconProvider().icon(QFileIconProvider::File);
    }
    cache.insert(extension, icon);
    return icon;
}

QIcon fileIcon(const std::string& path) {
    return iconForExtension(QString::fromStdString(extensionOf(path)));
}

} // namespace twinsweep::ui
