// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QString>
#include <string>

namespace twinsweep::ui {

// Picks the icon theme once, before any window shows an icon: without a
// desktop session Qt names none, and alerts would draw the toolkit's own
// warning sign until a file icon chose a theme, then the theme's.
void chooseIconTheme();

// The icon the desktop shows for files with this extension (lower-case, no
// dot; empty for none). Looked up by media type in the icon theme, falling
// back to the toolkit's generic file icon. Cached per extension.
QIcon iconForExtension(const QString& extension);

// The icon for the type of the file at path, from its extension only; the
// file itself is not read.
QIcon fileIcon(const std::string& path);

} // namespace twinsweep::ui
