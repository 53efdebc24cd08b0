// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace twinsweep::ui {

// Shows the item at path selected in the desktop's file manager, through the
// freedesktop FileManager1 interface on the session bus. Without a file
// manager that answers it, the item's folder is opened instead. Returns at
// once; the file manager is not waited for.
void revealInFileManager(const std::string& path);

// The folder revealInFileManager falls back to: path without its last part.
std::string parentFolder(const std::string& path);

} // namespace twinsweep::ui
