// SPDX-License-Identifier: GPL-3.0-or-later
// Times the phases of one search (walk, sort, comparison, collection) from
// the progress posts. Usage: search-phases FOLDER [DIGEST_THREADS]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "engine/FileTools.h"
#include "settings/SettingsManager.h"

using namespace twinsweep;
using Clock = std::chrono::steady_clock;

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: search-phases FOLDER [DIGEST_THREADS]\n");
        return 2;
    }
    FileTools tools;
    tools.locationGate = LocationGate::anywhere();
    if (argc > 2) {
        tools.digestThreads = static_cast<unsigned>(std::atoi(argv[2]));
    }
    const auto start = Clock::now();
    Clock::time_point walkEnd = start;
    Clock::time_point compareStart{};
    Clock::time_point compareEnd{};
    ScopedObserver progress(kUpdateProgress, [&](const std::string&, const UserInfo& info) {
        const auto now = Clock::now();
        const std::int64_t checked = info.at(kCheckedFiles);
        if (checked == 0) {
            walkEnd = now;
        } else if (checked == 1) {
            compareStart = now;
        }
        if (checked == info.at(kTotalFiles)) {
            compareEnd = now;
        }
    });
    const FileList heads = tools.findDuplicateFiles({argv[1]}, 1, UINT64_MAX, true, {});
    const auto end = Clock::now();
    auto ms = [](Clock::duration d) {
        return std::chrono::duration_cast<std::chrono::microseconds>(d).count() / 1000.0;
    };
    std::size_t groups = 0;
    for (const FilePtr& h : heads) {
        groups += h->duplicates.empty() ? 0 : 1;
    }
    std::printf("files %zu groups %zu | walk %.1f ms, sort %.1f ms, compare %.1f ms, collect "
                "%.1f ms, total %.1f ms\n",
                tools.fileList.size(), groups, ms(walkEnd - start), ms(compareStart - walkEnd),
                ms(compareEnd - compareStart), ms(end - compareEnd), ms(end - start));
    return 0;
}
