// SPDX-License-Identifier: GPL-3.0-or-later
// Export...: the listed groups with their marks, as CSV or JSON, written by
// the same code as the command-line tool's reports.
#include <QFileDialog>
#include <QPushButton>
#include <QSaveFile>

#include "engine/FileTools.h"
#include "export/ResultsExport.h"
#include "ui/duplicates/BackgroundJob.h"
#include "ui/duplicates/ViewControllerDuplicates.h"
#include "ui/shell/Alert.h"

namespace twinsweep::ui {

QString exportGroups(const FileList& groups, bool protection, const QString& path,
                     ExportFormat format) {
    // Written beside the target and renamed over it at the end, so a failed
    // export never leaves half a file in its place.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return file.errorString();
    }
    FileTools tools;
    // Which groups were matched by size alone, as the search that found them decided.
    tools.compareLargeFilesByContent = SettingsManager::shared()->compareLargeFilesByContent;
    const ExportSink sink = [&](std::string_view piece) {
        return file.write(piece.data(), static_cast<qint64>(piece.size())) ==
               static_cast<qint64>(piece.size());
    };
    const ExportFields fields{true, protection};
    const bool written = format == ExportFormat::Csv ? writeCsvExport(groups, tools, fields, sink)
                                                     : writeJsonExport(groups, tools, fields, sink);
    if (!written || !file.commit()) {
        return file.errorString();
    }
    return {};
}

void ViewControllerDuplicates::OnExport() {
    if (fileList.empty()) {
        return;
    }
    // Built here, in the language installed now.
    const QString csvFilter = tr("CSV files (*.csv)");
    const QString jsonFilter = tr("JSON files (*.json)");
    QString filter = csvFilter;
    QString path =
        QFileDialog::getSaveFileName(this, tr("Export"), QStringLiteral("duplicates.csv"),
                                     csvFilter + QStringLiteral(";;") + jsonFilter, &filter);
    if (path.isEmpty()) {
        return;
    }
    const bool asJson =
        path.endsWith(QStringLiteral(".json"), Qt::CaseInsensitive) ||
        (!path.endsWith(QStringLiteral(".csv"), Qt::CaseInsensitive) && filter == jsonFilter);
    if (!path.contains(QLatin1Char('.'))) {
        path += asJson ? QStringLiteral(".json") : QStringLiteral(".csv");
    }
    startExport(path, asJson ? ExportFormat::Json : ExportFormat::Csv);
}

void ViewControllerDuplicates::startExport(const QString& path, ExportFormat format) {
    // Off the GUI thread: a JSON export may have digests to compute. Cleaning
    // and closing wait for it like for any other job.
    ++jobsInFlight_;
    buttonExport->setEnabled(false);
    runInBackground(
        this,
        [groups = fileList, protection = !settingsManager->protectedFolders.empty(), path, format] {
            return exportGroups(groups, protection, path, format);
        },
        [this, path](QString error) {
            --jobsInFlight_;
            buttonExport->setEnabled(true);
            if (!error.isEmpty()) {
                showInformation(this,
                                tr("The results could not be exported to %1: %2").arg(path, error));
            }
            emit exportFinished(error);
        });
}

} // namespace twinsweep::ui
