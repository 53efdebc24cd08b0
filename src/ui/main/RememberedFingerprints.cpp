// SPDX-License-Identifier: GPL-3.0-or-later
// File > Clear Remembered Fingerprints: forgets what earlier searches read.
#include <QFile>

#include "fingerprints/FingerprintCache.h"
#include "ui/main/ViewController.h"
#include "ui/shell/Alert.h"

namespace twinsweep::ui {

void ViewController::OnClearRememberedFingerprints() {
    const std::string error = clearFingerprintCache();
    showInformation(this, error.empty() ? tr("Remembered fingerprints were cleared: the next "
                                             "search reads every file.")
                                        : QFile::decodeName(QByteArray::fromStdString(error)));
}

} // namespace twinsweep::ui
