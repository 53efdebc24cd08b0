#pragma once

#include <QObject>

// A search started from the main window: the progress window, its end and
// its cancel, the hand-over to the results window.
class SearchFlowTest : public QObject {
    Q_OBJECT
  private slots:
    void init();
    void cleanup();
    void progressTextsFollowTheCounts();
    void searchHandsGroupsToResultsWindow();
    void searchWithoutDuplicatesSaysSoAfterClosing();
    void cancelStopsSearchWithoutResults();
    void minimisedProgressKeepsItsSession();
    void progressTellsBytesComparedOfLargeFiles();
};
