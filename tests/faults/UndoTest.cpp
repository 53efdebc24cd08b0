// SPDX-License-Identifier: GPL-3.0-or-later
// Undoing cleans to the Trash: each clean's own record, put back only through
// checked folders, and only the items that clean moved.
#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>

#include "FaultSupport.h"
#include "removal/Fd.h"
#include "removal/TrashRecord.h"

using namespace twinsweep;
using namespace twinsweep::testing;

namespace {

// A tree with its own Trash and state folder, and runs of the tool in it.
struct UndoTree {
    TempTree tree;
    std::vector<std::string> env = {"XDG_DATA_HOME=" + tree.path("data"),
                                    "XDG_STATE_HOME=" + tree.path("state"),
                                    "XDG_RUNTIME_DIR=" + tree.mkdir("run")};
    std::string undoFolder = tree.path("state/twinsweep/undo");

    CliRun with(std::vector<std::string> args) const {
        CliRun r{std::move(args)};
        r.env = env;
        return r;
    }
    CliRun clean(const std::string& folder, const char* keep = "oldest") const {
        return with({"--any-location", "--keep", keep, "--trash", folder});
    }
    CliOutcome undo() const { return runCli(with({"--undo"})); }
    std::vector<std::string> records() const {
        std::vector<std::string> out;
        std::error_code none;
        for (const auto& e : std::filesystem::directory_iterator(undoFolder, none)) {
            out.push_back(e.path().filename().string());
        }
        return out;
    }
    // The items of the newest record.
    TrashRecordContents newest() const {
        auto names = records();
        std::sort(names.begin(), names.end());
        TrashRecordContents c;
        EXPECT_TRUE(!names.empty() &&
                    readTrashRecordText(slurp(undoFolder + "/" + names.back()), c));
        return c;
    }
};

} // namespace

TEST(Undo, EveryCleanKeepsItsOwnRecordAndTheNewestIsPutBackFirst) {
    UndoTree u;
    for (const std::string side : {"first/a/", "first/b/"}) {
        u.tree.write(side + "odd %\n\xff", "odd twin");
    }
    twins(u.tree, "second", "second twin");
    const Snapshot before = snapshot(u.tree.path("first"));
    const Snapshot secondBefore = snapshot(u.tree.path("second"));
    for (const std::string f : {"first", "second"}) {
        const CliOutcome r = runCli(u.clean(u.tree.path(f)));
        ASSERT_EQ(r.status, 0) << r.err;
        EXPECT_TRUE(says(r.err, "1 copy was moved to the Trash; to put it back, run: "
                                "twinsweep-cli --undo"));
    }
    EXPECT_EQ(u.records().size(), 2u);
    // Something new at the newest clean's path is never replaced; the item waits.
    const std::string taken = u.newest().items.at(0).originalPath;
    u.tree.write(rel(u.tree.root(), taken), "new");
    CliOutcome r = u.undo();
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(says(r.err, "(1 item moved to the Trash)"));
    EXPECT_TRUE(says(r.err, taken + ": its path is taken by another file, not restored"));
    EXPECT_EQ(u.records().size(), 2u);
    ASSERT_EQ(::unlink(taken.c_str()), 0);
    r = u.undo();
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(listed(r.out, "restored: "), std::vector<std::string>{taken});
    EXPECT_EQ(snapshot(u.tree.path("second")), secondBefore);
    EXPECT_EQ(u.records().size(), 1u); // emptied, so removed
    r = u.undo();
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(snapshot(u.tree.path("first")), before);
    EXPECT_TRUE(snapshot(u.tree.path("data/Trash/files")).empty());
    EXPECT_TRUE(snapshot(u.tree.path("data/Trash/info")).empty());
    r = u.undo();
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(says(r.err, "there is no clean to the Trash to undo"));
}

