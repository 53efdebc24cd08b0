// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/customkeep/Stepper.h"
#include "ui/customkeep/ViewControllerCustomKeep.h"
#include "ui/shell/WindowCommands.h"

namespace twinsweep::ui {

namespace {

template <class Widget> Widget* named(Widget* widget, const char* name) {
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

QDateTimeEdit* datePicker(QWidget* parent, const char* name) {
    auto* picker = named(new QDateTimeEdit(parent), name);
    // The rules compare whole days; the time of day is kept but not shown.
    picker->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    picker->setCalendarPopup(true);
    return picker;
}

QLineEdit* sizeField(QWidget* parent, const char* name) {
    auto* field = named(new QLineEdit(parent), name);
    field->setMaximumWidth(80);
    field->setAlignment(Qt::AlignRight);
    return field;
}

} // namespace

void ViewControllerCustomKeep::buildLayout() {
    setWindowTitle(tr("Custom Selection"));
    auto* contents = new QWidget(this);
    auto* outer = new QVBoxLayout(contents);
    outer->addWidget(new QLabel(tr("Mark for removal the copies that:"), contents));

    auto* rules = new QGridLayout;
    int row = 0;
    const auto dateRule = [&](const char* check, QCheckBox*& box, const char* type,
                              QComboBox*& typeCombo, const char* term, QComboBox*& termCombo,
                              const char* picker, QDateTimeEdit*& date) {
        box = named(new QCheckBox(tr("Date"), contents), check);
        typeCombo = named(new QComboBox(contents), type);
        termCombo = named(new QComboBox(contents), term);
        date = datePicker(contents, picker);
        rules->addWidget(box, row, 0);
        rules->addWidget(typeCombo, row, 1);
        rules->addWidget(termCombo, row, 2);
        rules->addWidget(new QLabel(tr("than"), contents), row, 3);
        rules->addWidget(date, row, 4, 1, 3);
        ++row;
    };
    dateRule("checkFirstDate", checkFirstDate, "comboFirstDateType", comboFirstDateType,
             "comboFirstDateTermOfComparison", comboFirstDateTermOfComparison,
             "dataPickerFirstDate", dataPickerFirstDate);
    dateRule("checkSecondDate", checkSecondDate, "comboSecondDateType", comboSecondDateType,
             "comboSecondDateTermOFComparison", comboSecondDateTermOFComparison,
             "dataPickerSecondDate", dataPickerSecondDate);

    const auto sizeRule = [&](const char* check, QCheckBox*& box, const char* term,
                              QComboBox*& termCombo, const char* field, QLineEdit*& text,
                              const char* stepperName, Stepper*& stepper, const char* unit,
                              QComboBox*& unitCombo) {
        box = named(new QCheckBox(tr("File size"), contents), check);
        termCombo = named(new QComboBox(contents), term);
        text = sizeField(contents, field);
        stepper = named(new Stepper(contents), stepperName);
        unitCombo = named(new QComboBox(contents), unit);
        rules->addWidget(box, row, 0);
        rules->addWidget(termCombo, row, 2);
        rules->addWidget(new QLabel(tr("than"), contents), row, 3);
        rules->addWidget(text, row, 4);
        rules->addWidget(stepper, row, 5);
        rules->addWidget(unitCombo, row, 6);
        ++row;
    };
    sizeRule("checkFirstFileSize", checkFirstFileSize, "comboFirstFileSizeTermOfComparison",
             comboFirstFileSizeTermOfComparison, "textFieldFirstFileSize", textFieldFirstFileSize,
             "stepperFirstFileSize", stepperFirstFileSize, "comboFirstFileSizeUnit",
             comboFirstFileSizeUnit);
    sizeRule("checkSecondFileSize", checkSecondFileSize, "comboSecondFileSizeTermOfComparison",
             comboSecondFileSizeTermOfComparison, "textFieldSecondFileSize",
             textFieldSecondFileSize, "stepperSecondFileSize", stepperSecondFileSize,
             "comboSecondFileSizeUnit", comboSecondFileSizeUnit);
    rules->setColumnStretch(7, 1);
    outer->addLayout(rules);

    // File types.
    auto* types = new QHBoxLayout;
    checkCustomFileTypes =
        named(new QCheckBox(tr("File type is one of"), contents), "checkCustomFileTypes");
    types->addWidget(checkCustomFileTypes, 0, Qt::AlignTop);
    tableViewCustomFileTypes = named(new QListWidget(contents), "TableViewCustomFileTypes");
    tableViewCustomFileTypes->setMaximumHeight(96);
    types->addWidget(tableViewCustomFileTypes, 1);
    auto* typeButtons = new QVBoxLayout;
    textFieldExtension = named(new QLineEdit(contents), "textFieldExtension");
    textFieldExtension->setMaximumWidth(100);
    auto* add = named(new QPushButton(tr("Add"), contents), "buttonAddExtension");
    auto* remove = named(new QPushButton(tr("Remove"), contents), "buttonRemoveExtension");
    auto* removeAll =
        named(new QPushButton(tr("Remove All"), contents), "buttonRemoveAllExtensions");
    typeButtons->addWidget(textFieldExtension);
    typeButtons->addWidget(add);
    typeButtons->addWidget(remove);
    typeButtons->addWidget(removeAll);
    types->addLayout(typeButtons);
    outer->addLayout(types);

    // Folder.
    auto* folder = new QHBoxLayout;
    checkCustomFilePath = named(new QCheckBox(tr("In folder"), contents), "checkCustomFilePath");
    textFieldCustomFilePath = named(new QLineEdit(contents), "textFieldCustomFilePath");
    auto* browse = named(new QPushButton(tr("&Browse…"), contents), "buttonBrowse");
    checkSubfolders = named(new QCheckBox(tr("Include subfolders"), contents), "checkSubfolders");
    folder->addWidget(checkCustomFilePath);
    folder->addWidget(textFieldCustomFilePath, 1);
    folder->addWidget(browse);
    folder->addWidget(checkSubfolders);
    outer->addLayout(folder);

    auto* matchRow = new QHBoxLayout;
    matchRow->addWidget(new QLabel(tr("Mark the copies that"), contents));
    comboMatch = named(new QComboBox(contents), "comboMatch");
    matchRow->addWidget(comboMatch);
    matchRow->addWidget(new QLabel(tr("every rule that is on."), contents));
    matchRow->addStretch(1);
    outer->addLayout(matchRow);

    auto* buttons = new QHBoxLayout;
    buttonReset = named(new QPushButton(tr("&Reset"), contents), "buttonReset");
    buttonCancel = named(new QPushButton(tr("Cancel"), contents), "buttonCancel");
    buttonOk = named(new QPushButton(tr("OK"), contents), "buttonOk");
    // OK is the button the window offers, but Return in a field only confirms
    // that field (the window swallows what the field leaves); a focused
    // button takes Return itself.
    buttonOk->setDefault(true);
    buttons->addWidget(buttonReset);
    buttons->addStretch(1);
    buttons->addWidget(buttonCancel);
    buttons->addWidget(buttonOk);
    outer->addLayout(buttons);
    setContents(contents);
    describeControls();

    connect(textFieldFirstFileSize, &QLineEdit::editingFinished, this,
            &ViewControllerCustomKeep::OnFirstFileSizeChanged);
    connect(textFieldSecondFileSize, &QLineEdit::editingFinished, this,
            &ViewControllerCustomKeep::OnSecondFileSizeChanged);
    connect(stepperFirstFileSize, &Stepper::stepped, this,
            &ViewControllerCustomKeep::OnStepperFirstFilesizeChanged);
    connect(stepperSecondFileSize, &Stepper::stepped, this,
            &ViewControllerCustomKeep::OnStepperSecondFileSizeChanged);
    connect(add, &QPushButton::clicked, this,
            &ViewControllerCustomKeep::OncustomFileTypesAddFileExtension);
    connect(textFieldExtension, &QLineEdit::returnPressed, this,
            &ViewControllerCustomKeep::OncustomFileTypesAddFileExtension);
    connect(remove, &QPushButton::clicked, this,
            &ViewControllerCustomKeep::OnCustomFileTypesRemoveSelected);
    connect(removeAll, &QPushButton::clicked, this,
            &ViewControllerCustomKeep::OnCustomFileTypesRemoveAll);
    connect(browse, &QPushButton::clicked, this, &ViewControllerCustomKeep::OnBrowse);
    connect(buttonOk, &QPushButton::clicked, this, &ViewControllerCustomKeep::OnOk);
    connect(buttonCancel, &QPushButton::clicked, this, &ViewControllerCustomKeep::OnCancel);
    connect(buttonReset, &QPushButton::clicked, this, &ViewControllerCustomKeep::OnReset);

    QMenu* edit = addCommandMenu(menuBar(), tr("&Edit"));
    addCommand(
        edit, tr("Remove E&xtension"), QKeySequence::Delete,
        [this] { OnCustomFileTypesRemoveSelected(); }, tableViewCustomFileTypes);
    addCommand(
        edit, tr("Remove All Ex&tensions"), QKeySequence(Qt::SHIFT | Qt::Key_Delete),
        [this] { OnCustomFileTypesRemoveAll(); }, tableViewCustomFileTypes);
}

} // namespace twinsweep::ui
