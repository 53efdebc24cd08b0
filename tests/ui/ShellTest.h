#pragma once

#include <QObject>
#include <QUrl>

// The application shell: window identifiers, modal sessions, the commands
// every window shares, and the alert helper.
class ShellTest : public QObject {
    Q_OBJECT
  public slots:
    void openedUrl(const QUrl& url) { opened_ << url; }

  private slots:
    void cleanup() { opened_.clear(); }
    void everyIdentifierMakesAModalWindow();
    void minimisingKeepsTheModalSession();
    void helpPagesOpenFromEveryWindow();
    void alertKeepsButtonOrderAndEscapeDeclines();
    void lastWindowClosedEndsTheApplication();
    void fileTypeIconsComeFromTheExtension();

  private:
    QList<QUrl> opened_;
};
