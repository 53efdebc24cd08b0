// SPDX-License-Identifier: GPL-3.0-or-later
#include "fingerprints/FingerprintCache.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "engine/Diagnostics.h"
#include "fingerprints/SetAside.h"
#include "removal/Fd.h"
#include "removal/StateFolder.h"

namespace twinsweep {

namespace {

const char* const kError = "Error:  ";
const char* const kNote = "Note:   ";
// "TWFP": a store of ours, whatever its name.
constexpr int kApplicationId = 0x54574650;
constexpr int kVersion = 1;
// SQLite's companions of the store, which belong to the version they sit beside.
const char* const kCompanions[] = {"-wal", "-shm", "-journal"};

const char* const kSchema = "CREATE TABLE fingerprints("
                            " device INTEGER NOT NULL, inode INTEGER NOT NULL,"
                            " size INTEGER NOT NULL, mtime_ns INTEGER NOT NULL,"
                            " ctime_ns INTEGER NOT NULL, digest BLOB NOT NULL,"
                            " PRIMARY KEY(device, inode)) WITHOUT ROWID;";

std::string folderOr(const std::string& folder) {
    return folder.empty() ? fingerprintFolderPath() : folder;
}

int intPragma(sqlite3* db, const char* sql, bool& ok) {
    sqlite3_stmt* st = nullptr;
    int value = -1;
    ok = sqlite3_prepare_v2(db, sql, -1, &st, nullptr) == SQLITE_OK &&
         sqlite3_step(st) == SQLITE_ROW;
    if (ok) {
        value = sqlite3_column_int(st, 0);
    }
    sqlite3_finalize(st);
    return value;
}

// Why the entry open at fd can't be trusted as our store; "" when it can.
std::string distrust(int fd) {
    struct stat st {};
    if (::fstat(fd, &st) != 0) {
        return std::strerror(errno);
    }
    if (!S_ISREG(st.st_mode)) {
        return "not a regular file";
    }
    if (st.st_uid != ::geteuid()) {
        return "it belongs to another user";
    }
    if ((st.st_mode & 022) != 0 || st.st_nlink != 1) {
        return "others may change it";
    }
    return {};
}

class SqliteStore final : public FingerprintStore {
  public:
    SqliteStore(sqlite3* db, std::string path) : db_(db), path_(std::move(path)) {}
    ~SqliteStore() override {
        flush();
        sqlite3_finalize(find_);
        sqlite3_finalize(put_);
        sqlite3_close(db_);
    }

    // Checks that the file is a store of ours of this version, making one in
    // an empty file. Why not, or "".
    std::string prepare(bool fresh) {
        bool ok = false;
        if (fresh) {
            const std::string setUp = "BEGIN; " + std::string(kSchema) +
                                      " PRAGMA application_id=" + std::to_string(kApplicationId) +
                                      "; PRAGMA user_version=" + std::to_string(kVersion) +
                                      "; COMMIT;";
            if (!exec(setUp.c_str())) {
                return sqlite3_errmsg(db_);
            }
        }
        const int id = intPragma(db_, "PRAGMA application_id", ok);
        if (!ok) {
            return sqlite3_errmsg(db_);
        }
        if (id != kApplicationId) {
            return "not a store of remembered fingerprints";
        }
        if (intPragma(db_, "PRAGMA user_version", ok) != kVersion) {
            return "a store of another version";
        }
        if (sqlite3_prepare_v2(db_,
                               "SELECT size, mtime_ns, ctime_ns, digest FROM fingerprints"
                               " WHERE device = ? AND inode = ?",
                               -1, &find_, nullptr) != SQLITE_OK ||
            sqlite3_prepare_v2(db_, "INSERT OR REPLACE INTO fingerprints VALUES (?, ?, ?, ?, ?, ?)",
                               -1, &put_, nullptr) != SQLITE_OK) {
            return std::string("another schema: ") + sqlite3_errmsg(db_);
        }
        return {};
    }

