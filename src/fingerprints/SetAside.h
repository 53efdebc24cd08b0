// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace twinsweep {

// Renames entry name inside the folder at dirFd to a dated name beside it
// ("NAME.set-aside-YYYYMMDD-HHMMSS", with "-2", "-3" after it when taken),
// never over an existing entry. The new name, or "" with errno set.
std::string setAside(int dirFd, const std::string& name);

} // namespace twinsweep
