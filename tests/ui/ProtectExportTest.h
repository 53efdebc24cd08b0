#pragma once

#include <QObject>

// Protected folders in the main and results windows, the results window's
// export, the hard-link choice and Edit > Undo Clean.
class ProtectExportTest : public QObject {
    Q_OBJECT
  private slots:
    void cleanup();
    void folderTableProtectsFolders();
    void protectedCopiesCannotBeTickedOrCleaned();
    void exportsReadBackWithTheirMarks();
    void linksAskNothingAndUndoPutsTrashedCopiesBack();
};
