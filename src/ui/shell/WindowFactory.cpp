// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/shell/WindowFactory.h"

#include <QHash>

#include "settings/SettingsManager.h"
#include "ui/customkeep/ViewControllerCustomKeep.h"
#include "ui/duplicates/ViewControllerDuplicates.h"
#include "ui/info/ViewControllerInfo.h"
#include "ui/progress/ViewControllerProgress.h"

namespace twinsweep::ui {

namespace {

QHash<QString, WindowFactory::Maker>& makers() {
    static QHash<QString, WindowFactory::Maker> table = [] {
        QHash<QString, WindowFactory::Maker> t;
        t.insert(kWindowControllerProgress,
                 [](QWidget* opener) { return std::make_unique<ViewControllerProgress>(opener); });
        t.insert(kWindowControllerDuplicates, [](QWidget* opener) {
            return std::make_unique<ViewControllerDuplicates>(opener);
        });
        t.insert(kWindowControllerCustomKeep, [](QWidget* opener) {
            // The rules edited are those of the results window's selected group.
            auto* results = qobject_cast<ViewControllerDuplicates*>(opener);
            std::string folder =
                results ? results->groupFolder(SettingsManager::shared()->selectedFile) : "";
            return std::make_unique<ViewControllerCustomKeep>(opener, std::move(folder));
        });
        t.insert(kWindowControllerInfo,
                 [](QWidget* opener) { return std::make_unique<ViewControllerInfo>(opener); });
        return t;
    }();
    return table;
}

} // namespace

void WindowFactory::registerWindow(const QString& identifier, Maker maker) {
    makers().insert(identifier, std::move(maker));
}

std::unique_ptr<ModalWindow> WindowFactory::make(const QString& identifier, QWidget* opener) {
    const auto found = makers().constFind(identifier);
    if (found == makers().constEnd()) {
        return nullptr;
    }
    return (*found)(opener);
}

bool WindowFactory::runModal(const QString& identifier, QWidget* opener) {
    std::unique_ptr<ModalWindow> window = make(identifier, opener);
    if (!window) {
        return false;
    }
    window->runModal();
    return true;
}

} // namespace twinsweep::ui
