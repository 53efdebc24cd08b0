// SPDX-License-Identifier: GPL-3.0-or-later
// Remembered fingerprints: trusted only while every part of a file's key is
// unchanged, never from a store twinsweep did not keep itself, and never
// enough to remove a file.
#include <fcntl.h>
#include <fstream>
#include <numeric>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "FaultSupport.h"
#include "engine/FileTools.h"
#include "fingerprints/FingerprintCache.h"
#include "settings/SettingsManager.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

// Bytes this process has read so far, from files or anything else.
std::uint64_t bytesRead() {
    std::ifstream io("/proc/self/io");
    std::string name;
    std::uint64_t value = 0;
    while (io >> name >> value) {
        if (name == "rchar:") {
            return value;
        }
    }
    return 0;
}

void sql(const std::string& db, const std::string& statement) {
    sqlite3* h = nullptr;
    ASSERT_EQ(sqlite3_open(db.c_str(), &h), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(h, statement.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(h);
    sqlite3_close(h);
}

struct Searched {
    std::string groups;
    std::uint64_t remembered;
    std::uint64_t read;
};

Searched searchWithStore(const TempTree& tree, const std::string& cache) {
    FileTools tools;
    tools.locationGate = LocationGate::anywhere();
    tools.digestThreads = 2;
    tools.fingerprints = openFingerprintCache(cache);
    const std::uint64_t before = bytesRead();
    const FileList heads =
        tools.findDuplicateFiles(tools.context(), {tree.path("t")}, 0, UINT64_MAX, true, {});
    Searched s{"", tools.context().bytes->remembered(), bytesRead() - before};
    // Sorted: a file replaced since moves in the walk's order.
    std::multiset<std::string> groups;
    for (const FilePtr& h : heads) {
        std::multiset<std::string> names{rel(tree.path("t"), h->path)};
        for (const DuplicateFilePtr& d : h->duplicates) {
            names.insert(rel(tree.path("t"), d->path));
        }
        groups.insert(std::accumulate(names.begin(), names.end(), std::string()) + ";");
    }
    s.groups = std::accumulate(groups.begin(), groups.end(), std::string());
    return s;
}

} // namespace

TEST(Fingerprints, SecondSearchReadsNothingAndAnyChangedKeyIsReadAgain) {
    TempTree tree;
    std::string big(300000, 'b');
    big[150000] = 'X';
    tree.write("t/a", big);
    tree.write("t/b", big);
    tree.write("t/c", std::string(300000, 'b'));
    tree.write("t/d", std::string(5000, 'd'));
    tree.write("t/e", std::string(5000, 'd'));
    tree.write("t/f", std::string(5000, 'f'));
    const std::string cache = tree.path("cache");
    const std::string db = cache + "/fingerprints.sqlite";
    const std::string kGroups = "ab;c;de;f;";

    const Searched first = searchWithStore(tree, cache);
    EXPECT_EQ(first.groups, kGroups);
    EXPECT_EQ(first.remembered, 0U);
    const Searched second = searchWithStore(tree, cache);
    EXPECT_EQ(second.groups, kGroups);
    EXPECT_EQ(second.remembered, 915000U);
    EXPECT_LT(second.read, 100000U); // the files hold 915,000 bytes

    // Each part of c's key no longer what was remembered: its run of three
    // is read again, the other run is not; the next search reads nothing.
    const std::string c = "UPDATE fingerprints SET ";
    const std::string where = " WHERE inode = " + inodeOf(tree.path("t/c"));
    const std::vector<std::function<void()>> changes = {
        [&] { sql(db, c + "size = size + 1" + where); },
        [&] { sql(db, c + "mtime_ns = mtime_ns - 1" + where); },
        [&] { sql(db, c + "ctime_ns = ctime_ns + 1" + where); },
        [&] { sql(db, c + "inode = inode + 7" + where); },
        [&] { ::chmod(tree.path("t/c").c_str(), 0640); },     // the change time alone
        [&] { tree.write("t/c", std::string(300000, 'b')); }, // rewritten, same bytes
        [&] { // replaced by a copy with the same times
            tree.write("t/c2", std::string(300000, 'b'));
            ::rename(tree.path("t/c2").c_str(), tree.path("t/c").c_str());
        },
    };
    for (std::size_t k = 0; k < changes.size(); ++k) {
        changes[k]();
        const Searched stale = searchWithStore(tree, cache);
        EXPECT_EQ(stale.groups, kGroups) << k;
        EXPECT_EQ(stale.remembered, 15000U) << k;
        EXPECT_GT(stale.read, 300000U) << k;
        EXPECT_EQ(searchWithStore(tree, cache).remembered, 915000U) << k;
    }
}

TEST(Fingerprints, UntrustedStoresAreSetAsideAndAForgedEntryCostsNoFile) {
    TempTree tree;
    tree.write("t/x", std::string(9000, 'x'));
    tree.write("t/y", std::string(9000, 'y'));
    const std::string cache = tree.path("cache");
    const std::string folder = cache + "/twinsweep";
    const std::string db = folder + "/fingerprints.sqlite";
    CliRun run({"--any-location", "--cache", tree.path("t")});
    run.env = {"XDG_CACHE_HOME=" + cache};
    ASSERT_EQ(runCli(run).status, 0);

    // Not a SQLite file; another program's SQLite file; another user's store.
    const std::vector<std::pair<std::function<void()>, std::string>> untrusted = {
        {[&] { tree.write("cache/twinsweep/fingerprints.sqlite", "not a database at all"); },
         "fingerprints.sqlite: file is not a database; set aside as "
         "fingerprints.sqlite.set-aside-"},
        {[&] {
             ::unlink(db.c_str());
             sql(db, "CREATE TABLE fingerprints(a, b)");
         },
         "fingerprints.sqlite: not a store of remembered fingerprints; set aside as "},
        {[&] { ASSERT_EQ(::chown(db.c_str(), 2001, 2001), 0); },
         "fingerprints.sqlite: it belongs to another user; set aside as "},
        {[&] { ::chmod(folder.c_str(), 0777); },
         "twinsweep: can be changed by other users (mode 0777), so twinsweep keeps nothing in "
         "it; set aside as twinsweep.set-aside-"},
    };
    for (const auto& [spoil, message] : untrusted) {
        spoil();
        const CliOutcome out = runCli(run);
        EXPECT_EQ(out.status, 0);
        EXPECT_TRUE(says(out.err, "Note:   " + folder.substr(0, cache.size() + 1)));
        EXPECT_TRUE(says(out.err, message));
        EXPECT_EQ(out.out, ""); // x and y differ
        struct stat st {};
        EXPECT_EQ(::stat(db.c_str(), &st), 0);
        EXPECT_EQ(st.st_uid, 0U);
        EXPECT_EQ(st.st_mode & 0777, 0600U);
    }

    // A forged entry groups two different files; the clean still compares
    // their bytes and removes nothing.
    sql(db, "UPDATE fingerprints SET digest = (SELECT digest FROM fingerprints WHERE inode = " +
                inodeOf(tree.path("t/x")) + ") WHERE inode = " + inodeOf(tree.path("t/y")));
    const std::string forged = runCli(run).out;
    EXPECT_TRUE(forged == tree.path("t/x") + "\n" + tree.path("t/y") + "\n" ||
                forged == tree.path("t/y") + "\n" + tree.path("t/x") + "\n")
        << forged;
    const Snapshot before = snapshot(tree.path("t"));
    CliRun clean = run;
    clean.args = {"--any-location", "--cache", "--keep",      "oldest",
                  "--delete",       "--yes",   tree.path("t")};
    const CliOutcome cleaned = runCli(clean);
    EXPECT_EQ(cleaned.status, 1);
    EXPECT_TRUE(says(cleaned.out, "freed 0 B (0 bytes) from 0 files"));
    EXPECT_TRUE(says(cleaned.err, ": not byte for byte the same as "));
    EXPECT_TRUE(says(cleaned.err, ", not removed\ntwinsweep-cli: 1 copy was not removed"));
    EXPECT_TRUE(nothingLost(before, snapshot(tree.path("t"))));
    // Cleared, nothing is remembered: the next search reads and finds no copy.
    CliRun clear = run;
    clear.args = {"--clear-cache"};
    EXPECT_EQ(runCli(clear).status, 0);
    EXPECT_NE(::access(db.c_str(), F_OK), 0);
    EXPECT_EQ(runCli(run).out, "");
}
