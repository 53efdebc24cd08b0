// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QXmlStreamReader>

#include "AccessibilityAudit.h"
#include "UiTestSupport.h"
#include "engine/ByteProgress.h"
#include "engine/LocationGate.h"
#include "selection/Cleaning.h"
#include "selection/CleaningSummary.h"
#include "selection/CustomMarking.h"
#include "ui/customkeep/ViewControllerCustomKeep.h"
#include "ui/duplicates/CleanProgress.h"
#include "ui/duplicates/SegmentedControl.h"
#include "ui/info/ViewControllerInfo.h"
#include "ui/main/OutsideLocations.h"
#include "ui/main/ViewController.h"
#include "ui/placeholder/PlaceholderWindow.h"
#include "ui/platform/CoreTexts.h"
#include "ui/platform/Translations.h"
#include "ui/progress/ProgressText.h"
#include "ui/progress/ViewControllerProgress.h"
#include "ui/shell/Alert.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using namespace twinsweep::ui;

namespace {

QStringList menuTitles(QMenuBar* bar) {
    QStringList titles;
    for (QAction* a : bar->actions()) {
        titles << a->text();
    }
    return titles;
}

QStringList items(QComboBox* combo) {
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i) {
        texts << combo->itemText(i);
    }
    return texts;
}

// What a user of the custom selection window reads and hears, in order.
QStringList customKeepTexts() {
    ViewControllerCustomKeep w(nullptr, "/data/group");
    auto* bar = w.findChild<QMenuBar*>();
    auto* up = w.findChild<QToolButton*>(u"stepUp"_s);
    return QStringList{w.windowTitle(),
                       w.checkFirstDate->text(),
                       w.checkFirstDate->accessibleName(),
                       w.checkSubfolders->text(),
                       w.findChild<QPushButton*>(u"buttonBrowse"_s)->text(),
                       w.buttonCancel->text(),
                       up->accessibleName()} +
           items(w.comboFirstDateType) + items(w.comboSecondFileSizeTermOfComparison) +
           items(w.comboMatch) + menuTitles(bar);
}

// A handful of the main and file information windows' texts, in order.
QStringList mainTexts() {
    ViewController w;
    ViewControllerInfo info(nullptr);
    auto* form = info.findChild<QFormLayout*>();
    return QStringList{
               w.buttonFindDuplicateFiles->text(),
               w.checkExactKeepTimes->text(),
               w.buttonSearchAnyLocation->toolTip(),
               w.buttonRemoveAll->accessibleName(),
               w.findChild<QAction*>(u"actionReopenFolders"_s)->text(),
               outsideLocationsText(LocationGate{{"/home"}, {"/opt"}, {}, false}, {"/srv/x"}),
               info.windowTitle(),
               qobject_cast<QLabel*>(form->labelForField(info.labelPath))->text()} +
           menuTitles(w.menuBar());
}

// A handful of the results, clean progress and search progress windows' texts.
QStringList resultsTexts() {
    Results r;
    ViewControllerDuplicates& w = *r.w;
    CleanProgressState state;
    CleanProgress clean(nullptr, state, 4);
    const QStringList texts =
        QStringList{w.windowTitle(),
                    w.segmentedControlKeep->segmentButton(1)->text(),
                    w.buttonClean->text(),
                    w.findChild<QLabel*>(u"labelSpaceSavedCaption"_s)->text(),
                    w.labelTotals->text(),
                    w.tableViewDuplicates->model()->headerData(1, Qt::Horizontal).toString(),
                    clean.findChild<QPushButton*>()->text()} +
        menuTitles(w.menuBar());
    SettingsManager::shared()->duplicateFileList.clear(); // the window was never closed
    return texts;
}

// The search progress window, its search stopped before it starts.
std::unique_ptr<ViewControllerProgress> stoppedSearch() {
    SettingsManager::shared()->searchCanceledByUser = true;
    return std::make_unique<ViewControllerProgress>(nullptr);
}

// The messages of the German catalogue that have no translation.
QStringList untranslated(const QString& tsFile) {
    QFile file(tsFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return {u"cannot read "_s + tsFile};
    }
    QXmlStreamReader xml(&file);
    QStringList missing;
    QString source;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (xml.name() == u"source") {
            source = xml.readElementText();
        } else if (xml.name() == u"translation") {
            const bool unfinished =
                xml.attributes().value(QLatin1String("type")) == QLatin1String("unfinished");
            if (xml.readElementText().isEmpty() || unfinished) {
                missing << source;
            }
        }
    }
    return missing;
}

} // namespace

// The windows in the user's language, and what a screen reader is told.
class TranslationTest : public QObject {
    Q_OBJECT
  private slots:
    void cleanup() {
        translations.use(QLocale::c());
        SettingsManager::shared()->searchCanceledByUser = false;
        SettingsManager::shared()->duplicateFileList.clear();
    }

