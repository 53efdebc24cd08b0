#include "ui/shell/WindowFactory.h"

#include <QHash>

#include "ui/placeholder/PlaceholderWindow.h"
#include "ui/progress/ViewControllerProgress.h"

namespace twinsweep::ui {

namespace {

QHash<QString, WindowFactory::Maker>& makers() {
    static QHash<QString, WindowFactory::Maker> table = [] {
        QHash<QString, WindowFactory::Maker> t;
        t.insert(kWindowControllerProgress,
                 [](QWidget* opener) { return std::make_unique<ViewControllerProgress>(opener); });
        t.insert(kWindowControllerDuplicates, [](QWidget* opener) {
            return std::make_unique<PlaceholderWindow>(opener, QStringLiteral("Duplicate Files"),
                                                       true);
        });
        t.insert(kWindowControllerCustomKeep, [](QWidget* opener) {
            return std::make_unique<PlaceholderWindow>(opener, QStringLiteral("Custom Selection"));
        });
        t.insert(kWindowControllerInfo, [](QWidget* opener) {
            return std::make_unique<PlaceholderWindow>(opener, QStringLiteral("File Information"));
        });
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
