// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/customkeep/ViewControllerCustomKeep.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <cmath>
#include <sys/stat.h>

#include "engine/TextCase.h"
#include "ui/customkeep/SizeField.h"
#include "ui/customkeep/Stepper.h"
#include "ui/platform/FolderPicker.h"
#include "ui/shell/Alert.h"

namespace twinsweep::ui {

namespace {

QDateTime toDateTime(DateTime seconds) {
    return QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000.0));
}

DateTime fromDateTime(const QDateTime& when) {
    return static_cast<double>(when.toMSecsSinceEpoch()) / 1000.0;
}

int index(std::int64_t value) {
    return static_cast<int>(value);
}

std::int64_t stateOf(const QCheckBox* box) {
    return box->isChecked() ? 1 : 0;
}

bool isFolder(const QString& path) {
    struct stat info {};
    const QByteArray bytes = QFile::encodeName(path);
    return !bytes.isEmpty() && ::stat(bytes.constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

} // namespace

ViewControllerCustomKeep::ViewControllerCustomKeep(QWidget* opener, std::string groupFolder)
    : ModalWindow(opener), settingsManager(SettingsManager::shared()),
      groupFolder_(std::move(groupFolder)) {
    buildLayout();
    viewDidLoad();
}

void ViewControllerCustomKeep::viewDidLoad() {
    const auto fill = [](QComboBox* combo, const QStringList& items) {
        combo->clear();
        combo->addItems(items);
    };
    // The rules keep the item's position, never its text.
    const QStringList dateTypes{tr("Creation Date"), tr("Modification Date")};
    const QStringList dateTerms{tr("Earlier"), tr("Later")};
    const QStringList sizeTerms{tr("Larger"), tr("Smaller")};
    const QStringList units{tr("B"), tr("KB"), tr("MB"), tr("GB")};
    fill(comboFirstDateType, dateTypes);
    fill(comboSecondDateType, dateTypes);
    fill(comboFirstDateTermOfComparison, dateTerms);
    fill(comboSecondDateTermOFComparison, dateTerms);
    fill(comboFirstFileSizeTermOfComparison, sizeTerms);
    fill(comboSecondFileSizeTermOfComparison, sizeTerms);
    fill(comboFirstFileSizeUnit, units);
    fill(comboSecondFileSizeUnit, units);
    fill(comboMatch, {tr("Match"), tr("Don't match")});
    // Any way out other than OK counts as Cancel.
    settingsManager->customSettingsOption = "Cancel";
    loadRuleControls();
}

void ViewControllerCustomKeep::loadRuleControls() {
    SettingsManager& s = *settingsManager;
    checkFirstDate->setChecked(s.firstDateState == 1);
    comboFirstDateType->setCurrentIndex(index(s.firstDateSelectedItem));
    comboFirstDateTermOfComparison->setCurrentIndex(index(s.firstDateComparisonItem));
    dataPickerFirstDate->setDateTime(toDateTime(s.firstDate));
    checkSecondDate->setChecked(s.secondDateState == 1);
    comboSecondDateType->setCurrentIndex(index(s.secondDateSelectedItem));
    comboSecondDateTermOFComparison->setCurrentIndex(index(s.secondDateComparisonItem));
    dataPickerSecondDate->setDateTime(toDateTime(s.secondDate));

    checkFirstFileSize->setChecked(s.firstFileSizeState == 1);
    comboFirstFileSizeTermOfComparison->setCurrentIndex(index(s.firstFileSizeComparisonItem));
    textFieldFirstFileSize->setText(QString::number(s.firstFileSize));
    stepperFirstFileSize->setValue(static_cast<double>(s.firstFileSize));
    comboFirstFileSizeUnit->setCurrentIndex(index(s.firstFileSizeUnit));
    checkSecondFileSize->setChecked(s.secondFileSizeState == 1);
    comboSecondFileSizeTermOfComparison->setCurrentIndex(index(s.secondFileSizeComparisonItem));
    textFieldSecondFileSize->setText(QString::number(s.secondFileSize));
    stepperSecondFileSize->setValue(static_cast<double>(s.secondFileSize));
    comboSecondFileSizeUnit->setCurrentIndex(index(s.secondFileSizeUnit));

    checkCustomFileTypes->setChecked(s.customFileTypesState == 1);
    extensionsList = s.customFileExtensions;
    textFieldExtension->setText(QString::fromStdString(s.customFileType));

    checkCustomFilePath->setChecked(s.customFilePathState == 1);
    if (s.customFilePath == " ") {
        // A folder rule never set starts at the group's own folder.
        s.customFilePath = groupFolder_;
    }
    textFieldCustomFilePath->setText(
        QFile::decodeName(QByteArray::fromStdString(s.customFilePath)));

    checkSubfolders->setChecked(s.subfoldersState == 1);
    comboMatch->setCurrentIndex(index(s.matchState));
    reloadExtensions();
}

void ViewControllerCustomKeep::saveRuleControls() {
    // A size typed but never confirmed is checked as if it had been.
    OnFirstFileSizeChanged();
    OnSecondFileSizeChanged();
    SettingsManager& s = *settingsManager;
    s.firstDateState = stateOf(checkFirstDate);
    s.firstDateSelectedItem = comboFirstDateType->currentIndex();
    s.firstDateComparisonItem = comboFirstDateTermOfComparison->currentIndex();
    s.firstDate = fromDateTime(dataPickerFirstDate->dateTime());
    s.secondDateState = stateOf(checkSecondDate);
    s.secondDateSelectedItem = comboSecondDateType->currentIndex();
    s.secondDateComparisonItem = comboSecondDateTermOFComparison->currentIndex();
    s.secondDate = fromDateTime(dataPickerSecondDate->dateTime());
    s.firstFileSizeState = stateOf(checkFirstFileSize);
    s.firstFileSizeComparisonItem = comboFirstFileSizeTermOfComparison->currentIndex();
    s.firstFileSize =
        static_cast<std::int64_t>(std::trunc(textFieldFirstFileSize->text().toDouble()));
    s.firstFileSizeUnit = comboFirstFileSizeUnit->currentIndex();
    s.secondFileSizeState = stateOf(checkSecondFileSize);
    s.secondFileSizeComparisonItem = comboSecondFileSizeTermOfComparison->currentIndex();
    s.secondFileSize =
        static_cast<std::int64_t>(std::trunc(textFieldSecondFileSize->text().toDouble()));
    s.secondFileSizeUnit = comboSecondFileSizeUnit->currentIndex();
    s.customFileTypesState = stateOf(checkCustomFileTypes);
    s.customFileExtensions = extensionsList;
    s.customFileType = textFieldExtension->text().toStdString();
    s.customFilePathState = stateOf(checkCustomFilePath);
    s.customFilePath = QFile::encodeName(textFieldCustomFilePath->text()).toStdString();
    s.subfoldersState = stateOf(checkSubfolders);
    s.matchState = comboMatch->currentIndex();
}

void ViewControllerCustomKeep::setDefaultRules() {
    SettingsManager& s = *settingsManager;
    DateTime newYear2017 = 0;
    parseDayText("01/01/2017", newYear2017);
    s.firstDateState = 0;
    s.firstDateSelectedItem = 0;
    s.firstDateComparisonItem = 1;
    s.firstDate = newYear2017;
    s.secondDateState = 0;
    s.secondDateSelectedItem = 0;
    s.secondDateComparisonItem = 0;
    s.secondDate = newYear2017;
    s.firstFileSizeState = 0;
    s.firstFileSizeComparisonItem = 1;
    s.firstFileSize = 200;
    s.firstFileSizeUnit = 1;
    s.secondFileSizeState = 0;
    s.secondFileSizeComparisonItem = 0;
    s.secondFileSize = 100;
    s.secondFileSizeUnit = 3;
    s.customFileTypesState = 0;
    s.customFileExtensions.clear();
    s.customFileType = "jpg";
    s.customFilePathState = 0;
    s.customFilePath = groupFolder_;
    s.subfoldersState = 1;
    s.matchState = 0;
    extensionsList.clear();
}

void ViewControllerCustomKeep::reloadExtensions() {
    tableViewCustomFileTypes->clear();
    for (const std::string& extension : extensionsList) {
        tableViewCustomFileTypes->addItem(QString::fromStdString(extension));
    }
}

void ViewControllerCustomKeep::sizeFieldChanged(QLineEdit* field, const QString& fallback,
                                                Stepper* stepper) {
    field->setText(normalisedSizeText(field->text(), fallback));
    stepper->setValue(field->text().toDouble());
}

void ViewControllerCustomKeep::sizeStepperChanged(QLineEdit* field, Stepper* stepper) {
    field->setText(QString::asprintf("%.0f", stepper->value()));
}

void ViewControllerCustomKeep::OnFirstFileSizeChanged() {
    sizeFieldChanged(textFieldFirstFileSize, QStringLiteral("200"), stepperFirstFileSize);
}

void ViewControllerCustomKeep::OnSecondFileSizeChanged() {
    sizeFieldChanged(textFieldSecondFileSize, QStringLiteral("100"), stepperSecondFileSize);
}

void ViewControllerCustomKeep::OnStepperFirstFilesizeChanged() {
    sizeStepperChanged(textFieldFirstFileSize, stepperFirstFileSize);
}

void ViewControllerCustomKeep::OnStepperSecondFileSizeChanged() {
    sizeStepperChanged(textFieldSecondFileSize, stepperSecondFileSize);
}

void ViewControllerCustomKeep::OncustomFileTypesAddFileExtension() {
    const QString typed = textFieldExtension->text();
    const std::string extension = lowerCased(typed.toStdString());
    if (!typed.isEmpty() && std::find(extensionsList.begin(), extensionsList.end(), extension) ==
                                extensionsList.end()) {
        extensionsList.push_back(extension);
    }
    reloadExtensions();
}

void ViewControllerCustomKeep::OnCustomFileTypesRemoveSelected() {
    const int row = tableViewCustomFileTypes->currentRow();
    const QList<QListWidgetItem*> selected = tableViewCustomFileTypes->selectedItems();
    if (extensionsList.empty() || selected.isEmpty() || row < 0 ||
        static_cast<std::size_t>(row) >= extensionsList.size()) {
        return;
    }
    extensionsList.erase(extensionsList.begin() + row);
    reloadExtensions();
}

void ViewControllerCustomKeep::OnCustomFileTypesRemoveAll() {
    if (!extensionsList.empty()) {
        extensionsList.clear();
        reloadExtensions();
    }
}

void ViewControllerCustomKeep::OnBrowse() {
    // A folder typed here that is not there is reported by OK, with the rule.
    FolderDialog dialog(this, tr("Select File Path"), false);
    dialog.setObjectName(QStringLiteral("BrowseFolder"));
    const QString current = textFieldCustomFilePath->text();
    if (isFolder(current)) {
        dialog.setDirectory(current);
    }
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        textFieldCustomFilePath->setText(QDir::cleanPath(dialog.selectedFiles().front()));
    }
}

void ViewControllerCustomKeep::OnOk() {
    if (!isFolder(textFieldCustomFilePath->text()) && checkCustomFilePath->isChecked()) {
        showInformation(this, tr("The custom file path you entered is not valid. "
                                 "Please enter a valid path."));
        return;
    }
    saveRuleControls();
    settingsManager->customSettingsOption = "OK";
    accept();
}

void ViewControllerCustomKeep::OnCancel() {
    settingsManager->customSettingsOption = "Cancel";
    reject();
}

void ViewControllerCustomKeep::OnReset() {
    setDefaultRules();
    loadRuleControls();
}

} // namespace twinsweep::ui
