// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <string>

namespace twinsweep::ui {

// A text the plain C++ libraries give the windows (an alert's sentence or
// button), in the user's language. Texts listed in CoreTexts.cpp are
// translated under the context "CoreText"; any other text (a path, an
// error from the system) comes back as it is.
QString coreText(const std::string& text);
QString coreText(const QString& text);

} // namespace twinsweep::ui
