// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointer>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "engine/File.h"
#include "selection/Breakdown.h"
#include "selection/ResultsUpdate.h"
#include "settings/SettingsManager.h"
#include "ui/shell/ModalWindow.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QPushButton;
class QTableView;

namespace twinsweep {
struct CleanedCopy;
}

namespace twinsweep::ui {

class GroupsModel;
class GroupsProxy;
class MembersModel;
class SegmentedControl;

enum class ExportFormat { Csv, Json };

// Writes groups, with their marks, to path (replaced only when the whole
// export was written). Returns the reason when it fails, else "".
QString exportGroups(const FileList& groups, bool protection, const QString& path,
                     ExportFormat format);

// The results window: the listed duplicate groups, the members of the selected
// one with their marks, the keep options, the category breakdown and the space
// saved, and the commands that clean, reveal and inspect. Marking and figures
// are computed off the GUI thread; the tables read the groups in place.
class ViewControllerDuplicates : public ModalWindow {
    Q_OBJECT
  public:
    explicit ViewControllerDuplicates(QWidget* opener);
    ~ViewControllerDuplicates() override;

    std::shared_ptr<SettingsManager> settingsManager;
    bool updating = false;
    bool selectionChanged = false;
    bool categoriesChanged = false;
    bool firstUpdate = true;
    std::int64_t lastSelectedRow = 0;
    std::int64_t selectedRow = 0;
    FileList fileList;

    QProgressBar* progressIndicator = nullptr;
    QTableView* tableViewFiles = nullptr;
    QTableView* tableViewDuplicates = nullptr;
    SegmentedControl* segmentedControlKeep = nullptr;
    QCheckBox* checkApplyForAll = nullptr;
    std::array<QCheckBox*, kCategoryCount> categoryChecks{};
    std::array<QProgressBar*, kCategoryCount> categoryBars{};
    std::array<QLabel*, kCategoryCount> categoryPercents{};
    QLabel* labelSpaceSaved = nullptr;
    QPushButton* buttonClean = nullptr;
    QPushButton* buttonReveal = nullptr;
    QPushButton* buttonInfo = nullptr;
    QPushButton* buttonExport = nullptr;
    // Our additions above the tables: the listed groups' totals and a filter
    // on path text (DuplicatesReview.cpp).
    QLabel* labelTotals = nullptr;
    QLineEdit* textFieldFilter = nullptr;

    // The menu a right click on a row of table (either table) opens, for
    // the member on that row (a group's row: its head); null off the rows.
    // The caller owns it.
    QMenu* contextMenuAt(QTableView* table, QPoint position);
    // "N items could not be read" by the search, its lines as the tip;
    // hidden when the search read everything.
    QLabel* textFieldUnread = nullptr;

    // The folder of the group at index row of fileList ("" when out of range):
    // what the custom keep window puts in place of an unset folder rule.
    std::string groupFolder(std::int64_t row) const;
    // Background jobs (updates, space-saved counts) not yet back on the GUI
    // thread.
    int jobsInFlight() const { return jobsInFlight_; }
    // Results updates started since the window opened (folded requests count
    // once).
    int updatesStarted() const { return updatesStarted_; }

  public slots:
    void OnSegmentedControlKeepChanged();
    void OnApplyForAllChecked();
    void OnCategoryChecked();
    void OnClean();
    void OnGoToSourceDirectoryButton();
    void OnShowInfo();
    // Asks where, then exports the listed groups (DuplicatesExport.cpp).
    void OnExport();
    // Exports the listed groups to path in the background; exportFinished
    // follows, after an alert when it failed.
    void startExport(const QString& path, ExportFormat format);

  signals:
    void exportFinished(const QString& error);

  protected:
    void viewDidDisappear() override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void viewDidLoad();
    void buildLayout();
    // What a screen reader says of each control (DuplicatesAccessible.cpp).
    void describeControls();
    void ResetResultsWindow();
    // Menus, shortcuts and keys (DuplicatesCommands.cpp).
    void buildCommands();
    void toggleCurrentMember();
    // Selects the first copy a clean left in place (DuplicatesClean.cpp).
    void showLeftInPlace(const std::vector<CleanedCopy>& attempted);

    // Totals, filter and context menus (DuplicatesReview.cpp).
    void buildReview();
    void showTotals();
    void setMemberMark(int member, bool marked);
    void protectFolderOf(const std::string& path);
    // The index of the group's own entry among its members (0 when none).
    int headMemberRow(const File& group) const;

    // Results update (DuplicatesUpdate.cpp).
    void UpdateResults();
    void ShowResults(ComputedResults results);
    void ShowCustomWindow();
    void ShowCustomSettingsMessage();
    void UpdateSpaceSaved();
    void showSpaceSaved(const SpaceSaved& saved);
    void showFigures(const CategoryFigures& figures);
    void setBusy(bool busy);
    void installList(FileList list);
    void installFoldedList(FileList list);

    // Tables (ViewControllerDuplicates.cpp).
    void tableViewSelectionDidChange();
    void selectGroupRow(int row);
    // member: an index into the shown group's list, whatever the rows' order.
    void toggleMember(int member);
    DuplicateFilePtr selectedMember() const;

    // Runs work on the thread pool and done(result) back on the GUI thread,
    // unless the window is gone by then; counted in jobsInFlight().
    template <class Work, class Done> void runJob(Work work, Done done);
    // Lets queued results arrive until no background job is left, so the
    // groups' member lists can be changed safely.
    void waitForBackgroundJobs();

    GroupsModel* groupsModel_ = nullptr;
    GroupsProxy* groupsProxy_ = nullptr;
    MembersModel* membersModel_ = nullptr;
    CategoryFigures shownFigures_;
    int jobsInFlight_ = 0;
    int updatesStarted_ = 0;
};

} // namespace twinsweep::ui
