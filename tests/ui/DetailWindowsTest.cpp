// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QUrl>

#include "UiTestSupport.h"
#include "selection/CustomSettingsText.h"
#include "ui/customkeep/Stepper.h"
#include "ui/customkeep/ViewControllerCustomKeep.h"
#include "ui/info/ViewControllerInfo.h"
#include "ui/platform/HelpPages.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using namespace twinsweep::ui;

namespace {

// The rules a group starts with, as the results window loads them.
void loadDefaultRules() {
    loadCustomSettings(*SettingsManager::shared(), defaultRuleText());
}

void typeSize(QLineEdit* field, const QString& text) {
    field->setText(text);
    emit field->editingFinished();
}

} // namespace

// The custom keep rules window and the file information window.
class DetailWindowsTest : public QObject {
    Q_OBJECT
  private slots:
    void cleanup() {
        SettingsManager::shared()->duplicateFileList.clear();
        resetCustomSettings(*SettingsManager::shared());
    }

    void fieldsAreCheckedAndOnlyOkSavesThem() {
        TempTree tree;
        const std::string file = tree.write("file.txt", "x");
        loadDefaultRules();
        SettingsManager::shared()->customFileExtensions = {"jpg"};
        ViewControllerCustomKeep w(nullptr, tree.root());
        // A folder rule never set starts at the group's folder.
        QCOMPARE(w.textFieldCustomFilePath->text(), QString::fromStdString(tree.root()));
        const struct {
            QString typed, first, second;
        } cases[] = {{"abc", "200", "100"}, {"-5", "0", "0"},      {"250000", "100000", "100000"},
                     {" 12", "200", "100"}, {"inf", "200", "100"}, {"12.5", "12.5", "12.5"},
                     {"", "200", "100"}};
        const auto checkSizes = [&] {
            for (const auto& c : cases) {
                typeSize(w.textFieldFirstFileSize, c.typed);
                typeSize(w.textFieldSecondFileSize, c.typed);
                QCOMPARE(w.textFieldFirstFileSize->text(), c.first);
                QCOMPARE(w.textFieldSecondFileSize->text(), c.second);
                QCOMPARE(w.stepperFirstFileSize->value(), c.first.toDouble());
            }
        };
        {
            const ScopedLocale plain("C");
            checkSizes();
        }
        typeSize(w.textFieldFirstFileSize, u"41"_s);
        w.stepperFirstFileSize->stepBy(1);
        QCOMPARE(w.textFieldFirstFileSize->text(), u"42"_s);
        for (const char* typed : {"JPG", "", "Mp3", "mp3"}) {
            w.textFieldExtension->setText(QString::fromLatin1(typed));
            w.OncustomFileTypesAddFileExtension();
        }
        QCOMPARE(w.extensionsList, (std::vector<std::string>{"jpg", "mp3"}));
        w.tableViewCustomFileTypes->setCurrentRow(0);
        w.OnCustomFileTypesRemoveSelected();

        // Return in a size field confirms the field, not the window.
        w.show();
        w.textFieldFirstFileSize->clear();
        QTest::keyClicks(w.textFieldFirstFileSize, u"x"_s);
        typeKey(w.textFieldFirstFileSize, Qt::Key_Return);
        QCOMPARE(w.textFieldFirstFileSize->text(), u"200"_s);
        QVERIFY(w.isVisible());
        ModalAnswers answers;
        answers.alert(u"OK"_s);
        answers.alert(u"OK"_s);
        w.checkCustomFilePath->setChecked(true);
        for (const std::string& bad : {file, tree.path("missing")}) {
            w.textFieldCustomFilePath->setText(QString::fromStdString(bad));
            w.buttonOk->click();
            QVERIFY(w.isVisible());
            QCOMPARE(SettingsManager::shared()->customSettingsOption, std::string("Cancel"));
        }
        const QString invalid = QStringLiteral(
            "The custom file path you entered is not valid. Please enter a valid path.");
        QCOMPARE(answers.said, (QStringList{invalid, invalid}));
        // Browse confirms with the window's own words; a folder typed there
        // that is not present comes back for OK to judge, with no box of the
        // toolkit's in between.
        QString prompt;
        ToolkitBoxes toolkit;
        answers.then("QFileDialog", [&](QWidget* modal) {
            auto* panel = qobject_cast<QFileDialog*>(modal);
            prompt = panel->labelText(QFileDialog::Accept);
            auto* edit = panel->findChild<QLineEdit*>(u"fileNameEdit"_s);
            edit->setText(QString::fromStdString(tree.path("gone")));
            QTimer::singleShot(0, panel, [edit, panel] {
                QTest::keyClick(edit, Qt::Key_Return);
                if (panel->isVisible()) {
                    panel->reject();
                }
            });
        });
        w.findChild<QPushButton*>(u"buttonBrowse"_s)->click();
        QVERIFY(answers.allAnswered());
        QCOMPARE(toolkit.texts, QStringList());
        QCOMPARE(prompt, u"Select File Path"_s);
        QCOMPARE(w.textFieldCustomFilePath->text(), QString::fromStdString(tree.path("gone")));
        QCOMPARE(answers.said.size(), 2);
        // The settings see the window's changes only through OK.
        QCOMPARE(SettingsManager::shared()->customFileExtensions, std::vector<std::string>{"jpg"});
        QCOMPARE(SettingsManager::shared()->customFilePathState, std::int64_t{0});
        // With the rule off the folder is saved as typed; sizes keep their whole part.
        typeSize(w.textFieldSecondFileSize, u"7.9"_s);
        w.comboSecondFileSizeUnit->setCurrentIndex(2);
        w.checkCustomFilePath->setChecked(false);
        w.buttonOk->click();
        QVERIFY(!w.isVisible());
        const auto s = SettingsManager::shared();
        QCOMPARE(s->customFilePath, tree.path("gone"));
        QCOMPARE(s->customFileExtensions, std::vector<std::string>{"mp3"});
        QCOMPARE(s->secondFileSize, std::int64_t{7});
        QCOMPARE(s->secondFileSizeUnit, std::int64_t{2});

        // Numbers read the same whatever locale the environment asks for
        // (a German one writes "12,5").
        const ScopedLocale german("de_DE.UTF-8");
        if (!german.ok) {
            QSKIP("locale de_DE.UTF-8 is not installed: sizes were not read under it");
        }
        checkSizes();
    }

