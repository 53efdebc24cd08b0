#include "ShellTest.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QFile>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include "UiTestSupport.h"
#include "ui/main/ViewController.h"
#include "ui/platform/FileTypeIcons.h"
#include "ui/platform/HelpPages.h"
#include "ui/shell/Alert.h"
#include "ui/shell/AppDelegate.h"
#include "ui/shell/ModalWindow.h"
#include "ui/shell/WindowFactory.h"

using twinsweep::testing::ModalAnswers;
using twinsweep::testing::pressAlertButton;
using twinsweep::ui::ModalWindow;
using twinsweep::ui::WindowFactory;

void ShellTest::everyIdentifierMakesAModalWindow() {
    // The progress window starts a search when made, so it is exercised by
    // the search tests; the others must exist from the start.
    for (const QString& id :
         {twinsweep::ui::kWindowControllerDuplicates, twinsweep::ui::kWindowControllerCustomKeep,
          twinsweep::ui::kWindowControllerInfo}) {
        std::unique_ptr<ModalWindow> window = WindowFactory::make(id, nullptr);
        QVERIFY2(window != nullptr, qPrintable(id));
        QCOMPARE(window->windowModality(), Qt::ApplicationModal);
        QVERIFY(window->findChild<QAction*>(QStringLiteral("actionMinimize")) != nullptr);
        QVERIFY(window->findChild<QAction*>(QStringLiteral("actionHelpCustomSelect")) != nullptr);
    }
    QVERIFY(WindowFactory::make(QStringLiteral("WindowControllerNone"), nullptr) == nullptr);
    QVERIFY(!WindowFactory::runModal(QStringLiteral("WindowControllerNone"), nullptr));

    // A later window replaces its stand-in by registering under the same name.
    bool madeReplacement = false;
    WindowFactory::registerWindow(twinsweep::ui::kWindowControllerInfo, [&](QWidget* opener) {
        madeReplacement = true;
        auto window = std::make_unique<ModalWindow>(opener);
        window->setWindowTitle(QStringLiteral("Replacement"));
        return window;
    });
    QCOMPARE(WindowFactory::make(twinsweep::ui::kWindowControllerInfo, nullptr)->windowTitle(),
             QStringLiteral("Replacement"));
    QVERIFY(madeReplacement);
}

void ShellTest::minimisingKeepsTheModalSession() {
    twinsweep::ui::ViewController main;
    main.show();
    ModalAnswers answers;
    bool stillModal = false;
    answers.then("twinsweep::ui::ModalWindow", [&](QWidget* modal) {
        auto* window = qobject_cast<ModalWindow*>(modal);
        QVERIFY(window != nullptr);
        window->OnMinimize();
        QTest::qWait(30);
        stillModal = window->isMinimized() && QApplication::activeModalWidget() == window;
        window->showNormal();
        QTest::qWait(10);
        window->close();
    });
    QVERIFY(WindowFactory::runModal(twinsweep::ui::kWindowControllerCustomKeep, &main));
    QVERIFY(stillModal);
    // Closing it gave control back to the opener.
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    QVERIFY(main.isVisible());
}

void ShellTest::helpPagesOpenFromEveryWindow() {
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openedUrl");
    twinsweep::ui::ViewController main;
    main.show();
    main.findChild<QAction*>(QStringLiteral("actionHelpRemoveDuplicates"))->trigger();
    main.findChild<QAction*>(QStringLiteral("actionHelpCustomSelect"))->trigger();

    ModalAnswers answers;
    answers.then("twinsweep::ui::ModalWindow", [](QWidget* modal) {
        modal->findChild<QAction*>(QStringLiteral("actionHelpRemoveDuplicates"))->trigger();
        modal->close();
    });
    WindowFactory::runModal(twinsweep::ui::kWindowControllerInfo, &main);
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));

    QCOMPARE(opened_.size(), 3);
    QCOMPARE(opened_[0], opened_[2]);
    QVERIFY(opened_[0] != opened_[1]);
    for (const QUrl& url : opened_) {
        QFile page(url.toLocalFile());
        QVERIFY2(page.open(QIODevice::ReadOnly), qPrintable(url.toString()));
        QVERIFY(page.readAll().contains("<h1>"));
    }
    // An address that can't be parsed is ignored.
    twinsweep::ui::OpenHelpVideo(QStringLiteral("http://exa mple/%%"));
    QCOMPARE(opened_.size(), 3);
}

void ShellTest::alertKeepsButtonOrderAndEscapeDeclines() {
    ModalAnswers answers;
    QStringList order;
    answers.then("QMessageBox", [&](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        const auto buttons = box->findChild<QDialogButtonBox*>()->findChildren<QPushButton*>();
        // Left to right as laid out.
        QList<QPushButton*> sorted = buttons;
        std::sort(sorted.begin(), sorted.end(),
                  [](QPushButton* l, QPushButton* r) { return l->x() < r->x(); });
        for (QPushButton* b : sorted) {
            order << b->text();
        }
        QVERIFY(pressAlertButton(modal, QStringLiteral("Yes")));
    });
    QVERIFY(twinsweep::ui::askYesNo(nullptr, QStringLiteral("Sure?")));
    QCOMPARE(order, (QStringList{QStringLiteral("Yes"), QStringLiteral("No")}));

    answers.then("QMessageBox", [](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Escape); });
    QVERIFY(!twinsweep::ui::askYesNo(nullptr, QStringLiteral("Sure?")));
    answers.then("QMessageBox",
                 [](QWidget* modal) { QVERIFY(pressAlertButton(modal, QStringLiteral("C"))); });
    QCOMPARE(
        twinsweep::ui::runAlert(nullptr, QStringLiteral("Pick"),
                                {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}),
        2);
}

void ShellTest::lastWindowClosedEndsTheApplication() {
    const bool before = QApplication::quitOnLastWindowClosed();
    QApplication::setQuitOnLastWindowClosed(false);
    {
        twinsweep::ui::AppDelegate delegate(*qApp);
        QVERIFY(QApplication::quitOnLastWindowClosed());
    }
    QApplication::setQuitOnLastWindowClosed(before);
}

void ShellTest::fileTypeIconsComeFromTheExtension() {
    using twinsweep::ui::fileIcon;
    using twinsweep::ui::iconForExtension;
    QVERIFY(!iconForExtension(QStringLiteral("jpg")).isNull());
    QVERIFY(!iconForExtension(QString()).isNull());
    QVERIFY(!iconForExtension(QStringLiteral("no-such-type")).isNull());
    // Only the name counts, lower-cased; the file need not exist.
    QCOMPARE(fileIcon("/nowhere/Photo.JPG").cacheKey(),
             iconForExtension(QStringLiteral("jpg")).cacheKey());
    QCOMPARE(fileIcon("/nowhere/README").cacheKey(), iconForExtension(QString()).cacheKey());
}
