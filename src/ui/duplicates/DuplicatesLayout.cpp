// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStringList>
#include <QTableView>
#include <QVBoxLayout>

#include "ui/duplicates/GroupsModel.h"
#include "ui/duplicates/GroupsProxy.h"
#include "ui/duplicates/MembersModel.h"
#include "ui/duplicates/SegmentedControl.h"
#include "ui/duplicates/ViewControllerDuplicates.h"

namespace twinsweep::ui {

namespace {

QTableView* makeTable(QWidget* parent, const QString& name) {
    auto* table = new QTableView(parent);
    table->setObjectName(name);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->verticalHeader()->hide();
    // Fixed row heights: the view never measures 50,000 rows.
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(22);
    table->setWordWrap(false);
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    // Tab leaves the table; paths keep their file name in sight.
    table->setTabKeyNavigation(false);
    table->setTextElideMode(Qt::ElideMiddle);
    return table;
}

} // namespace

void ViewControllerDuplicates::buildLayout() {
    setWindowTitle(tr("Duplicate Files"));
    auto* contents = new QWidget(this);
    auto* outer = new QVBoxLayout(contents);

    // Keep option and apply-to-all.
    auto* keepRow = new QHBoxLayout;
    keepRow->addWidget(new QLabel(tr("Select:"), contents));
    segmentedControlKeep = new SegmentedControl(
        {tr("Keep All"), tr("Keep Oldest"), tr("Keep Newest"), tr("Remove All"), tr("Custom…")},
        contents);
    segmentedControlKeep->setObjectName(QStringLiteral("segmentedControlKeep"));
    keepRow->addWidget(segmentedControlKeep, 1);
    checkApplyForAll = new QCheckBox(tr("Apply to all groups"), contents);
    checkApplyForAll->setObjectName(QStringLiteral("checkApplyForAll"));
    keepRow->addWidget(checkApplyForAll);
    progressIndicator = new QProgressBar(contents);
    progressIndicator->setObjectName(QStringLiteral("progressIndicator"));
    progressIndicator->setRange(0, 0); // busy: no amount, just motion
    progressIndicator->setTextVisible(false);
    progressIndicator->setFixedWidth(90);
    // Its place stays when it is hidden, so nothing moves when an update starts.
    QSizePolicy keepPlace = progressIndicator->sizePolicy();
    keepPlace.setRetainSizeWhenHidden(true);
    progressIndicator->setSizePolicy(keepPlace);
    keepRow->addWidget(progressIndicator);
    outer->addLayout(keepRow);

    // Totals and the filter.
    auto* reviewRow = new QHBoxLayout;
    labelTotals = new QLabel(contents);
    labelTotals->setObjectName(QStringLiteral("labelTotals"));
    reviewRow->addWidget(labelTotals, 1);
    textFieldFilter = new QLineEdit(contents);
    textFieldFilter->setObjectName(QStringLiteral("textFieldFilter"));
    textFieldFilter->setPlaceholderText(tr("Filter by path"));
    textFieldFilter->setClearButtonEnabled(true);
    textFieldFilter->setToolTip(tr("Lists only the groups with a copy whose path holds this text"));
    textFieldFilter->setMinimumWidth(240);
    reviewRow->addWidget(textFieldFilter);
    outer->addLayout(reviewRow);
    // What the search could not read, counted (our addition).
    textFieldUnread = new QLabel(contents);
    textFieldUnread->setObjectName(QStringLiteral("textFieldUnread"));
    const std::vector<std::string>& refusals = settingsManager->searchRefusals;
    const qsizetype unread = static_cast<qsizetype>(refusals.size());
    textFieldUnread->setText(unread == 1 ? tr("1 item could not be read")
                                         : tr("%1 items could not be read").arg(unread));
    QStringList tip;
    for (std::size_t k = 0; k < refusals.size() && k < 20; ++k) {
        tip << QString::fromStdString(refusals[k]);
    }
    if (refusals.size() > 20) {
        tip << QStringLiteral("…");
    }
    textFieldUnread->setToolTip(tip.join(QLatin1Char('\n')));
    textFieldUnread->setVisible(unread > 0);
    outer->addWidget(textFieldUnread);

    // The two tables.
    auto* split = new QSplitter(Qt::Horizontal, contents);
    tableViewFiles = makeTable(split, QStringLiteral("TableViewFiles"));
    groupsModel_ = new GroupsModel(&fileList, this);
    groupsModel_->setLargeByContent(settingsManager->compareLargeFilesByContent);
    groupsProxy_ = new GroupsProxy(groupsModel_, this);
    tableViewFiles->setModel(groupsProxy_);
    tableViewFiles->setItemDelegateForColumn(GroupsModel::ColumnCount,
                                             new CountDelegate(tableViewFiles));
    QHeaderView* groupsHeader = tableViewFiles->horizontalHeader();
    groupsHeader->setSectionResizeMode(GroupsModel::ColumnIcon, QHeaderView::Fixed);
    groupsHeader->resizeSection(GroupsModel::ColumnIcon, 26);
    groupsHeader->setSectionResizeMode(GroupsModel::ColumnName, QHeaderView::Stretch);
    groupsHeader->resizeSection(GroupsModel::ColumnSize, 100); // room for the size-only mark
    groupsHeader->resizeSection(GroupsModel::ColumnCount, 60);
    // The search's order until a header is clicked; a third click brings it back.
    groupsHeader->setSortIndicatorClearable(true);
    groupsHeader->setSortIndicator(-1, Qt::AscendingOrder);
    tableViewFiles->setSortingEnabled(true);

    tableViewDuplicates = makeTable(split, QStringLiteral("TableViewDuplicate"));
    membersModel_ = new MembersModel(this);
    tableViewDuplicates->setModel(membersModel_);
    // No row is painted as selected: the boxes show the marks. The member
    // the commands act on is the current row, which a click or a tick sets.
    tableViewDuplicates->setSelectionMode(QAbstractItemView::NoSelection);
    QHeaderView* membersHeader = tableViewDuplicates->horizontalHeader();
    membersHeader->setSectionResizeMode(MembersModel::ColumnCheck, QHeaderView::Fixed);
    membersHeader->resizeSection(MembersModel::ColumnCheck, 26);
    membersHeader->setSectionResizeMode(MembersModel::ColumnPath, QHeaderView::Stretch);
    membersHeader->resizeSection(MembersModel::ColumnDate, 130);
    membersHeader->setSortIndicatorClearable(true);
    membersHeader->setSortIndicator(-1, Qt::AscendingOrder);
    tableViewDuplicates->setSortingEnabled(true);
    split->setStretchFactor(0, 2);
    split->setStretchFactor(1, 3);
    outer->addWidget(split, 1);

    // Member commands.
    auto* memberRow = new QHBoxLayout;
    memberRow->addStretch(1);
    buttonReveal = new QPushButton(tr("Show in File Manager"), contents);
    buttonReveal->setObjectName(QStringLiteral("buttonReveal"));
    buttonInfo = new QPushButton(tr("File Info"), contents);
    buttonInfo->setObjectName(QStringLiteral("buttonInfo"));
    memberRow->addWidget(buttonReveal);
    memberRow->addWidget(buttonInfo);
    buttonExport = new QPushButton(tr("Export..."), contents);
    buttonExport->setObjectName(QStringLiteral("buttonExport"));
    buttonExport->setToolTip(tr("Save the listed groups and their marks as CSV or JSON"));
    memberRow->addWidget(buttonExport);
    outer->addLayout(memberRow);

    // Categories, space saved and Clean.
    auto* bottom = new QHBoxLayout;
    auto* categories = new QGroupBox(tr("Categories"), contents);
    auto* grid = new QGridLayout(categories);
    // The English names also name the controls; tr() shows them translated.
    static const char* const kNames[kCategoryCount] = {
        QT_TRANSLATE_NOOP("twinsweep::ui::ViewControllerDuplicates", "Pictures"),
        QT_TRANSLATE_NOOP("twinsweep::ui::ViewControllerDuplicates", "Music"),
        QT_TRANSLATE_NOOP("twinsweep::ui::ViewControllerDuplicates", "Movies"),
        QT_TRANSLATE_NOOP("twinsweep::ui::ViewControllerDuplicates", "Archives"),
        QT_TRANSLATE_NOOP("twinsweep::ui::ViewControllerDuplicates", "Documents"),
        QT_TRANSLATE_NOOP("twinsweep::ui::ViewControllerDuplicates", "Other")};
    for (int k = 0; k < kCategoryCount; ++k) {
        const int row = k % 3;
        const int col = (k / 3) * 3;
        auto* box = new QCheckBox(tr(kNames[k]), categories);
        box->setObjectName(QStringLiteral("check") + QLatin1String(kNames[k]));
        auto* bar = new QProgressBar(categories);
        bar->setObjectName(QStringLiteral("progressIndicator") + QLatin1String(kNames[k]));
        bar->setRange(0, 100);
        bar->setTextVisible(false);
        bar->setMaximumHeight(12);
        auto* percent = new QLabel(QStringLiteral("0%"), categories);
        percent->setObjectName(QStringLiteral("textField") + QLatin1String(kNames[k]) +
                               QStringLiteral("Percents"));
        percent->setMinimumWidth(40);
        percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(box, row, col);
        grid->addWidget(bar, row, col + 1);
        grid->addWidget(percent, row, col + 2);
        categoryChecks[static_cast<std::size_t>(k)] = box;
        categoryBars[static_cast<std::size_t>(k)] = bar;
        categoryPercents[static_cast<std::size_t>(k)] = percent;
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(4, 1);
    bottom->addWidget(categories, 1);

    auto* cleanBox = new QVBoxLayout;
    cleanBox->addStretch(1);
    auto* spaceSavedCaption = new QLabel(tr("Space saved:"), contents);
    spaceSavedCaption->setObjectName(QStringLiteral("labelSpaceSavedCaption"));
    cleanBox->addWidget(spaceSavedCaption);
    labelSpaceSaved = new QLabel(contents);
    labelSpaceSaved->setObjectName(QStringLiteral("labelSpaceSaved"));
    QFont big = labelSpaceSaved->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    labelSpaceSaved->setFont(big);
    cleanBox->addWidget(labelSpaceSaved);
    buttonClean = new QPushButton(tr("Clean"), contents);
    buttonClean->setObjectName(QStringLiteral("buttonClean"));
    buttonClean->setMinimumWidth(120);
    cleanBox->addWidget(buttonClean);
    bottom->addLayout(cleanBox);
    outer->addLayout(bottom);

    describeControls();
    setContents(contents);
    resize(960, 640);
}

} // namespace twinsweep::ui
