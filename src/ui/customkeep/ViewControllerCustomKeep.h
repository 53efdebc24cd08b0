// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "settings/SettingsManager.h"
#include "ui/shell/ModalWindow.h"

class QCheckBox;
class QComboBox;
class QDateTimeEdit;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace twinsweep::ui {

class Stepper;

// Edits the custom rule set held in the shared settings: two date rules, two
// size rules, a file-type rule with its own extension list, a folder rule and
// match / don't match. OK validates the folder and writes the rules back;
// every other way out counts as Cancel and writes nothing (Reset excepted,
// which writes the defaults at once).
class ViewControllerCustomKeep : public ModalWindow {
    Q_OBJECT
  public:
    // groupFolder is the folder of the group whose rules are edited; it stands
    // in for a folder rule that was never set.
    ViewControllerCustomKeep(QWidget* opener, std::string groupFolder);

    std::vector<std::string> extensionsList;
    std::shared_ptr<SettingsManager> settingsManager;
    QCheckBox* checkFirstDate = nullptr;
    QComboBox* comboFirstDateType = nullptr;
    QComboBox* comboFirstDateTermOfComparison = nullptr;
    QDateTimeEdit* dataPickerFirstDate = nullptr;
    QCheckBox* checkSecondDate = nullptr;
    QComboBox* comboSecondDateType = nullptr;
    QComboBox* comboSecondDateTermOFComparison = nullptr;
    QDateTimeEdit* dataPickerSecondDate = nullptr;
    QCheckBox* checkFirstFileSize = nullptr;
    QComboBox* comboFirstFileSizeTermOfComparison = nullptr;
    QLineEdit* textFieldFirstFileSize = nullptr;
    Stepper* stepperFirstFileSize = nullptr;
    QComboBox* comboFirstFileSizeUnit = nullptr;
    QCheckBox* checkSecondFileSize = nullptr;
    QComboBox* comboSecondFileSizeTermOfComparison = nullptr;
    QLineEdit* textFieldSecondFileSize = nullptr;
    Stepper* stepperSecondFileSize = nullptr;
    QComboBox* comboSecondFileSizeUnit = nullptr;
    QCheckBox* checkCustomFileTypes = nullptr;
    QListWidget* tableViewCustomFileTypes = nullptr;
    QLineEdit* textFieldExtension = nullptr;
    QCheckBox* checkCustomFilePath = nullptr;
    QLineEdit* textFieldCustomFilePath = nullptr;
    QCheckBox* checkSubfolders = nullptr;
    QComboBox* comboMatch = nullptr;
    QPushButton* buttonOk = nullptr;
    QPushButton* buttonCancel = nullptr;
    QPushButton* buttonReset = nullptr;

  public slots:
    void OnFirstFileSizeChanged();
    void OnSecondFileSizeChanged();
    void OnStepperFirstFilesizeChanged();
    void OnStepperSecondFileSizeChanged();
    void OncustomFileTypesAddFileExtension();
    void OnCustomFileTypesRemoveSelected();
    void OnCustomFileTypesRemoveAll();
    void OnBrowse();
    void OnOk();
    void OnCancel();
    void OnReset();

  private:
    void buildLayout();
    void describeControls();
    void viewDidLoad();
    void loadRuleControls();
    void saveRuleControls();
    void setDefaultRules();
    void reloadExtensions();
    void sizeFieldChanged(QLineEdit* field, const QString& fallback, Stepper* stepper);
    void sizeStepperChanged(QLineEdit* field, Stepper* stepper);

    std::string groupFolder_;
};

} // namespace twinsweep::ui
