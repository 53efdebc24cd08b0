// SPDX-License-Identifier: GPL-3.0-or-later
// The comparison phase: the steps over the size-ordered list, each group
// formed by one of two strategies: equal size alone for large files, the
// digest pipeline's verdicts for the rest.
#include <algorithm>
#include <optional>

#include "engine/DigestPipeline.h"
#include "engine/FileTools.h"

namespace twinsweep {

struct FileTools::Runs {
    // Runs of equal size that are compared by content, for the pipeline.
    std::vector<DigestPipeline::Run> list;
    std::uint64_t bytes = 0; // their bytes, all files counted
};

FileTools::Runs FileTools::contentRuns() const {
    Runs runs;
    const std::size_t n = fileList.size();
    for (std::size_t i = 0; i < n;) {
        std::size_t j = i + 1;
        while (j < n && fileList[j]->size == fileList[i]->size) {
            ++j;
        }
        if (j - i >= 2 && byContent(fileList[i]->size)) {
            runs.list.push_back({i, j});
            runs.bytes += (j - i) * fileList[i]->size;
        }
        i = j;
    }
    return runs;
}

bool FileTools::compareBySize(std::size_t i) {
    const std::size_t n = fileList.size();
    File& a = *fileList[i];
    for (std::size_t j = i + 1; j < n && fileList[j]->size == a.size; ++j) {
        File& b = *fileList[j];
        b.wasFound = true;
        a.duplicates.push_back(memberFor(b));
        if (j + 1 < n && fileList[j + 1]->size == a.size && canceled()) {
            return false;
        }
    }
    return true;
}

bool FileTools::comparisonPhase() {
    const std::size_t n = fileList.size();
    const Runs runs = contentRuns();
    SearchContext& context = *context_;
    context.phases.begin(SearchPhase::Comparison, n, runs.bytes);
    struct EndPhase {
        SearchContext& context;
        ~EndPhase() { context.phases.end(); }
    } endPhase{context};
    // What the readers fingerprinted is kept however the comparison ends,
    // once the readers have stopped (the pipeline goes first).
    struct Flush {
        FingerprintStore* store;
        ~Flush() {
            if (store != nullptr) {
                store->flush();
            }
        }
    } flush{fingerprints.get()};
    context.bytes->start(runs.bytes);
    std::optional<DigestPipeline> pipeline;
    if (!runs.list.empty()) {
        pipeline.emplace(fileList, runs.list, std::max(1U, digestThreads), context.cancel,
                         *context.bytes, context.diagnostics, fingerprints.get());
    }

    std::size_t run = 0;
    for (std::size_t i = 0; i + 1 < n; ++i) {
        postComparisonStep(i);
        if (canceled()) {
            return false;
        }
        File& a = *fileList[i];
        if (a.wasFound || a.size != fileList[i + 1]->size) {
            continue;
        }
        if (canceled()) {
            return false;
        }
        if (!byContent(a.size)) {
            if (!compareBySize(i)) {
                return false;
            }
            continue;
        }
        while (runs.list[run].end <= i) {
            ++run;
        }
        if (!pipeline->waitFor(run)) {
            return false;
        }
        // Follow the chain of equal contents instead of testing every pair:
        // the same copies, in the same order.
        const std::size_t begin = runs.list[run].begin;
        for (std::size_t k = i - begin, step = 0; (step = pipeline->nextCopy(run, k)) != 0;) {
            k += step;
            File& b = *fileList[begin + k];
            b.wasFound = true;
            a.duplicates.push_back(memberFor(b));
            if (canceled()) {
                return false;
            }
        }
    }
    // After the last step: every file checked.
    userInfo[kCheckedFiles] = static_cast<std::int64_t>(n);
    context.phases.advance(n, context.bytes->done());
    post(kUpdateProgress);
    return true;
}

} // namespace twinsweep
