// SPDX-License-Identifier: GPL-3.0-or-later
// A clean killed at any moment leaves nothing hidden: the next clean, whatever
// it searches, puts back or finishes what the killed one left.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "FaultSupport.h"
#include "KillAt.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

// A clean of an unrelated folder with its state in state.
CliOutcome cleanElsewhere(const TempTree& state, const std::string& folder) {
    CliRun run{{"--any-location", "--keep", "oldest", "--delete", "--yes", folder}};
    run.env = {"XDG_STATE_HOME=" + state.root()};
    return runCli(run);
}

} // namespace

TEST(Recovery, AKilledCleanIsPutBackByTheNextRunWhateverItSearches) {
    struct Moment {
        const char* what;
        const char* removal;
        std::function<bool(const SyscallEntry&)> when;
        const char* note;
    };
    const std::vector<Moment> moments{
        {"a copy waits aside", "--delete",
         [](const SyscallEntry& e) {
             return e.nr == SYS_unlinkat && e.text(1).starts_with(".twinsweep-aside-");
         },
         ": put back, left aside by a clean that was stopped"},
        {"a link waits, not yet swapped in", "--link",
         [](const SyscallEntry& e) {
             return e.nr == SYS_renameat2 && e.args[4] == RENAME_EXCHANGE;
         },
         ": a link a stopped clean had not put in place was removed; the copy is unchanged"},
        {"a link was swapped in, the old copy waits", "--link",
         [](const SyscallEntry& e) {
             return e.nr == SYS_unlinkat && e.text(1).starts_with(".twinsweep-link-");
         },
         ": linked to the kept copy by a clean that was stopped; its old copy was freed"},
    };
    TempTree state;
    TempTree unrelated;
    unrelated.write("lonely", "no twin here");
    for (const Moment& m : moments) {
        SCOPED_TRACE(m.what);
        TempTree tree;
        for (const char* f : {"a/thesis.tex", "b/thesis.tex"}) {
            own(tree.write(f, "chapter one, two, three"), 2001);
        }
        const Snapshot before = snapshot(tree.root());
        CliRun run{{"--any-location", "--keep", "oldest", "--yes", m.removal, tree.root()}};
        run.env = {"XDG_STATE_HOME=" + state.root()};
        bool killed = false;
        const CliOutcome k = killedAt(run, m.when, killed);
        ASSERT_TRUE(killed) << k.err;
        EXPECT_NE(snapshot(tree.root()), before); // something is hidden now

        const CliOutcome next = cleanElsewhere(state, unrelated.root());
        EXPECT_EQ(next.status, 0) << next.err;
        EXPECT_TRUE(says(next.err, "Note:   " + tree.root()));
        EXPECT_TRUE(says(next.err, std::string("/thesis.tex") + m.note));
        EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
        EXPECT_EQ(snapshot(tree.root()).size(), before.size());
        // Once is enough: the journal forgot it.
        EXPECT_FALSE(says(cleanElsewhere(state, unrelated.root()).err, "Note:   "));
    }
}

TEST(Recovery, ARecordOfAnotherBootIsRecoveredThoughItsPidNowRuns) {
    TempTree tree;
    TempTree state;
    TempTree unrelated;
    tree.write("docs/.twinsweep-aside-1-0-thesis.tex", "the only copy");
    struct stat folder {};
    ASSERT_EQ(::stat(tree.path("docs").c_str(), &folder), 0);
    const Snapshot before = snapshot(tree.root());
    // pid 1 runs, but this record was written before the machine started.
    std::string record;
    for (const std::string& field : std::vector<std::string>{
             "twinsweep-journal-1", "aside", "00000000-0000-0000-0000-000000000000", "1", "1",
             tree.path("docs"), std::to_string(folder.st_dev), std::to_string(folder.st_ino),
             ".twinsweep-aside-1-0-thesis.tex", "thesis.tex",
             inodeOf(tree.path("docs/.twinsweep-aside-1-0-thesis.tex")), "0", "end"}) {
        record += field + '\0';
    }
    state.write("twinsweep/journal/1-1-0", record);
    ::chmod(state.path("twinsweep").c_str(), 0700);
    ::chmod(state.path("twinsweep/journal").c_str(), 0700);

    const CliOutcome r = cleanElsewhere(state, unrelated.root());
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(says(r.err, "Note:   " + tree.path("docs/thesis.tex") +
                                ": put back, left aside by a clean that was stopped"));
    EXPECT_TRUE(
        nothingLost(before, snapshot(tree.root()), {"docs/.twinsweep-aside-1-0-thesis.tex"}));
    EXPECT_EQ(snapshot(tree.root()).at("docs/thesis.tex"),
              fileEntry("the only copy", tree.path("docs/thesis.tex")));
}
