// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace twinsweep::ui {

enum class HelpTopic { RemovingDuplicates, CustomSelection };

// Opens the address in the user's default browser. An address that can't be
// parsed does nothing, and the browser's answer is not waited for.
void OpenHelpVideo(const QString& address);

// The address of a help page. The pages ship inside the application and are
// written to the user's cache folder on first use, so they open offline.
QString helpPageAddress(HelpTopic topic);

} // namespace twinsweep::ui
