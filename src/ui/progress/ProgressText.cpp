// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/progress/ProgressText.h"

#include <QCoreApplication>
#include <algorithm>

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

} // namespace twinsweep::ui