    void resetThenClosingLeavesTheDefaults() {
        const auto s = SettingsManager::shared();
        loadDefaultRules();
        s->firstDateState = 1;
        s->customFilePath = "/elsewhere";
        s->customSettingsOption = "OK";
        ViewControllerCustomKeep w(nullptr, "/data/group");
        w.show();
        w.buttonReset->click();
        QVERIFY(!w.checkFirstDate->isChecked());
        QCOMPARE(w.textFieldCustomFilePath->text(), u"/data/group"_s);
        // Closing counts as Cancel: what was changed after the reset is lost.
        w.checkFirstDate->setChecked(true);
        w.close();
        QCOMPARE(s->customSettingsOption, std::string("Cancel"));
        QCOMPARE(s->firstDateState, std::int64_t{0});
        QCOMPARE(s->customFilePath, std::string("/data/group"));
    }

    void infoLabelsAndPreviews() {
        TempTree tree;
        QImage picture(64, 48, QImage::Format_RGB32);
        picture.fill(Qt::darkCyan);
        QVERIFY(picture.save(QString::fromStdString(tree.path("Photo.JPG")), "JPG"));
        tree.write("report.pdf", "%PDF-1.4");
        tree.write("archive.tar.gz", "zz");
        tree.write("README", "read me");
        tree.write("broken.png", "not a picture");
        const struct {
            std::string rel, name, extension;
        } cases[] = {{"Photo.JPG", "Photo", "JPG"},           {"report.pdf", "report", "pdf"},
                     {"archive.tar.gz", "archive.tar", "gz"}, {"README", "README", ""},
                     {"broken.png", "broken", "png"},         {"gone.jpg", "gone", "jpg"}};
        for (const auto& c : cases) {
            const std::string path = tree.path(c.rel);
            const bool picture = c.rel == "Photo.JPG";
            SettingsManager::shared()->currentSelectedFilePath = path;
            ViewControllerInfo w(nullptr);
            w.fillLabels(path, 1234567);
            w.show();
            // The window is up before the picture: the spinner stands in for it.
            QVERIFY(!picture || (!w.previewShown() && w.progressIndicator->isVisible()));
            QCOMPARE(w.labelFileName->text().toStdString(), c.name);
            QCOMPARE(w.labelExtension->text().toStdString(), c.extension);
            QCOMPARE(w.labelFileSize->text().toStdString(), FileTools::fileSizeText(1234567));
            const auto modified = FileTools::fileDateText(path, DateKind::Modification);
            QCOMPARE(w.labelModificationDate->text().toStdString(), modified.value_or(""));
            QCOMPARE(w.labelCreationDate->text().isEmpty(), !modified);
            QVERIFY(waitUntil([&] { return w.previewShown(); }));
            QVERIFY2(w.previewIsPicture() == picture, c.rel.c_str());
            QVERIFY(!w.progressIndicator->isVisible() && !w.imageView->pixmap().isNull());
            QVERIFY(!picture || w.imageView->pixmap().size() == QSize(64, 48));
        }
    }

    // Both pages open from a local file in the windows' language and name
    // every removal choice and the real search scope.
    void helpPagesFollowTheLanguageAndOpenOffline() {
        auto page = [](twinsweep::ui::HelpTopic topic) {
            const QUrl url(twinsweep::ui::helpPageAddress(topic));
            QFile file(url.toLocalFile());
            return std::make_pair(url, file.open(QIODevice::ReadOnly)
                                           ? QString::fromUtf8(file.readAll())
                                           : QString());
        };
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
        auto [english, text] = page(twinsweep::ui::HelpTopic::RemovingDuplicates);
        QCOMPARE(english.scheme(), QStringLiteral("file"));
        QVERIFY(english.path().endsWith(QStringLiteral("/help/removing-duplicates.html")));
        for (const char* phrase :
             {"Move duplicate files to the Trash", "Delete duplicate files permanently",
              "Replace duplicate files with hard links",
              "Share the storage of duplicate files (copy-on-write)", "Search any location",
              "<code>/home</code> (every user", "/gvfs", "Undo Clean", "Protected",
              "Remember file fingerprints between searches", "Export..."}) {
            QVERIFY2(text.contains(QString::fromUtf8(phrase)), phrase);
        }
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        auto [german, deText] = page(twinsweep::ui::HelpTopic::CustomSelection);
        QVERIFY(german.path().endsWith(QStringLiteral("/help/custom-selection.de.html")));
        QVERIFY(deText.contains(QStringLiteral("Benutzerdefinierte Auswahl von Duplikaten")));
        QVERIFY(page(twinsweep::ui::HelpTopic::RemovingDuplicates)
                    .second.contains(QStringLiteral("Überall suchen")));
        QLocale::setDefault(QLocale::c());
        QVERIFY(page(twinsweep::ui::HelpTopic::CustomSelection)
                    .first.path()
                    .endsWith(QStringLiteral("/help/custom-selection.html")));
    }
};

UI_TEST_MAIN(DetailWindowsTest)

#include "DetailWindowsTest.moc"
