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
    // The stop alert (selection/CleaningSummary.cpp): "%1" the copies acted on,
    // "%2" the marked copies.
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copy now shares "
                                  "storage with a kept copy before the stop; the others were left "
                                  "as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copy now share "
                                  "storage with a kept copy before the stop; the others were left "
                                  "as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copy was replaced by "
                                  "a hard link before the stop; the others were left as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copy were replaced "
                                  "by hard links before the stop; the others were left as they "
                                  "are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copy was moved to "
                                  "the Trash before the stop; the others were left as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copy were moved to "
                                  "the Trash before the stop; the others were left as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copy was deleted "
                                  "before the stop; the others were left as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copy were deleted "
                                  "before the stop; the others were left as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copies now shares "
                                  "storage with a kept copy before the stop; the others were left "
                                  "as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copies now share "
                                  "storage with a kept copy before the stop; the others were left "
                                  "as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copies was replaced "
                                  "by a hard link before the stop; the others were left as they "
                                  "are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copies were replaced "
                                  "by hard links before the stop; the others were left as they "
                                  "are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copies was moved to "
                                  "the Trash before the stop; the others were left as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copies were moved to "
                                  "the Trash before the stop; the others were left as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copies was deleted "
                                  "before the stop; the others were left as they are."),
    QT_TRANSLATE_NOOP("CoreText", "Cleaning was stopped: %1 of the %2 marked copies were deleted "
                                  "before the stop; the others were left as they are."),
    // Copies left in place: how many, then each reason with its count.
    QT_TRANSLATE_NOOP("CoreText", "%1 marked copy was left in place, still listed and marked:"),
    QT_TRANSLATE_NOOP("CoreText", "%1 marked copies were left in place, still listed and marked:"),
    QT_TRANSLATE_NOOP("CoreText", "%1 × %2"),
    QT_TRANSLATE_NOOP("CoreText", "%1 × other reasons"),
    QT_TRANSLATE_NOOP("CoreText", "not removed"),
    QT_TRANSLATE_NOOP("CoreText", "in a protected folder, not removed"),
    QT_TRANSLATE_NOOP("CoreText", "changed since the search, not removed"),
    QT_TRANSLATE_NOOP("CoreText", "replaced by another file since the search, not removed"),
    QT_TRANSLATE_NOOP("CoreText", "changed during the clean, not removed"),
    QT_TRANSLATE_NOOP("CoreText", "kept copy belongs to another user, not removed"),
    QT_TRANSLATE_NOOP("CoreText", "not seen by the search, not removed"),
    QT_TRANSLATE_NOOP("CoreText", "its folder was not walked by the search, not removed"),
    QT_TRANSLATE_NOOP("CoreText", "its folder was replaced since the search, not removed"),
    QT_TRANSLATE_NOOP("CoreText", "Show Them"),
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
