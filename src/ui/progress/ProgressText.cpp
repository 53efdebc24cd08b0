// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/progress/ProgressText.h"

#include <QCoreApplication>
#include <algorithm>

#include "engine/ByteProgress.h"
#include "engine/FileTools.h"

namespace twinsweep::ui {

ProgressTexts progressTexts(std::int64_t total, std::int64_t checked) {
    ProgressTexts texts;
    if (total < 1) {
        texts.filesScanned = QCoreApplication::translate("ProgressText", "0/0 Files Scanned");
        texts.percents = QString::asprintf("%.1f", 0.0) + QLatin1Char('%');
        return texts;
    }
    // Single precision on purpose: the texts must match the counts exactly
    // as the user has always seen them, rounding included.
    texts.percent = static_cast<float>(checked) / static_cast<float>(total) * 100.0f;
    texts.filesScanned =
        QCoreApplication::translate("ProgressText", "%1/%2 Files Scaned").arg(checked).arg(total);
    texts.percents =
        QString::asprintf("%.1f", static_cast<double>(texts.percent)) + QLatin1Char('%');
    return texts;
}

ProgressTexts progressTexts(std::int64_t total, std::int64_t checked, std::uint64_t bytesDone,
                            std::uint64_t bytesTotal) {
    ProgressTexts texts = progressTexts(total, checked);
    if (bytesTotal > 0) {
        texts.percent = static_cast<float>(static_cast<double>(std::min(bytesDone, bytesTotal)) /
                                           static_cast<double>(bytesTotal) * 100.0);
        texts.percents =
            QString::asprintf("%.1f", static_cast<double>(texts.percent)) + QLatin1Char('%');
    } else {
        texts.busy = checked < 1;
    }
    return texts;
}

QString comparedText(std::uint64_t done, std::uint64_t total,
                     std::optional<std::int64_t> secondsLeft) {
    // The patterns TimeLeft gives, listed for lupdate.
    [[maybe_unused]] static constexpr const char* kPatterns[] = {
        QT_TRANSLATE_NOOP("ProgressText", "%1 of %2 compared"),
        QT_TRANSLATE_NOOP("ProgressText", "%1 of %2 compared, about %3 s left"),
        QT_TRANSLATE_NOOP("ProgressText", "%1 of %2 compared, about %3 min left"),
        QT_TRANSLATE_NOOP("ProgressText", "%1 of %2 compared, about %3 h left"),
    };
    const TimeLeft::Pattern pattern = TimeLeft::pattern(done, total, secondsLeft);
    const QString line = QCoreApplication::translate("ProgressText", pattern.text)
                             .arg(QString::fromStdString(FileTools::fileSizeText(done)),
                                  QString::fromStdString(FileTools::fileSizeText(total)));
    return secondsLeft && done < total ? line.arg(pattern.count) : line;
}

} // namespace twinsweep::ui
