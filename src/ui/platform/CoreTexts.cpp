// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/platform/CoreTexts.h"

#include <QCoreApplication>

namespace twinsweep::ui {

namespace {

// What lupdate reads: every text of src/selection that a window shows,
// copied exactly (a trailing space too). A text changed there and not here
// stays English; the translation test lists the ones that are missing.
[[maybe_unused]] constexpr const char* kCoreTexts[] = {
    // Alerts of the clean (selection/Cleaning.cpp).
    QT_TRANSLATE_NOOP("CoreText", "You did not select any duplicate files. Please select at least "
                                  "one duplicate file and try again."),
    QT_TRANSLATE_NOOP("CoreText", "Some files have been selected to be removed completely. Are you "
                                  "sure you want to continue?"),
    QT_TRANSLATE_NOOP("CoreText", "You are about to permanently remove the selected duplicate "
                                  "files. Continue?"),
    QT_TRANSLATE_NOOP("CoreText", "Some groups have every copy selected; with hard links, those "
                                  "groups are left as they are. Continue?"),
    QT_TRANSLATE_NOOP("CoreText", "Some groups have every copy selected; when sharing storage, "
                                  "those groups are left as they are. Continue?"),
    QT_TRANSLATE_NOOP("CoreText", "No selected copy could share its storage with a kept copy; "
                                  "every file was left as it was."),
    QT_TRANSLATE_NOOP("CoreText", "None of the folders searched is on a file system that can share "
                                  "storage (Btrfs, or XFS made with reflinks). Nothing was "
                                  "changed."),
    QT_TRANSLATE_NOOP("CoreText", "Duplicate files cleaned successfully. "),
    QT_TRANSLATE_NOOP("CoreText", "No selected copy could be replaced by a hard link; every file "
                                  "was left as it was."),
    // The question of the custom selection (selection/CustomMarking.cpp).
    QT_TRANSLATE_NOOP("CoreText", "Do you want to keep at least one copy of each duplicate file?"),
    QT_TRANSLATE_NOOP("CoreText", "Yes, keep the oldest file"),
    QT_TRANSLATE_NOOP("CoreText", "Yes, keep the newest file"),
    // Buttons.
    QT_TRANSLATE_NOOP("CoreText", "OK"),
    QT_TRANSLATE_NOOP("CoreText", "Yes"),
    QT_TRANSLATE_NOOP("CoreText", "No"),
};

} // namespace

QString coreText(const std::string& text) {
    return QCoreApplication::translate("CoreText", text.c_str());
}

QString coreText(const QString& text) {
    // Only a listed text changes; any other comes back untouched, whatever
    // it holds.
    const QByteArray utf8 = text.toUtf8();
    const QString translated = QCoreApplication::translate("CoreText", utf8.constData());
    return translated == QString::fromUtf8(utf8) ? text : translated;
}

} // namespace twinsweep::ui