    void windowsFollowTheLanguage() {
        const QStringList english{
            "Custom Selection",  "Date",   "First date rule", "Include subfolders",
            "&Browse…",          "Cancel", "Increase size",   "Creation Date",
            "Modification Date", "Larger", "Smaller",         "Match",
            "Don't match",       "&Edit",  "&Window",         "&Help"};
        const QStringList mainEnglish{
            "Find Duplicate Files",
            "Decide oldest and newest by exact time",
            "Tick \"Search any location\" so these folders are searched too.",
            "Remove all folders",
            "&Reopen Last Folders",
            "The search looks only under /home and /opt. Outside those locations: /srv/x.",
            "File Information",
            "Path:",
            "&File",
            "&Edit",
            "&Window",
            "&Help"};
        const QStringList resultsEnglish{"Duplicate Files",
                                         "Keep Oldest",
                                         "Clean",
                                         "Space saved:",
                                         "3 groups, 7 copies, 14.6 KB",
                                         "Path",
                                         "Stop",
                                         "&File",
                                         "&Edit",
                                         "&Window",
                                         "&Help"};
        QVERIFY(!translations.use(QLocale::c()));
        QCOMPARE(customKeepTexts(), english);
        QCOMPARE(mainTexts(), mainEnglish);
        QCOMPARE(resultsTexts(), resultsEnglish);
        QCOMPARE(stoppedSearch()->windowTitle(), "Searching for Duplicate Files");
        // English has no catalogue: the texts as written.
        QVERIFY(!translations.use(QLocale(u"en_US"_s)));
        QCOMPARE(customKeepTexts(), english);

        QVERIFY(translations.use(QLocale(u"de_DE"_s)));
        QCOMPARE(
            customKeepTexts(),
            (QStringList{"Benutzerdefinierte Auswahl", "Datum", "Erste Datumsregel",
                         "Unterordner einbeziehen", "&Durchsuchen…", "Abbrechen", "Größe erhöhen",
                         "Erstellungsdatum", "Änderungsdatum", "Größer", "Kleiner", "erfüllen",
                         "nicht erfüllen", "&Bearbeiten", "&Fenster", "&Hilfe"}));
        QCOMPARE(mainTexts(),
                 (QStringList{"Doppelte Dateien finden",
                              "Älteste und neueste nach exakter Zeit bestimmen",
                              "Setzen Sie „Überall suchen“, damit auch diese Ordner durchsucht "
                              "werden.",
                              "Alle Ordner entfernen", "&Letzte Ordner wieder öffnen",
                              "Gesucht wird nur unter /home und /opt. Außerhalb dieser Orte "
                              "liegen: /srv/x.",
                              "Dateiinformationen", "Pfad:", "&Datei", "&Bearbeiten", "&Fenster",
                              "&Hilfe"}));
        QCOMPARE(resultsTexts(),
                 (QStringList{"Doppelte Dateien", "Älteste behalten", "Bereinigen",
                              "Gesparter Speicherplatz:", "3 Gruppen, 7 Kopien, 14.6 KB", "Pfad",
                              "Anhalten", "&Datei", "&Bearbeiten", "&Fenster", "&Hilfe"}));
        QCOMPARE(stoppedSearch()->windowTitle(), "Suche nach doppelten Dateien");
        QCOMPARE(progressTexts(4500, 120).filesScanned, "120/4500 Dateien durchsucht");
        QCOMPARE(comparedText(2048, 4096, 100), "2.0 KB von 4.0 KB verglichen, noch etwa 2 min");
        // Qt's own buttons come in German too.
        PlaceholderWindow placeholder(nullptr, u"Duplicates"_s, false);
        QCOMPARE(placeholder.findChild<QLabel*>(u"labelPlaceholder"_s)->text(),
                 "0 Gruppen doppelter Dateien wurden gefunden.\nDieses Fenster ist noch nicht "
                 "fertig.");
        QCOMPARE(placeholder.findChild<QDialogButtonBox*>()->buttons().front()->text(),
                 "Schließen");

        // Back to C: English again, Qt's buttons included.
        QVERIFY(!translations.use(QLocale::c()));
        QCOMPARE(customKeepTexts(), english);
        QCOMPARE(mainTexts(), mainEnglish);
        QCOMPARE(resultsTexts(), resultsEnglish);
        QCOMPARE(progressTexts(4500, 120).filesScanned, "120/4500 Files Scaned");
        QCOMPARE(comparedText(2048, 4096, 100), "2.0 KB of 4.0 KB compared, about 2 min left");
        PlaceholderWindow again(nullptr, u"Duplicates"_s, false);
        QCOMPARE(again.findChild<QDialogButtonBox*>()->buttons().front()->text(), "Close");
    }

