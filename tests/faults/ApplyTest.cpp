// SPDX-License-Identifier: GPL-3.0-or-later
// A plan written now and applied later: every check of a clean runs again at
// apply time, so whatever changed since, and whatever a hand-edited or
// another user's plan claims, can only make a copy be left, never make the
// wrong file go.
#include <sys/stat.h>
#include <unistd.h>

#include "FaultSupport.h"

using namespace twinsweep::testing;

namespace {

// A member as an export records it, from what is at path now.
std::string member(const std::string& path, bool marked, const std::string& extra = {}) {
    struct stat st {};
    struct stat dir {};
    EXPECT_EQ(::lstat(path.c_str(), &st), 0) << path;
    EXPECT_EQ(::stat(path.substr(0, path.rfind('/')).c_str(), &dir), 0) << path;
    return "{\"path\":\"" + path + "\",\"marked\":" + (marked ? "true" : "false") + extra +
           ",\"device\":" + std::to_string(st.st_dev) + ",\"inode\":" + std::to_string(st.st_ino) +
           ",\"mtime\":" + std::to_string(st.st_mtim.tv_sec) +
           ",\"mtimeNsec\":" + std::to_string(st.st_mtim.tv_nsec) +
           ",\"folderDevice\":" + std::to_string(dir.st_dev) +
           ",\"folderInode\":" + std::to_string(dir.st_ino) + "}";
}

std::string group(std::uint64_t size, const std::vector<std::string>& members) {
    std::string out = "{\"path\":\"/x\",\"size\":" + std::to_string(size) + ",\"members\":[";
    for (std::size_t k = 0; k < members.size(); ++k) {
        out += (k > 0 ? "," : "") + members[k];
    }
    return out + "]}";
}

std::string plan(const std::vector<std::string>& groups) {
    std::string out = "{\"groups\":[";
    for (std::size_t k = 0; k < groups.size(); ++k) {
        out += (k > 0 ? ",\n" : "\n") + groups[k];
    }
    return out + "]}\n";
}

} // namespace

TEST(Apply, WhatChangedSinceThePlanIsLeftAndReported) {
    TempTree tree;
    // Kept copies first: --keep oldest keeps them.
    for (const char* name : {"same", "edited", "swapped", "moved", "folder", "kept"}) {
        tree.write(std::string("s/keep/") + name, std::string("twin ") + name);
    }
    ::sleep(1);
    for (const char* name : {"same", "edited", "swapped", "moved", "kept"}) {
        tree.write(std::string("s/dup/") + name, std::string("twin ") + name);
    }
    tree.write("s/old/folder", "twin folder");
    const CliOutcome planned =
        runCli({"--any-location", "--format", "json", "--keep", "oldest", tree.path("s")});
    ASSERT_EQ(planned.status, 0) << planned.err;
    const std::string planPath = tree.write("plan.json", planned.out);

    rewriteInPlace(tree.path("s/dup/edited"), "TWIN ");
    // Written before the old one goes, so it can't reuse its inode.
    tree.write("s/swapped.new", "twin swapped");
    ASSERT_EQ(::rename(tree.path("s/swapped.new").c_str(), tree.path("s/dup/swapped").c_str()), 0);
    ASSERT_EQ(::rename(tree.path("s/dup/moved").c_str(), tree.path("s/moved").c_str()), 0);
    rewriteInPlace(tree.path("s/keep/kept"), "TWIN ");
    // The marked copy's folder becomes a link to a folder holding the same name.
    tree.write("s/elsewhere/folder", "twin folder");
    ASSERT_EQ(::rename(tree.path("s/old").c_str(), tree.path("s/gone").c_str()), 0);
    tree.symlink(tree.path("s/elsewhere"), "s/old");

    const Snapshot before = snapshot(tree.root());
    const CliOutcome r = runCli({"--apply", planPath, "--delete", "--yes", tree.path("s")});
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_EQ(listed(r.out, "removed: "), (std::vector<std::string>{tree.path("s/dup/same")}));
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root()), {"s/dup/same"}));
    const std::string p = tree.path("s/");
    EXPECT_TRUE(says(r.err, p + "dup/edited: changed since the search, not removed"));
    EXPECT_TRUE(says(r.err, p + "dup/swapped: replaced by another file since the search"));
    EXPECT_TRUE(says(r.err, p + "dup/moved: No such file or directory"));
    EXPECT_TRUE(says(r.err, p + "old/folder: its folder was replaced since the search"));
    EXPECT_TRUE(says(r.err, p + "dup/kept: no kept copy is left to compare with"));
    EXPECT_TRUE(says(r.err, "5 copies were not removed"));
}

