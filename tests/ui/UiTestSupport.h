#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <clocale>
#include <functional>
#include <string>

namespace twinsweep::testing {

// The informative text of a message box, or "" if modal is something else.
inline QString alertText(QWidget* modal) {
    auto* box = qobject_cast<QMessageBox*>(modal);
    return box == nullptr ? QString() : box->informativeText();
}

// Presses the button with this title on a message box.
inline bool pressAlertButton(QWidget* modal, const QString& title) {
    auto* box = qobject_cast<QMessageBox*>(modal);
    if (box == nullptr) {
        return false;
    }
    for (QAbstractButton* button : box->buttons()) {
        if (button->text() == title) {
            button->click();
            return true;
        }
    }
    return false;
}

// Answers modal windows as they come up: a timer looks for the active modal
// window and hands each new one to the next handler, in order, when it is of
// the class that handler expects (others are left to run their course).
// Handlers run inside the modal window's own event loop, as a user's clicks
// would.
class ModalAnswers : public QObject {
  public:
    using Handler = std::function<void(QWidget* modal)>;

    ModalAnswers() {
        connect(&timer_, &QTimer::timeout, this, [this] { poll(); });
        timer_.start(5);
    }
    void then(const char* className, Handler handler) {
        handlers_.push_back({className, std::move(handler)});
    }
    // The next message box: its informative text goes to said, then button
    // is pressed.
    void alert(const QString& button) {
        then("QMessageBox", [this, button](QWidget* modal) {
            said << alertText(modal);
            QVERIFY(pressAlertButton(modal, button));
        });
    }
    int answered() const { return answered_; }
    bool allAnswered() const { return handlers_.isEmpty(); }

  private:
    void poll() {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr || modal == last_ || !modal->isVisible() || handlers_.isEmpty() ||
            !modal->inherits(handlers_.front().first)) {
            return;
        }
        last_ = modal;
        Handler handler = handlers_.takeFirst().second;
        ++answered_;
        handler(modal);
    }

  public:
    QStringList said;

  private:
    QTimer timer_;
    QList<std::pair<const char*, Handler>> handlers_;
    QPointer<QWidget> last_;
    int answered_ = 0;
};

// Lets the event loop run until done() holds or the time runs out.
inline bool waitUntil(const std::function<bool()>& done, int timeoutMs = 20000) {
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > timeoutMs) {
            return false;
        }
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

// The menu commands of a menu bar that have no shortcut, by their texts.
inline QStringList commandsWithoutShortcut(const QMenuBar* bar) {
    QStringList missing;
    for (const QMenu* menu : bar->findChildren<QMenu*>()) {
        for (const QAction* action : menu->actions()) {
            if (!action->isSeparator() && action->menu() == nullptr &&
                action->shortcut().isEmpty()) {
                missing << action->text();
            }
        }
    }
    return missing;
}

// A key typed into widget, which gets the focus first, as a user would:
// shortcuts of the window see it before the widget does.
inline void typeKey(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    widget->window()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(widget->window()));
    widget->setFocus(Qt::OtherFocusReason);
    QTest::keyClick(widget, key, modifiers);
}

// The process locale switched for a scope, as LANG or LC_ALL would set it for
// the whole application. ok() is false when the system lacks that locale.
class ScopedLocale {
  public:
    explicit ScopedLocale(const char* name) : saved_(std::setlocale(LC_ALL, nullptr)) {
        ok_ = std::setlocale(LC_ALL, name) != nullptr;
    }
    ~ScopedLocale() { std::setlocale(LC_ALL, saved_.c_str()); }
    bool ok() const { return ok_; }

  private:
    std::string saved_;
    bool ok_ = false;
};

} // namespace twinsweep::testing
