// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/platform/Translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QTranslator>
#include <memory>

namespace twinsweep::ui {

namespace {

// Installed beside the program (relocatable, as the package lays it out),
// else where the build put them.
QStringList ourFolders() {
    return {QDir(QCoreApplication::applicationDirPath())
                .absoluteFilePath(QStringLiteral("../" TWINSWEEP_QM_INSTALL_DIR)),
            QStringLiteral(TWINSWEEP_QM_BUILD_DIR)};
}

} // namespace

Translations::Translations(QObject* parent) : QObject(parent) {}

Translations::~Translations() {
    removeAll();
}

void Translations::removeAll() {
    for (QTranslator** t : {&ours_, &qt_}) {
        if (*t != nullptr) {
            QCoreApplication::removeTranslator(*t);
            delete *t;
            *t = nullptr;
        }
    }
}

bool Translations::use(const QLocale& locale) {
    removeAll();
    // The C locale's language list names no language; asking would still
    // find a file named after "C".
    if (locale.language() == QLocale::C) {
        return false;
    }
    auto ours = std::make_unique<QTranslator>();
    bool found = false;
    for (const QString& folder : ourFolders()) {
        if (ours->load(locale, QStringLiteral("twinsweep"), QStringLiteral("_"), folder)) {
            found = true;
            break;
        }
    }
    // Qt's own texts only with ours, so a window never mixes two languages.
    if (!found) {
        return false;
    }
    ours_ = ours.release();
    QCoreApplication::installTranslator(ours_);
    auto qt = std::make_unique<QTranslator>();
    if (qt->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                 QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        qt_ = qt.release();
        QCoreApplication::installTranslator(qt_);
    }
    return true;
}

} // namespace twinsweep::ui
