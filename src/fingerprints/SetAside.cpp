// SPDX-License-Identifier: GPL-3.0-or-later
#include "fingerprints/SetAside.h"

#include <cerrno>
#include <ctime>

#include "removal/Fd.h"

namespace twinsweep {

std::string setAside(int dirFd, const std::string& name) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", &local);
    const std::string base = name + ".set-aside-" + stamp;
    for (int n = 1; n < 100; ++n) {
        const std::string to = n == 1 ? base : base + "-" + std::to_string(n);
        if (renameNoReplace(dirFd, name, dirFd, to) == 0) {
            return to;
        }
        if (errno != EEXIST) {
            return {};
        }
    }
    errno = EEXIST;
    return {};
}

} // namespace twinsweep
