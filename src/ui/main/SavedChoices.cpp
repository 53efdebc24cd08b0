// SPDX-License-Identifier: GPL-3.0-or-later
// The folder list outlives the application: written on every change, in the
// user's configuration folder ($XDG_CONFIG_HOME/twinsweep/twinsweep.ini).
// Every start still begins from the defaults, an empty list; File > Reopen
// Last Folders brings the saved one back.
#include <QByteArrayList>
#include <QSettings>
#include <algorithm>
#include <sys/stat.h>

#include "settings/SettingsManager.h"
#include "ui/main/FolderModel.h"
#include "ui/main/ViewController.h"

namespace twinsweep::ui {

namespace {

constexpr auto kFolders = "folders/list";
constexpr auto kProtected = "folders/protected";

QSettings savedChoices() {
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("twinsweep"),
                     QStringLiteral("twinsweep"));
}

// Paths are bytes: names that are not valid UTF-8 come back unchanged.
QVariantList asList(const std::vector<std::string>& paths) {
    QVariantList out;
    for (const std::string& path : paths) {
        out << QByteArray::fromStdString(path);
    }
    return out;
}

std::vector<std::string> asPaths(const QVariant& saved) {
    std::vector<std::string> out;
    for (const QVariant& item : saved.toList()) {
        const std::string path = item.toByteArray().toStdString();
        if (!path.empty() && std::find(out.begin(), out.end(), path) == out.end()) {
            out.push_back(path);
        }
    }
    return out;
}

// A folder removed or renamed since is left out, as the add panel would.
std::vector<std::string> savedFolders(const QSettings& saved) {
    std::vector<std::string> folders;
    for (std::string& path : asPaths(saved.value(QString::fromLatin1(kFolders)))) {
        struct stat info {};
        if (::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
            folders.push_back(std::move(path));
        }
    }
    return folders;
}

} // namespace

void ViewController::rememberChoices() {
    savesChoices_ = true;
}

bool ViewController::hasSavedFolders() const {
    return !savedFolders(savedChoices()).empty();
}

void ViewController::restoreSavedChoices() {
    const QSettings saved = savedChoices();
    std::vector<std::string> folders = savedFolders(saved);
    std::vector<std::string> protectedFolders;
    for (std::string& path : asPaths(saved.value(QString::fromLatin1(kProtected)))) {
        if (std::find(folders.begin(), folders.end(), path) != folders.end()) {
            protectedFolders.push_back(std::move(path));
        }
    }
    settingsManager->listFolderPaths = std::move(folders);
    settingsManager->protectedFolders = std::move(protectedFolders);
    savesChoices_ = true;
    folderModel_->reload();
}

void ViewController::saveChoices() const {
    if (!savesChoices_) {
        return;
    }
    QSettings saved = savedChoices();
    saved.setValue(QString::fromLatin1(kFolders), asList(settingsManager->listFolderPaths));
    saved.setValue(QString::fromLatin1(kProtected), asList(settingsManager->protectedFolders));
}

} // namespace twinsweep::ui
