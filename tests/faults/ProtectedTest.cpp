// SPDX-License-Identifier: GPL-3.0-or-later
// No keep option, rule or clean touches a copy in a protected folder.
#include <sys/mount.h>
#include <unistd.h>

#include "CoreSupport.h"
#include "selection/CustomMarking.h"
#include "selection/CustomSettingsText.h"
#include "selection/KeepOptions.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using Flags = std::map<std::string, bool>;

namespace {

struct Protected : ::testing::Test {
    TempTree tree;
    std::shared_ptr<SettingsManager> settings = SettingsManager::shared();
    void TearDown() override {
        settings->protectedFolders.clear();
        settings->duplicateFileList.clear();
        resetCustomSettings(*settings);
    }
    // Each member (relative to the tree) with its protected flag.
    Flags flags(const File& group) const {
        Flags out;
        for (const DuplicateFilePtr& m : group.duplicates) {
            out[rel(tree.root(), m->path)] = m->isProtected;
        }
        return out;
    }
};

// Every member is marked unless it is protected: the option marks all it may.
void expectOnlyUnprotectedMarked(const File& group, const char* how) {
    for (const DuplicateFilePtr& m : group.duplicates) {
        EXPECT_EQ(m->checkState, m->isProtected ? 0 : 1) << how << ": " << m->path;
    }
}

} // namespace

TEST_F(Protected, NoKeepOptionOrRuleMarksAProtectedCopyAndCleaningRefusesOne) {
    for (const char* p : {"photos/a.jpg", "photos2/a.jpg", "dl/a.jpg", "dl/b.jpg"}) {
        tree.write(p, "the same picture");
    }
    // Copies inside the protected folder alone: not listed.
    tree.write("photos/p1.txt", "only protected");
    tree.write("photos/sub/p2.txt", "only protected");
    // A trailing slash still means the folder, and photos2 is not inside it.
    settings->protectedFolders = {tree.path("photos") + "/"};
    const FileList groups = searchJob(tree.root(), 2);
    ASSERT_EQ(groups.size(), 1u);
    File& g = *groups[0];
    EXPECT_EQ(flags(g), (Flags{{"dl/a.jpg", false},
                               {"dl/b.jpg", false},
                               {"photos/a.jpg", true},
                               {"photos2/a.jpg", false}}));
    for (std::int64_t option : {kKeepOldest, kKeepNewest, kRemoveAll}) {
        applyKeepOption(g, option, groups);
        expectOnlyUnprotectedMarked(g, "keep option");
    }
    // Rules every copy passes (no types), on one group and on all.
    settings->customFileTypesState = 1;
    settings->customSettingsOption = "OK";
    ASSERT_TRUE(applyCustomRules(g, *settings));
    expectOnlyUnprotectedMarked(g, "rules");
    settings->customMessageRespone = 1;
    ASSERT_TRUE(applyCustomRulesToAll(groups, *settings));
    expectOnlyUnprotectedMarked(g, "rules, all groups");

    // A protected copy marked all the same (by a fault elsewhere) stays.
    for (const DuplicateFilePtr& m : g.duplicates) {
        m->checkState = 1;
    }
    const Snapshot before = snapshot(tree.root());
    const CleaningReport report = cleanForGood();
    EXPECT_EQ(report.failed, 1);
    EXPECT_TRUE(
        nothingLost(before, snapshot(tree.root()), {"dl/a.jpg", "dl/b.jpg", "photos2/a.jpg"}));
}

TEST_F(Protected, AFolderReachedThroughALinkIsProtectedByIdentity) {
    tree.write("search/x.jpg", "same bytes");
    tree.write("real/y.jpg", "same bytes");
    tree.symlink("../real", "search/alias");
    settings->protectedFolders = {tree.path("real")};
    const FileList groups = searchJob(tree.path("search"), 0);
    ASSERT_EQ(groups.size(), 1u);
    EXPECT_EQ(flags(*groups[0]), (Flags{{"search/alias/y.jpg", true}, {"search/x.jpg", false}}));
}

