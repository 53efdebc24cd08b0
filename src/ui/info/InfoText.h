// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QSize>
#include <string>

namespace twinsweep::ui {

// The last component of path without its extension: "Photo" for
// ".../Photo.JPG", "archive.tar" for ".../archive.tar.gz", the whole name when
// it has no extension (a leading dot alone does not start one).
std::string nameWithoutExtension(const std::string& path);

// The extension of path's last component, its case kept ("JPG"); "" for none.
std::string extensionKeepingCase(const std::string& path);

// Whether files with this extension (compared lower-cased) get their picture
// as preview.
bool isPreviewPicture(const std::string& extension);

// The picture in the file at path, scaled down to fit bound; a null image
// when the file is not one of the preview pictures or can't be read as one.
// Safe on any thread.
QImage loadPreviewPicture(const std::string& path, QSize bound);

} // namespace twinsweep::ui
