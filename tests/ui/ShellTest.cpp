#include <QAction>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QFile>
#include <QPushButton>

#include "UiTestSupport.h"
#include "ui/main/ViewController.h"
#include "ui/platform/FileTypeIcons.h"
#include "ui/platform/HelpPages.h"
#include "ui/shell/Alert.h"
#include "ui/shell/ModalWindow.h"
#include "ui/shell/WindowFactory.h"

using twinsweep::testing::ModalAnswers;
using twinsweep::testing::pressAlertButton;
using namespace twinsweep::ui;

// The application shell: window identifiers, the commands every window
// shares, and the alert helper.
class ShellTest : public QObject {
    Q_OBJECT
  public slots:
    void openedUrl(const QUrl& url) { opened_ << url; }

  private slots:
    void everyIdentifierMakesAModalWindow() {
        // The progress window starts a search when made: the search tests
        // cover it.
        for (const QString& id :
             {kWindowControllerDuplicates, kWindowControllerCustomKeep, kWindowControllerInfo}) {
            std::unique_ptr<ModalWindow> window = WindowFactory::make(id, nullptr);
            QVERIFY2(window != nullptr, qPrintable(id));
            QCOMPARE(window->windowModality(), Qt::ApplicationModal);
            QVERIFY(window->findChild<QAction*>(QStringLiteral("actionMinimize")) != nullptr);
            QVERIFY(window->findChild<QAction*>(QStringLiteral("actionHelpCustomSelect")));
        }
        QVERIFY(!WindowFactory::runModal(QStringLiteral("WindowControllerNone"), nullptr));
    }

    void helpPagesOpenFromEveryWindow() {
        QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openedUrl");
        ViewController main;
        main.show();
        main.findChild<QAction*>(QStringLiteral("actionHelpRemoveDuplicates"))->trigger();
        main.findChild<QAction*>(QStringLiteral("actionHelpCustomSelect"))->trigger();
        ModalAnswers answers;
        answers.then("twinsweep::ui::ModalWindow", [](QWidget* modal) {
            modal->findChild<QAction*>(QStringLiteral("actionHelpRemoveDuplicates"))->trigger();
            modal->close();
        });
        WindowFactory::runModal(kWindowControllerInfo, &main);
        QDesktopServices::unsetUrlHandler(QStringLiteral("file"));

        QCOMPARE(opened_.size(), 3);
        QCOMPARE(opened_[0], opened_[2]);
        QVERIFY(opened_[0] != opened_[1]);
        for (const QUrl& url : opened_) {
            QFile page(url.toLocalFile());
            QVERIFY2(page.open(QIODevice::ReadOnly), qPrintable(url.toString()));
            QVERIFY(page.readAll().contains("<h1>"));
        }
        OpenHelpVideo(QStringLiteral("http://exa mple/%%")); // can't be parsed: ignored
        QCOMPARE(opened_.size(), 3);
    }

    void alertKeepsButtonOrderAndEscapeDeclines() {
        ModalAnswers answers;
        QStringList order;
        answers.then("QMessageBox", [&](QWidget* modal) {
            auto buttons = modal->findChild<QDialogButtonBox*>()->findChildren<QPushButton*>();
            std::sort(buttons.begin(), buttons.end(),
                      [](QPushButton* l, QPushButton* r) { return l->x() < r->x(); });
            for (QPushButton* b : buttons) {
                order << b->text();
            }
            QVERIFY(pressAlertButton(modal, QStringLiteral("Yes")));
        });
        QVERIFY(askYesNo(nullptr, QStringLiteral("Sure?")));
        QCOMPARE(order, (QStringList{QStringLiteral("Yes"), QStringLiteral("No")})); // as laid out

        answers.then("QMessageBox", [](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Escape); });
        QVERIFY(!askYesNo(nullptr, QStringLiteral("Sure?")));
        answers.then("QMessageBox",
                     [](QWidget* modal) { QVERIFY(pressAlertButton(modal, QStringLiteral("C"))); });
        const QStringList titles{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")};
        QCOMPARE(runAlert(nullptr, QStringLiteral("Pick"), titles), 2);
    }

    void fileTypeIconsComeFromTheExtension() {
        for (const char* extension : {"jpg", "", "no-such-type"}) {
            QVERIFY2(!iconForExtension(QString::fromLatin1(extension)).isNull(), extension);
        }
        // Only the name counts, lower-cased; the file need not exist.
        QCOMPARE(fileIcon("/nowhere/Photo.JPG").cacheKey(),
                 iconForExtension(QStringLiteral("jpg")).cacheKey());
        QCOMPARE(fileIcon("/nowhere/README").cacheKey(), iconForExtension(QString()).cacheKey());
    }

  private:
    QList<QUrl> opened_;
};

namespace {
const bool registered = twinsweep::testing::registerTestClass<ShellTest>();
}

#include "ShellTest.moc"