TEST(Apply, AnEditedOrForeignPlanCanOnlyMakeACopyBeLeft) {
    TempTree tree;
    const std::string a = tree.write("s/a", "same bytes");
    const std::string b = tree.write("s/b", "same bytes");
    const std::string c = tree.write("s/c", "SAME bytes"); // same size, other bytes
    const std::string d = tree.write("s/d", "one more");
    const std::string e = tree.write("s/e", "one more");
    const std::string out = tree.write("outside/o", "same bytes");
    const std::string prot = tree.write("s/prot/p", "same bytes");
    tree.write("s/real/l", "one more");
    const std::string viaLink = tree.symlink(tree.path("s/real"), "s/bobs") + "/l";
    ASSERT_EQ(::lchown(tree.path("s/bobs").c_str(), 2001, 2001), 0);
    const std::string planPath = tree.path("plan.json");
    const Snapshot before = snapshot(tree.root());
    const auto apply = [&](const std::string& text, std::vector<std::string> extra = {}) {
        tree.write("plan.json", text);
        std::vector<std::string> args = {"--apply", planPath, "--delete", "--yes"};
        args.insert(args.end(), extra.begin(), extra.end());
        args.push_back(tree.path("s"));
        return runCli(args);
    };

    // Every copy of a group marked: asked like any whole-group clean.
    tree.write("plan.json", plan({group(10, {member(a, true), member(b, true)})}));
    CliOutcome r = runCli({"--apply", planPath, "--delete", tree.path("s")});
    EXPECT_EQ(r.status, 2) << r.err; // --delete without --yes off a terminal
    r = runCli(CliRun({"--apply", planPath, "--trash", tree.path("s")}));
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_TRUE(says(r.err, "some groups would lose every copy; add --yes"));

    // A forged identity, other bytes, a file outside the folders given, a
    // protected copy, a path through another user's link: each left.
    std::string forged = member(a, true);
    forged.replace(forged.find("\"device\""), std::string::npos,
                   member(b, false).substr(member(b, false).find("\"device\"")));
    r = apply(
        plan({group(10, {forged, member(b, false)}), group(10, {member(c, true), member(b, false)}),
              group(10, {member(out, true), member(b, false)}),
              group(10, {member(prot, true), member(b, false)}),
              group(8, {member(d, false), member(viaLink, true)}),
              group(8, {member(d, false), member(e, true, ",\"protected\":true")})}),
        {"--protect", tree.path("s/prot")});
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_EQ(listed(r.out, "removed: "), (std::vector<std::string>{}));
    EXPECT_TRUE(says(r.err, a + ": replaced by another file since the search"));
    EXPECT_TRUE(says(r.err, c + ": not byte for byte the same as " + b));
    EXPECT_TRUE(says(r.err, out + ": its folder was not walked by the search"));
    EXPECT_TRUE(says(r.err, viaLink + ": reached through a symbolic link that belongs to another"));
    EXPECT_TRUE(says(r.err, prot + ": in a protected folder, not removed"));
    EXPECT_TRUE(says(r.err, "5 copies were not removed")); // e is protected: not even tried
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));

    // Plans that are not plans: exit 2, nothing done.
    const std::string ok = member(b, false);
    for (const std::string& bad :
         {std::string("{\"groups\":[") + group(10, {member(a, true), ok}),
          plan({group(10, {member(a, true)})}), plan({group(10, {"{\"path\":\"" + a + "\"}", ok})}),
          plan({group(10, {"{\"path\":\"s/a\",\"marked\":true}", ok})}),
          plan({group(10, {"{\"path\":\"" + a +
                               "\",\"marked\":true,\"device\":-1,\"inode\":1,\"mtime\":0,"
                               "\"mtimeNsec\":0}",
                           ok})}),
          plan({group(10, {"{\"path\":\"" + a + "\",\"marked\":true,\"marked\":false}", ok})}),
          std::string("{\"groups\":[{\"path\":\"/x\",\"size\":1.5,\"members\":[]}]}")}) {
        r = apply(bad);
        EXPECT_EQ(r.status, 2) << bad;
        EXPECT_TRUE(says(r.err, "can't be used: "));
    }
    EXPECT_TRUE(nothingLost(before, snapshot(tree.root())));
}
