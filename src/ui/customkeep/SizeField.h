// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace twinsweep::ui {

// What a size field holds after the user edits it: the text itself when it is
// one finite decimal number from 0 to 100000, "0" below that range, "100000"
// above it, and fallback when it is not a number at all (spaces, other
// characters, infinities and hexadecimal included).
QString normalisedSizeText(const QString& text, const QString& fallback);

} // namespace twinsweep::ui
