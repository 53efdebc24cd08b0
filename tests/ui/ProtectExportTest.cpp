#include "ProtectExportTest.h"

#include <QCheckBox>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <sys/stat.h>

#include "ResultsSupport.h"
#include "export/ResultsExport.h"
#include "selection/KeepOptions.h"
#include "support/Csv.h"
#include "ui/duplicates/SegmentedControl.h"
#include "ui/main/FolderTableView.h"
#include "ui/main/ViewController.h"

using twinsweep::FilePtr;
using twinsweep::SettingsManager;
using twinsweep::testing::FoundDuplicates;
using twinsweep::testing::ModalAnswers;
using twinsweep::testing::settled;
using twinsweep::testing::TempTree;
using twinsweep::ui::ViewController;
using twinsweep::ui::ViewControllerDuplicates;

namespace {

bool exists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

QByteArray slurp(const QString& path) {
    return QByteArray::fromStdString(twinsweep::testing::slurp(path.toStdString()));
}

} // namespace

void ProtectExportTest::cleanup() {
    const auto settings = SettingsManager::shared();
    settings->duplicateFileList.clear();
    settings->protectedFolders.clear();
    settings->moveToTrash = true;
}

void ProtectExportTest::folderTableProtectsFolders() {
    TempTree tree;
    const std::string a = tree.mkdir("a");
    const std::string b = tree.mkdir("b");
    ViewController w;
    QCOMPARE(w.addFolders({QString::fromStdString(a), QString::fromStdString(b)}), 0);
    QAbstractItemModel* model = w.tableViewFolders->model();
    QCOMPARE(model->columnCount(), 2);
    QCOMPARE(model->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Protected"));
    QCOMPARE(model->index(0, 1).data(Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
    QVERIFY(model->flags(model->index(0, 1)) & Qt::ItemIsUserCheckable);

    const auto settings = SettingsManager::shared();
    QVERIFY(model->setData(model->index(1, 1), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(settings->protectedFolders, std::vector<std::string>{b});
    QCOMPARE(model->index(1, 1).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
    // A folder taken off the list loses its protection.
    w.tableViewFolders->selectRow(1);
    w.OnRemoveSelected();
    QVERIFY(settings->protectedFolders.empty());
    QVERIFY(model->setData(model->index(0, 1), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(settings->protectedFolders, std::vector<std::string>{a});
    w.OnFileNew();
    QVERIFY(settings->protectedFolders.empty());
    QCOMPARE(model->rowCount(), 0);
}

void ProtectExportTest::protectedCopiesCannotBeTickedOrCleaned() {
    FoundDuplicates found;
    for (const char* p : {"dl/a.jpg", "photos/a.jpg", "photos/b.jpg"}) {
        found.tree.write(p, std::string(500, 'p'));
    }
    const auto settings = SettingsManager::shared();
    settings->protectedFolders = {found.tree.path("photos")};
    QCOMPARE(found.search(), std::size_t{1});
    const FilePtr group = settings->duplicateFileList.front();
    settings->moveToTrash = false;
    ViewControllerDuplicates w(nullptr);
    w.show();
    QVERIFY(settled(w));

    QAbstractItemModel* members = w.tableViewDuplicates->model();
    int protectedCount = 0;
    for (int row = 0; row < members->rowCount(); ++row) {
        const QModelIndex box = members->index(row, 0);
        if (!group->duplicates[static_cast<std::size_t>(row)]->isProtected) {
            QVERIFY(members->flags(box) & Qt::ItemIsEnabled);
            continue;
        }
        ++protectedCount;
        QVERIFY(!(members->flags(box) & (Qt::ItemIsEnabled | Qt::ItemIsUserCheckable)));
        QVERIFY(box.data(Qt::ToolTipRole).toString().contains(QStringLiteral("protected")));
        QVERIFY(!members->setData(box, Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(group->duplicates[static_cast<std::size_t>(row)]->checkState.load(), 0);
    }
    QCOMPARE(protectedCount, 2);

    // Remove All marks the one unprotected copy; no whole-group question.
    w.segmentedControlKeep->segmentButton(3)->click();
    QVERIFY(settled(w));
    QCOMPARE(twinsweep::markedCount(*group), std::int64_t{1});
    ModalAnswers answers;
    answers.alert(QStringLiteral("Yes"));
    answers.alert(QStringLiteral("OK"));
    w.buttonClean->click();
    QVERIFY(answers.allAnswered());
    QVERIFY(answers.said.front().contains(QStringLiteral("permanently")));
    QVERIFY(!exists(found.tree.path("dl/a.jpg")));
    QVERIFY(exists(found.tree.path("photos/a.jpg")) && exists(found.tree.path("photos/b.jpg")));
    // Protected copies alone are not listed: the window closes.
    QVERIFY(!w.isVisible());
}

void ProtectExportTest::exportsReadBackWithTheirMarks() {
    FoundDuplicates found;
    for (const char* p : {"a/photo.jpg", "b/photo,copy.jpg", "c/photo.jpg"}) {
        found.tree.write(p, std::string(3000, 'p'));
    }
    found.tree.write("a/report.pdf", std::string(2000, 'd'));
    found.tree.write("b/report.pdf", std::string(2000, 'd'));
    QCOMPARE(found.search(), std::size_t{2});
    ViewControllerDuplicates w(nullptr);
    w.show();
    QVERIFY(settled(w));
    w.checkApplyForAll->click();
    w.segmentedControlKeep->segmentButton(1)->click(); // keep oldest, every group
    QVERIFY(settled(w));

    TempTree out;
    QSignalSpy finished(&w, &ViewControllerDuplicates::exportFinished);
    const QString csvPath = QString::fromStdString(out.path("d.csv"));
    const QString jsonPath = QString::fromStdString(out.path("d.json"));
    w.startExport(csvPath, twinsweep::ui::ExportFormat::Csv);
    w.startExport(jsonPath, twinsweep::ui::ExportFormat::Json);
    QVERIFY(finished.wait(20000) && (finished.size() == 2 || finished.wait(20000)));
    QCOMPARE(finished.at(0).at(0).toString(), QString());
    QCOMPARE(finished.at(1).at(0).toString(), QString());

    std::vector<std::vector<std::string>> rows;
    QVERIFY(twinsweep::testing::parseCsv(slurp(csvPath).toStdString(), rows));
    QCOMPARE(rows.size(), std::size_t{6});
    QCOMPARE(rows[0],
             (std::vector<std::string>{"group", "path", "size", "date", "category", "marked"}));
    const QJsonArray groups =
        QJsonDocument::fromJson(slurp(jsonPath)).object().value(QStringLiteral("groups")).toArray();
    QCOMPARE(groups.size(), 2);
    std::size_t row = 1;
    for (std::size_t g = 0; g < w.fileList.size(); ++g) {
        const QJsonArray members = groups[int(g)].toObject()[QStringLiteral("members")].toArray();
        QCOMPARE(std::size_t(members.size()), w.fileList[g]->duplicates.size());
        for (std::size_t m = 0; m < w.fileList[g]->duplicates.size(); ++m, ++row) {
            const twinsweep::DuplicateFile& member = *w.fileList[g]->duplicates[m];
            const QJsonObject json = members[int(m)].toObject();
            QCOMPARE(json[QStringLiteral("path")].toString().toStdString(), member.path);
            QCOMPARE(json[QStringLiteral("marked")].toBool(), member.checkState == 1);
            QCOMPARE(rows[row][0], std::to_string(g + 1));
            QCOMPARE(rows[row][1], member.path);
            QCOMPARE(rows[row][5], std::string(member.checkState == 1 ? "1" : "0"));
        }
    }

    // A folder that isn't there: an alert, and nothing half written.
    ModalAnswers answers;
    answers.alert(QStringLiteral("OK"));
    w.startExport(QString::fromStdString(out.path("none/d.csv")), twinsweep::ui::ExportFormat::Csv);
    QVERIFY(finished.wait(20000));
    QVERIFY(!finished.back().at(0).toString().isEmpty());
    QVERIFY(answers.allAnswered());
}

void ProtectExportTest::linksAskNothingAndUndoPutsTrashedCopiesBack() {
    const auto settings = SettingsManager::shared();
    {
        ViewController main;
        main.radioReplaceWithHardLinks->click();
        QVERIFY(settings->replaceWithHardLinks && !settings->moveToTrash);
        QVERIFY(!main.radioMoveDuplicateFilesToTrash->isChecked());
        main.OnFileNew();
        QVERIFY(!settings->replaceWithHardLinks && settings->moveToTrash);
        main.radioReplaceWithHardLinks->click();
    }
    FoundDuplicates found;
    const std::string a = found.tree.write("a/x.jpg", "twin pictures");
    const std::string b = found.tree.write("b/x.jpg", "twin pictures");
    QCOMPARE(found.search(), std::size_t{1});
    const auto clean = [&](const char* segment) {
        ViewControllerDuplicates w(nullptr);
        w.show();
        QVERIFY(settled(w));
        w.checkApplyForAll->click();
        w.segmentedControlKeep->segmentButton(QString::fromLatin1(segment).toInt())->click();
        QVERIFY(settled(w));
        ModalAnswers answers;
        answers.alert(QStringLiteral("OK"));
        w.buttonClean->click();
        QVERIFY(answers.allAnswered());
        QCOMPARE(answers.said.size(), 1); // only the done alert
        QVERIFY(!w.isVisible());
    };
    // Keep oldest with links: each group becomes one file under two names.
    clean("1");
    struct stat sa {
    }, sb{};
    QVERIFY(::stat(a.c_str(), &sa) == 0 && ::stat(b.c_str(), &sb) == 0);
    QCOMPARE(sa.st_ino, sb.st_ino);

    // Now to the Trash, then Edit > Undo Clean in the main window.
    const QByteArray savedDataHome = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString(found.tree.mkdir("data")));
    settings->replaceWithHardLinks = false;
    settings->moveToTrash = true;
    const std::string c = found.tree.write("c/y.jpg", "other twins");
    const std::string d = found.tree.write("d/y.jpg", "other twins");
    QCOMPARE(found.search(), std::size_t{1});
    clean("1");
    QVERIFY(!exists(c) || !exists(d));
    ViewController main;
    QVERIFY(main.actionUndoClean->isEnabled());
    ModalAnswers answers;
    answers.alert(QStringLiteral("OK"));
    main.actionUndoClean->trigger();
    if (savedDataHome.isNull()) {
        qunsetenv("XDG_DATA_HOME");
    } else {
        qputenv("XDG_DATA_HOME", savedDataHome);
    }
    QCOMPARE(answers.said, QStringList{"1 file was put back where it was."});
    QVERIFY(exists(c) && exists(d));
    QVERIFY(!main.actionUndoClean->isEnabled());
}