TEST(Undo, PutsBackOnlyThroughTheCheckedFolderAndOnlyItsOwnItem) {
    UndoTree u;
    twins(u.tree, "home/alice", "alice's file");
    for (const char* f : {"home/alice/a", "home/alice/b"}) {
        ASSERT_EQ(::chown(u.tree.path(f).c_str(), 2001, 2001), 0);
    }
    const std::string rootOnly = u.tree.mkdir("root-only");
    ASSERT_EQ(::chmod(rootOnly.c_str(), 0700), 0);
    ASSERT_EQ(runCli(u.clean(u.tree.path("home"))).status, 0);
    const auto trees = [&] { // the tree and the Trash, not the records
        Snapshot both = snapshot(u.tree.path("home"));
        for (const auto& [path, entry] : snapshot(u.tree.path("data"))) {
            both["Trash:" + path] = entry;
        }
        return both;
    };
    const Snapshot before = trees();
    // Alice swaps her folder for a link to a folder only root may write.
    const std::string b = parentOf(u.newest().items.at(0).originalPath);
    ASSERT_EQ(::rename(b.c_str(), (b + ".old").c_str()), 0);
    ASSERT_EQ(::symlink(rootOnly.c_str(), b.c_str()), 0);
    ASSERT_EQ(::lchown(b.c_str(), 2001, 2001), 0);
    CliOutcome r = u.undo();
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(says(r.err, b + "/x: its folder was replaced since the clean, not restored"));
    EXPECT_TRUE(snapshot(rootOnly).empty());
    ASSERT_EQ(::unlink(b.c_str()), 0);
    ASSERT_EQ(::rename((b + ".old").c_str(), b.c_str()), 0);
    EXPECT_EQ(trees(), before);

    // The Trash was emptied; another tool trashed another file under that name,
    // with the same size and time: not ours, left where it is.
    const TrashedItem item = u.newest().items.at(0);
    ASSERT_EQ(::unlink(item.filesPath.c_str()), 0);
    u.tree.write(rel(u.tree.root(), item.filesPath), "another file");
    const timespec times[2] = {{item.mtimeSec, item.mtimeNsec}, {item.mtimeSec, item.mtimeNsec}};
    ASSERT_EQ(::utimensat(AT_FDCWD, item.filesPath.c_str(), times, 0), 0);
    u.tree.write(rel(u.tree.root(), item.infoPath), "[Trash Info]\nPath=" + item.originalPath +
                                                        "\nDeletionDate=2001-02-03T04:05:06\n");
    const Snapshot reused = trees();
    r = u.undo();
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(says(r.err, "not the one this clean moved there, not restored"));
    EXPECT_EQ(trees(), reused);
}

TEST(Undo, WaitsForARunningCleanAndThenUndoesThatOne) {
    UndoTree u;
    twins(u.tree, "older", "older twins");
    twins(u.tree, "running", "running twins");
    ASSERT_EQ(runCli(u.clean(u.tree.path("older"))).status, 0);
    const Snapshot before = snapshot(u.tree.path("running"));
    CliRun running = u.clean(u.tree.path("running"), "none");
    running.prompt = "Are you sure you want to continue? [y/N]";
    CliOutcome undone;
    std::thread waiter;
    running.between = [&](pid_t) {
        const RunningCli started = startCli(u.with({"--undo"}));
        EXPECT_TRUE(waitForText(started.errPath, "another cleaning is running", started.pid));
        waiter = std::thread([&, started] { undone = finishCli(started); });
    };
    const CliOutcome cleaned = runCli(running);
    if (waiter.joinable()) {
        waiter.join();
    }
    EXPECT_EQ(cleaned.status, 0) << cleaned.err;
    EXPECT_EQ(undone.status, 0) << undone.err;
    EXPECT_TRUE(says(undone.err, "(2 items moved to the Trash)"));
    EXPECT_EQ(listed(undone.out, "restored: ").size(), 2u);
    EXPECT_EQ(snapshot(u.tree.path("running")), before);
    ASSERT_EQ(u.records().size(), 1u); // the older clean's, untouched
    EXPECT_EQ(u.newest().items.at(0).originalPath.rfind(u.tree.path("older/"), 0), 0u);
}

TEST(Undo, FinishesWhatAStoppedCleanLeftInTheTrash) {
    UndoTree u;
    twins(u.tree, "f", "twin");
    ASSERT_EQ(runCli(u.clean(u.tree.path("f"))).status, 0);
    // As a kill leaves it: one move noted as pending only, and the .trashinfo
    // of a move that never happened.
    TrashedItem moved = u.newest().items.at(0);
    moved.moved = false;
    TrashedItem ghost = moved;
    ghost.originalPath = u.tree.path("f/a/ghost");
    ghost.filesPath = u.tree.path("data/Trash/files/ghost");
    ghost.infoPath = u.tree.path("data/Trash/info/ghost.trashinfo");
    u.tree.write("data/Trash/info/ghost.trashinfo", "[Trash Info]\nPath=" + ghost.originalPath +
                                                        "\nDeletionDate=" + ghost.deletionDate +
                                                        "\n");
    const std::string name = u.records().at(0);
    u.tree.write("state/twinsweep/undo/" + name,
                 trashRecordHeader(1) + trashRecordLine(moved) + trashRecordLine(ghost));
    const CliOutcome r = u.undo();
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(says(r.err, "Note:   " + ghost.infoPath + ": removed: the Trash's note for " +
                                ghost.originalPath + ", whose move to the Trash never happened"));
    EXPECT_EQ(listed(r.out, "restored: "), std::vector<std::string>{moved.originalPath});
    EXPECT_TRUE(snapshot(u.tree.path("data/Trash/info")).empty());
    EXPECT_TRUE(u.records().empty());
}