    // The libraries' texts are translated where an alert shows them; paths
    // and other texts pass unchanged; the catalogue has no gaps.
    void coreTextsAndTheCatalogue() {
        QVERIFY(translations.use(QLocale(u"de_DE"_s)));
        QStringList notTranslated;
        const auto check = [&](const AlertText& alert) {
            for (const std::string& text : alert.buttons) {
                if (text != "OK" && coreText(text) == QString::fromStdString(text)) {
                    notTranslated << QString::fromStdString(text);
                }
            }
            if (coreText(alert.informativeText) == QString::fromStdString(alert.informativeText)) {
                notTranslated << QString::fromStdString(alert.informativeText);
            }
        };
        for (const CleaningAlert a :
             {CleaningAlert::NothingMarked, CleaningAlert::WholeGroups,
              CleaningAlert::PermanentDeletion, CleaningAlert::Done,
              CleaningAlert::WholeGroupsLinked, CleaningAlert::NothingLinked,
              CleaningAlert::WholeGroupsShared, CleaningAlert::NothingShared,
              CleaningAlert::CantShare}) {
            check(alertText(a));
        }
        check(keepOneCopyQuestion());
        // Every sentence the stop and the copies left in place can give.
        for (const std::int64_t done : {1, 2}) {
            for (const std::int64_t marked : {1, 2}) {
                for (int act = 0; act < 4; ++act) {
                    CleaningChoice choice;
                    choice.sharing = act == 0;
                    choice.linking = act == 1;
                    choice.toTrash = act == 2;
                    check(AlertText{stoppedPattern(done, marked, choice), {}});
                }
            }
            check(AlertText{leftInPlaceHeading(done), {"Show Them"}});
        }
        check(AlertText{kOtherReasonsLine, {}});
        for (const std::optional<std::int64_t> left :
             {std::optional<std::int64_t>(), std::optional<std::int64_t>(10),
              std::optional<std::int64_t>(1000), std::optional<std::int64_t>(100000)}) {
            const char* pattern = TimeLeft::pattern(1, 2, left).text;
            if (QCoreApplication::translate("ProgressText", pattern) == QLatin1String(pattern)) {
                notTranslated << QLatin1String(pattern);
            }
        }
        QCOMPARE(notTranslated, QStringList{});
        QCOMPARE(coreText(alertText(CleaningAlert::Done).informativeText),
                 "Doppelte Dateien erfolgreich bereinigt. ");
        QCOMPARE(coreText(u"/home/ana/Fotos/Yes"_s), "/home/ana/Fotos/Yes");
        CleaningChoice toTrash;
        toTrash.toTrash = true;
        QCOMPARE(coreText(stoppedPattern(2, 5, toTrash)).arg(u"2"_s, u"5"_s),
                 "Die Bereinigung wurde angehalten: 2 von 5 markierten Kopien wurden vor dem "
                 "Anhalten in den Papierkorb verschoben; die übrigen blieben unverändert.");

        ModalAnswers answers;
        answers.alert(u"Ja, die neueste Datei behalten"_s);
        const AlertText& question = keepOneCopyQuestion();
        QStringList buttons;
        for (const std::string& b : question.buttons) {
            buttons << QString::fromStdString(b);
        }
        QCOMPARE(runAlert(nullptr, QString::fromStdString(question.informativeText), buttons), 1);
        QCOMPARE(answers.said, QStringList{"Möchten Sie von jeder doppelten Datei mindestens "
                                           "eine Kopie behalten?"});

        QCOMPARE(untranslated(QStringLiteral(TWINSWEEP_TS_DIR "/twinsweep_de.ts")), QStringList{});
    }

    // Every control of the window says what it is and what it does, in both
    // languages; and the audit names a control that does not.
    void everyControlIsNamedAndDescribed() {
        for (const char* language : {"C", "de_DE"}) {
            translations.use(QLocale(QString::fromLatin1(language)));
            ViewControllerCustomKeep w(nullptr, "/data/group");
            w.show();
            QCOMPARE(controlsWithoutAccessibleText(&w), QStringList{});
            // A folder outside the searched locations brings up the line
            // under the folder list, with its button.
            ViewController main;
            main.addFolders({u"/usr"_s});
            main.show();
            QVERIFY(main.buttonSearchAnyLocation->isVisible());
            QCOMPARE(controlsWithoutAccessibleText(&main), QStringList{});
            ViewControllerInfo info(nullptr);
            info.fillLabels("/data/a.jpg", 1);
            info.show();
            QCOMPARE(controlsWithoutAccessibleText(&info), QStringList{});
            Results results;
            QCOMPARE(controlsWithoutAccessibleText(results.w), QStringList{});
            CleanProgressState state;
            CleanProgress clean(nullptr, state, 4);
            clean.show();
            QCOMPARE(controlsWithoutAccessibleText(&clean), QStringList{});
            const auto progress = stoppedSearch();
            progress->show();
            QCOMPARE(controlsWithoutAccessibleText(progress.get()), QStringList{});
        }
        QWidget bare;
        auto* field = new QLineEdit(&bare);
        field->setObjectName(u"field"_s);
        field->setAccessibleName(u"Path"_s);
        auto* combo = new QComboBox(&bare);
        combo->setObjectName(u"combo"_s);
        combo->addItem(u"Match"_s);
        combo->setAccessibleDescription(u"What to mark"_s);
        auto* described = new QPushButton(u"Go"_s, &bare);
        described->setAccessibleDescription(u"Starts"_s);
        bare.show();
        QCOMPARE(controlsWithoutAccessibleText(&bare),
                 (QStringList{"field (EditableText): description", "combo (ComboBox): name"}));
    }

  private:
    Translations translations;
};

UI_TEST_MAIN(TranslationTest)
#include "TranslationTest.moc"
