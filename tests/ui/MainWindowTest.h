#pragma once

#include <QObject>
#include <memory>

#include "ui/main/ViewController.h"

class MainWindowTest : public QObject {
    Q_OBJECT
  private slots:
    void init();
    void cleanup();
    void folderPanelAddsEachFolderOnce();
    void droppedFoldersGoBetweenRowsInOrder();
    void folderRemovalAsksOnlyForAll();
    void extensionsAreLowerCasedAndUnique();
    void slidersStopOnTheTenSizes();
    void fileNewPutsEveryOptionBack();
    void findWithoutFoldersOnlyWarns();
    void closingAsksOnlyWithUnsavedMark();
    void keyboardLeavesTablesAndDeleteRemoves();
    void foldersOutsideTheSearchedLocationsAreNamed();

  private:
    std::unique_ptr<twinsweep::ui::ViewController> window_;
};
