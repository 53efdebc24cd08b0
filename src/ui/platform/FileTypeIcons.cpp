#include "ui/platform/FileTypeIcons.h"

#include <QFileIconProvider>
#include <QHash>
#include <QMimeDatabase>

#include "engine/File.h"

namespace twinsweep::ui {

QIcon iconForExtension(const QString& extension) {
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