TEST(Undo, ARecordThatCantBeWrittenStopsTheCleanAndItemsOnAnAbsentDriveWait) {
    if (!privateMounts()) {
        GTEST_SKIP() << "no mount namespace here (needs root)";
    }
    UndoTree u;
    twins(u.tree, "one", "first clean");
    twins(u.tree, "two", "second clean");
    const std::string state = u.tree.mkdir("state");
    ASSERT_EQ(::mount("tmpfs", state.c_str(), "tmpfs", 0, "size=64k,mode=0700"), 0);
    ASSERT_EQ(runCli(u.clean(u.tree.path("one"))).status, 0);
    // The state folder's disk fills up: the next clean moves nothing.
    u.tree.writeSized("state/filler", 64 * 1024);
    const Snapshot before = snapshot(u.tree.path("two"));
    CliOutcome r = runCli(u.clean(u.tree.path("two")));
    // Whichever note fails first (the journal of the copy set aside, or the
    // record of the move), the clean says so and moves nothing.
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(says(r.err, "No space left on device, not removed"));
    EXPECT_EQ(snapshot(u.tree.path("two")), before);
    ASSERT_EQ(::unlink(u.tree.path("state/filler").c_str()), 0);
    // Undo says which clean it puts back.
    r = u.undo();
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(says(r.err, "undoing the clean of "));
    EXPECT_EQ(listed(r.out, "restored: ").size(), 1u);

    // A drive: its own Trash, away at the undo, then back.
    const std::string store = u.tree.mkdir("store");
    const std::string drive = u.tree.mkdir("drive");
    ASSERT_EQ(::mount("tmpfs", store.c_str(), "tmpfs", 0, "size=1m"), 0);
    ASSERT_EQ(::mount(store.c_str(), drive.c_str(), nullptr, MS_BIND, nullptr), 0);
    twins(u.tree, "drive", "on the drive");
    const Snapshot onDrive = snapshot(drive);
    ASSERT_EQ(runCli(u.clean(drive)).status, 0);
    ASSERT_EQ(::umount(drive.c_str()), 0);
    r = u.undo();
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(says(r.err, "/x: its drive is not mounted, not restored"));
    EXPECT_EQ(u.records().size(), 1u);
    ASSERT_EQ(::mount(store.c_str(), drive.c_str(), nullptr, MS_BIND, nullptr), 0);
    r = u.undo();
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(nothingLost(onDrive, snapshot(drive)));
    EXPECT_TRUE(u.records().empty());
}

TEST(State, RefusesFoldersOthersCanChange) {
    TempTree tree;
    twins(tree, "files", "twin");
    const std::string shared = tree.mkdir("shared");
    // Another user made the state and lock folders, forged a record, holds the lock.
    for (const char* f : {"shared/state/twinsweep/undo", "shared/run"}) {
        tree.mkdir(f);
    }
    tree.write("shared/state/twinsweep/undo/99990101T000000.000000000-1.record",
               "twinsweep trash-record 2 0\n");
    const Fd held(::open(tree.write("shared/run/twinsweep-clean.lock", "").c_str(), O_RDWR));
    ASSERT_EQ(::flock(held.get(), LOCK_EX), 0);
    ASSERT_EQ(::system(("chown -R 2001:2001 " + shared + "/state " + shared + "/run").c_str()), 0);
    for (const mode_t mode : {0777, 0755}) {
        ASSERT_EQ(::chmod(shared.c_str(), mode), 0);
        const Snapshot before = snapshot(tree.root());
        const std::string why = mode == 0777 ? shared + " can be changed by other users (mode 0777)"
                                             : shared + "/state belongs to another user (uid 2001)";
        CliRun clean{{"--any-location", "--keep", "oldest", "--trash", tree.path("files")}};
        CliRun undo{{"--undo"}};
        for (CliRun* run : {&clean, &undo}) {
            run->env = {"XDG_STATE_HOME=" + shared + "/state", "XDG_RUNTIME_DIR=" + shared + "/run",
                        "XDG_DATA_HOME=" + tree.path("data")};
            const CliOutcome r = runCli(*run);
            EXPECT_EQ(r.status, 1);
            EXPECT_TRUE(says(r.err, "no safe place for the cleaning lock: "));
            EXPECT_TRUE(says(r.err, why));
        }
        EXPECT_EQ(snapshot(tree.root()), before);
    }
}
