// SPDX-License-Identifier: GPL-3.0-or-later
// Times the phases of one search (walk, size order, comparison, collection)
// as the search context records them. Usage: search-phases FOLDER [DIGEST_THREADS]
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
    const AtomicFlag never;
    SearchContext context(never);
    const auto start = Clock::now();
    const FileList heads = tools.findDuplicateFiles(context, {argv[1]}, 1, UINT64_MAX, true, {});
    const std::chrono::duration<double, std::milli> total = Clock::now() - start;
    std::size_t groups = 0;
    for (const FilePtr& h : heads) {
        groups += h->duplicates.empty() ? 0 : 1;
    }
    // The files the walk took: the list itself is handed back as the heads.
    const std::vector<PhaseProgress::Timing> timings = context.phases.timings();
    std::printf("files %llu groups %zu |",
                static_cast<unsigned long long>(timings.empty() ? 0 : timings.front().items),
                groups);
    for (const PhaseProgress::Timing& t : timings) {
        std::printf(" %s %.1f ms,", std::string(phaseName(t.phase)).c_str(), t.seconds * 1000);
    }
    std::printf(" total %.1f ms\n", total.count());
    return 0;
}