    std::optional<Fingerprint> find(const FingerprintKey& key) override {
        std::lock_guard guard(lock_);
        if (broken_) {
            return std::nullopt;
        }
        sqlite3_reset(find_);
        sqlite3_bind_int64(find_, 1, static_cast<sqlite3_int64>(key.device));
        sqlite3_bind_int64(find_, 2, static_cast<sqlite3_int64>(key.inode));
        const int rc = sqlite3_step(find_);
        std::optional<Fingerprint> found;
        if (rc == SQLITE_ROW) {
            // Every part of the key, and a digest of the right length.
            if (static_cast<std::uint64_t>(sqlite3_column_int64(find_, 0)) == key.size &&
                sqlite3_column_int64(find_, 1) == key.mtimeNs &&
                sqlite3_column_int64(find_, 2) == key.ctimeNs &&
                sqlite3_column_type(find_, 3) == SQLITE_BLOB &&
                sqlite3_column_bytes(find_, 3) == static_cast<int>(sizeof(Fingerprint))) {
                found.emplace();
                std::memcpy(found->data(), sqlite3_column_blob(find_, 3), sizeof(Fingerprint));
            }
        } else if (rc != SQLITE_DONE) {
            fail();
        }
        sqlite3_reset(find_);
        return found;
    }

    void remember(const FingerprintKey& key, const Fingerprint& fingerprint) override {
        std::lock_guard guard(lock_);
        pending_.push_back({key, fingerprint});
    }

    void flush() override {
        std::lock_guard guard(lock_);
        if (broken_ || pending_.empty()) {
            pending_.clear();
            return;
        }
        bool ok = exec("BEGIN IMMEDIATE");
        for (const auto& [key, print] : pending_) {
            if (!ok) {
                break;
            }
            sqlite3_reset(put_);
            sqlite3_bind_int64(put_, 1, static_cast<sqlite3_int64>(key.device));
            sqlite3_bind_int64(put_, 2, static_cast<sqlite3_int64>(key.inode));
            sqlite3_bind_int64(put_, 3, static_cast<sqlite3_int64>(key.size));
            sqlite3_bind_int64(put_, 4, key.mtimeNs);
            sqlite3_bind_int64(put_, 5, key.ctimeNs);
            sqlite3_bind_blob(put_, 6, print.data(), static_cast<int>(print.size()), SQLITE_STATIC);
            ok = sqlite3_step(put_) == SQLITE_DONE;
        }
        sqlite3_reset(put_);
        pending_.clear();
        if (!ok || !exec("COMMIT")) {
            fail();
            exec("ROLLBACK");
        }
    }

  private:
    bool exec(const char* sql) { return sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == 0; }

    // A store that fails once is not asked again in this run; a damaged one
    // is set aside when next opened, as its checks fail.
    void fail() {
        if (!broken_) {
            broken_ = true;
            printErrorLine(kError, path_ + ": " + sqlite3_errmsg(db_) +
                                       "; remembered fingerprints are not used in this run");
        }
    }

