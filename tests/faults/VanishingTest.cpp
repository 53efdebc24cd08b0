// Files that vanish or change while a search runs. Progress notifications
// arrive synchronously on the search thread, so an observer acts at an exact
// point of the run.
#include <gtest/gtest.h>

#include <unistd.h>

#include "CoreSupport.h"
#include "FaultSupport.h"
#include "support/TempTree.h"

using namespace twinsweep;
using namespace twinsweep::testing;

TEST(Faults, FilesThatVanishOrChangeBeforeTheirContentsAreReadAreNotCopies) {
    for (const unsigned threads : {0U, 2U}) {
        SCOPED_TRACE(threads);
        TempTree tree;
        const std::string twin(64, 't');
        for (const char* name : {"a", "b", "c", "d", "e"}) {
            tree.write(name, twin);
        }
        const Snapshot before = snapshot(tree.root());
        // Once every file has been taken (its size read), d gets other bytes
        // of the same length and e goes, before the comparison reads either.
        bool done = false;
        ScopedObserver observer{kUpdateProgress, [&](const std::string&, const UserInfo& info) {
                                    if (!done && info.at(kTotalFiles) == 5) {
                                        done = true;
                                        rewriteInPlace(tree.path("d"), std::string(64, 'd'));
                                        ::unlink(tree.path("e").c_str());
                                    }
                                }};
        StdoutCapture out;
        const FileList groups = searchJob(tree.root(), threads);
        EXPECT_EQ(out.finish(), "Ooops! Something went wrong: " + tree.path("e") +
                                    ": No such file or directory\n");
        EXPECT_TRUE(done);
        EXPECT_EQ(groupSets(groups, tree.root()),
                  (std::set<std::set<std::string>>{{"a", "b", "c"}}));
        Snapshot expected = before;
        expected["d"] = fileEntry(std::string(64, 'd'));
        EXPECT_TRUE(nothingLost(expected, snapshot(tree.root()), {"e"}));
    }
}
