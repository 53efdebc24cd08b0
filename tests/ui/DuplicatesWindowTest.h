#pragma once

#include <QObject>
#include <QUrl>

// The results window on real search results: set-up, keep options, hand
// marks, categories, folded updates, the custom rules and cleaning.
class DuplicatesWindowTest : public QObject {
    Q_OBJECT
  public slots:
    void openedUrl(const QUrl& url) { opened_ << url; }

  private slots:
    void init();
    void cleanup();
    void opensOnTheSearchResult();
    void keepOptionsOnOneGroupAndOnAll();
    void handMarksRecountAtOnce();
    void categoryBoxesHideGroupsButKeepMarks();
    void segmentChangesDuringAnUpdateFoldIntoOne();
    void segmentChosenDuringAFullUpdateIsKept();
    void customWindowOkCancelAndTheKeepOneQuestion();
    void cleaningAsksFirstAndMovesToTheTrash();
    void cleaningForGoodAndClosingAfterTheLastGroup();
    void revealFallsBackToTheFolder();
    void keyboardMarksAndReturnOpensNothing();

  private:
    QList<QUrl> opened_;
};