    sqlite3* db_;
    std::string path_;
    sqlite3_stmt* find_ = nullptr;
    sqlite3_stmt* put_ = nullptr;
    std::mutex lock_;
    std::vector<std::pair<FingerprintKey, Fingerprint>> pending_;
    bool broken_ = false;
};

// Sets the store and its companions aside, saying why.
bool setStoreAside(const PrivateFolder& folder, const std::string& why) {
    const std::string to = setAside(folder.fd.get(), kFingerprintFile);
    if (to.empty()) {
        printErrorLine(kError, folder.path + "/" + kFingerprintFile + ": " + why +
                                   "; it can't be set aside (" + std::strerror(errno) +
                                   "); remembered fingerprints are not used");
        return false;
    }
    for (const char* c : kCompanions) {
        const std::string name = std::string(kFingerprintFile) + c;
        if (setAside(folder.fd.get(), name).empty() && errno != ENOENT) {
            ::unlinkat(folder.fd.get(), name.c_str(), 0);
        }
    }
    printErrorLine(kNote, folder.path + "/" + kFingerprintFile + ": " + why + "; set aside as " +
                              to + ", a new store is made");
    return true;
}

// The private folder, with a folder refused as not private set aside when
// its parent is ours.
PrivateFolder openFolder(const std::string& path) {
    PrivateFolder folder = openPrivateFolder(path);
    if (folder.ok()) {
        return folder;
    }
    const PrivateFolder parent = openPrivateFolder(parentOf(path));
    const std::string name = lastComponent(path);
    struct stat st {};
    if (!parent.ok() || ::fstatat(parent.fd.get(), name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
        printErrorLine(kError, folder.error + "; remembered fingerprints are not used");
        return folder;
    }
    const std::string to = setAside(parent.fd.get(), name);
    if (to.empty()) {
        printErrorLine(kError, folder.error + "; remembered fingerprints are not used");
        return folder;
    }
    printErrorLine(kNote, folder.error + "; set aside as " + to + ", a new store is made");
    folder = openPrivateFolder(path);
    if (!folder.ok()) {
        printErrorLine(kError, folder.error + "; remembered fingerprints are not used");
    }
    return folder;
}

} // namespace

std::string fingerprintFolderPath() {
    const char* cache = std::getenv("XDG_CACHE_HOME");
    if (cache != nullptr && cache[0] == '/') {
        return std::string(cache) + "/twinsweep";
    }
    const char* home = std::getenv("HOME");
    if (home != nullptr && home[0] == '/') {
        return std::string(home) + "/.cache/twinsweep";
    }
    return {};
}

std::shared_ptr<FingerprintStore> openFingerprintCache(const std::string& folderPath) {
    const std::string path = folderOr(folderPath);
    if (path.empty()) {
        printErrorLine(kError, "no home folder is known (HOME and XDG_CACHE_HOME are unset); "
                               "remembered fingerprints are not used");
        return nullptr;
    }
    const PrivateFolder folder = openFolder(path);
    if (!folder.ok()) {
        return nullptr;
    }
    for (int attempt = 0; attempt < 2; ++attempt) {
        Fd fd(::openat(folder.fd.get(), kFingerprintFile,
                       O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        bool fresh = false;
        if (!fd.ok() && errno == ENOENT) {
            // A new store: no companion of an old one may be taken for its own.
            for (const char* c : kCompanions) {
                ::unlinkat(folder.fd.get(), (std::string(kFingerprintFile) + c).c_str(), 0);
            }
            fd.reset(::openat(folder.fd.get(), kFingerprintFile,
                              O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
            fresh = true;
        }
        std::string why = fd.ok() ? distrust(fd.get()) : std::strerror(errno);
        if (why.empty()) {
            sqlite3* db = nullptr;
            const std::string file = folder.path + "/" + kFingerprintFile;
            const int rc = sqlite3_open_v2(
                file.c_str(), &db,
                SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW | SQLITE_OPEN_NOMUTEX, nullptr);
            auto store = std::make_shared<SqliteStore>(db, file);
            why = rc == SQLITE_OK ? store->prepare(fresh) : sqlite3_errstr(rc);
            if (why.empty()) {
                return store;
            }
        }
        if (!setStoreAside(folder, why)) {
            return nullptr;
        }
    }
    printErrorLine(kError, folder.path + "/" + kFingerprintFile +
                               ": no store could be made; remembered fingerprints are not used");
    return nullptr;
}

std::string clearFingerprintCache(const std::string& folderPath) {
    const std::string path = folderOr(folderPath);
    if (path.empty()) {
        return "No home folder is known (HOME and XDG_CACHE_HOME are unset).";
    }
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0 && errno == ENOENT) {
        return {};
    }
    const PrivateFolder folder = openPrivateFolder(path);
    if (!folder.ok()) {
        return folder.error + ".";
    }
    for (const std::string suffix : {"", "-wal", "-shm", "-journal"}) {
        const std::string name = kFingerprintFile + suffix;
        if (::unlinkat(folder.fd.get(), name.c_str(), 0) != 0 && errno != ENOENT) {
            return folder.path + "/" + name + ": " + std::strerror(errno) + ".";
        }
    }
    return {};
}

} // namespace twinsweep
