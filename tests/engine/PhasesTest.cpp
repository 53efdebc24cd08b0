// SPDX-License-Identifier: GPL-3.0-or-later
// The search's phases over the context its starter hands in: their figures
// and times, its sink, its cancel flag.
#include <gtest/gtest.h>

#include <unistd.h>

#include "SearchSupport.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

TEST(SearchPhases, EachPhaseIsTimedWithItsFiguresAndTheRunsSinkGetsItsLines) {
    TempTree tree;
    for (const char* name : {"a", "b", "e"}) {
        tree.write(name, "twins");
    }
    tree.write("c", "lonely!");
    // Once the walk has all four, e goes: the comparison can't read it.
    bool gone = false;
    ScopedObserver vanish(kUpdateProgress, [&](const std::string&, const UserInfo& info) {
        if (info.at(kTotalFiles) == 4 && !gone) {
            gone = true;
            ::unlink(tree.path("e").c_str());
        }
    });
    FileTools tools;
    prepare(tools, 2);
    const AtomicFlag never;
    CollectedDiagnostics said;
    SearchContext context(never, said);
    DiagnosticsCapture elsewhere;
    const FileList heads =
        tools.findDuplicateFiles(context, {tree.root()}, 0, UINT64_MAX, true, {});
    EXPECT_EQ(elsewhere.finish(), "");
    EXPECT_EQ(said.lines(),
              std::vector<std::string>{"Ooops! Something went wrong: " + tree.path("e") +
                                       ": No such file or directory"});
    EXPECT_EQ(heads.size(), 3U);

    std::vector<std::string> names;
    std::vector<std::uint64_t> items, bytes;
    for (const PhaseProgress::Timing& t : context.phases.timings()) {
        names.emplace_back(phaseName(t.phase));
        items.push_back(t.items);
        bytes.push_back(t.bytes);
        EXPECT_GE(t.seconds, 0.0);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"walk", "size order", "comparison", "collection"}));
    EXPECT_EQ(items, (std::vector<std::uint64_t>{4, 4, 4, 4}));
    // Found, sorted, compared (the three of one size), kept as heads (c, a, e).
    EXPECT_EQ(bytes, (std::vector<std::uint64_t>{22, 22, 15, 17}));
    const PhaseProgress::Figures last = context.figures();
    EXPECT_TRUE(last.started);
    EXPECT_EQ(last.phase, SearchPhase::Collection);
    EXPECT_EQ(last.items, 4U);
}

TEST(SearchPhases, OnlyTheContextsFlagCancelsARun) {
    TempTree tree;
    tree.write("a", "same");
    tree.write("b", "same");
    SettingsManager::shared()->searchCanceledByUser = true;
    AtomicFlag cancel;
    for (const bool cancelled : {false, true}) {
        cancel = cancelled;
        FileTools tools;
        prepare(tools, 1);
        SettingsManager::shared()->searchCanceledByUser = true; // not this run's flag
        SearchContext context(cancel);
        PostLog log;
        const FileList heads =
            tools.findDuplicateFiles(context, {tree.root()}, 0, UINT64_MAX, true, {});
        EXPECT_EQ(heads.size(), cancelled ? 0U : 1U);
        EXPECT_EQ(log.count(kSearchThreadFinished), cancelled ? 1 : 0);
        // A cancelled walk is the only phase that ran.
        EXPECT_EQ(context.phases.timings().size(), cancelled ? 1U : 4U);
    }
    SettingsManager::shared()->searchCanceledByUser = false;
}