TEST_F(Protected, CommandLineProtectsSearchesAndMarksProtectedCopies) {
    for (const char* p : {"photos/a.jpg", "photos2/a.jpg", "dl/a.jpg"}) {
        tree.write(p, "the same picture");
    }
    std::vector<std::string> args = {
        "--any-location", "--protect", tree.path("photos"), tree.path("dl"), tree.path("photos2"),
        "--format",       "json"};
    const CliOutcome json = runCli(args);
    EXPECT_TRUE(says(json.out, tree.path("photos/a.jpg") + "\",\"date\":"));
    EXPECT_TRUE(says(json.out, "\"protected\":true}"));

    args.insert(args.end(), {"--keep", "none", "--delete", "--yes"});
    const Snapshot before = snapshot(tree.root());
    const CliOutcome cleaned = runCli(args);
    EXPECT_EQ(cleaned.status, 0) << cleaned.err;
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {"dl/a.jpg", "photos2/a.jpg"}));
}

TEST_F(Protected, ByIdentityThroughBindMountsAndLinkedParents) {
    if (!privateMounts()) {
        GTEST_SKIP() << "no mount namespace here (needs root and unshare)";
    }
    // The older copies are outside the protected folders: keeping the oldest
    // would mark the protected ones, were they not seen as protected.
    tree.write("search/dup.jpg", "protected bytes");
    tree.write("search/Other.app/Contents/prot2/x", "package bytes");
    tree.write("search/c1.txt", "unprotected twin");
    ::sleep(1); // creation times a second apart
    tree.write("prot/sub/keep.jpg", "protected bytes");
    tree.write("real/App.app/Contents/prot2/x", "package bytes");
    tree.write("search/c2.txt", "unprotected twin");
    // A protected folder's subfolder bind-mounted into the search, and a
    // package holding a protected folder reached through a linked parent.
    tree.mkdir("search/bound");
    ASSERT_EQ(::mount(tree.path("prot/sub").c_str(), tree.path("search/bound").c_str(), nullptr,
                      MS_BIND, nullptr),
              0);
    const std::shared_ptr<void> unmount(
        nullptr, [&](void*) { ::umount2(tree.path("search/bound").c_str(), MNT_DETACH); });
    tree.symlink("../real", "search/linked");

    const std::vector<std::string> common = {
        "--any-location",  "--include-packages", "--protect",
        tree.path("prot"), "--protect",          tree.path("real/App.app/Contents/prot2")};
    std::vector<std::string> args = common;
    args.insert(args.end(), {"--format", "json", tree.path("search")});
    const CliOutcome json = runCli(args);
    // Each copy's entry ends with its date, then the protection flag if any.
    const auto entry = [&](const char* p) {
        const std::size_t at = json.out.find("\"path\":\"" + tree.path(p) + "\",\"date\":");
        return at == std::string::npos ? std::string()
                                       : json.out.substr(at, json.out.find('}', at) - at + 1);
    };
    EXPECT_TRUE(entry("search/bound/keep.jpg").ends_with(",\"protected\":true}")) << json.out;
    EXPECT_TRUE(entry("search/linked/App.app").ends_with(",\"protected\":true}")) << json.out;
    EXPECT_EQ(entry("search/Other.app").find("protected"), std::string::npos) << json.out;

    const Snapshot before = snapshot(tree.root());
    args = common;
    args.insert(args.end(), {"--keep", "oldest", "--trash", "--yes", tree.path("search")});
    const CliOutcome r = runCli(args);
    // The protected copies are kept instead, and vouch for their twins; the
    // package reached through root's link out of the folders given can't
    // vouch (nothing out there leads an act), so its twin stays too.
    EXPECT_EQ(r.status, 1) << r.out << r.err;
    EXPECT_TRUE(says(r.err, "search/Other.app: no kept copy is left to compare with"));
    const std::vector<std::string> removed = listed(r.out, "removed: ");
    EXPECT_EQ(std::set<std::string>(removed.begin(), removed.end()),
              (std::set<std::string>{tree.path("search/c2.txt"), tree.path("search/dup.jpg")}))
        << r.out << r.err;
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {"search/c2.txt", "search/dup.jpg"}));
}
