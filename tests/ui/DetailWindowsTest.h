#pragma once

#include <QObject>

// The custom keep rules window and the file information window.
class DetailWindowsTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase();
    void cleanup();
    void sizeFieldsAreCheckedAndSteppersFollow();
    void extensionListCommands();
    void okChecksTheFolderOnlyWhenItsRuleIsOn();
    void resetThenCancelLeavesTheDefaults();
    void closingCountsAsCancel();
    void infoLabelsAndPicturePreview();
    void infoIconForOtherFilesAndDamagedPictures();
    void infoOpensFromTheResultsWindow();
};
