#pragma once

#include <QObject>

// Protected folders in the main and results windows, and the results
// window's export.
class ProtectExportTest : public QObject {
    Q_OBJECT
  private slots:
    void cleanup();
    void folderTableProtectsFolders();
    void protectedCopiesCannotBeTickedOrCleaned();
    void exportsReadBackWithTheirMarks();
};
