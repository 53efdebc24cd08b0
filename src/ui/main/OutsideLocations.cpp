// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/main/OutsideLocations.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>

#include "engine/LocationGate.h"

namespace twinsweep::ui {

namespace {

QString shown(const std::string& path) {
    return QFile::decodeName(QByteArray::fromStdString(path));
}

// "a, b and c".
QString listed(const QStringList& items) {
    if (items.size() < 2) {
        return items.join(QString());
    }
    return items.mid(0, items.size() - 1).join(QStringLiteral(", ")) +
           QCoreApplication::translate("OutsideLocations", " and ") + items.back();
}

} // namespace

QString outsideLocationsText(const LocationGate& gate, const std::vector<std::string>& folders) {
    if (gate.open) {
        return {};
    }
    QStringList outside;
    for (const std::string& folder : folders) {
        // Whatever lies in the folder has a path that begins with folder + "/"
        // (the walk joins names that way); the gate either lets all of it pass
        // or drops some or all of it.
        if (!gate.allows(folder + "/", {})) {
            outside << shown(folder);
        }
    }
    if (outside.isEmpty()) {
        return {};
    }
    QStringList roots;
    for (const auto* kind : {&gate.usersRoots, &gate.applicationsRoots, &gate.volumesRoots}) {
        for (const std::string& root : *kind) {
            roots << shown(root);
        }
    }
    return QCoreApplication::translate("OutsideLocations",
                                       "The search looks only under %1. Outside those locations: "
                                       "%2.")
        .arg(listed(roots), outside.join(QStringLiteral(", ")));
}

} // namespace twinsweep::ui
