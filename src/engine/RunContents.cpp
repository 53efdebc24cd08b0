#include "engine/RunContents.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <openssl/evp.h>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "engine/Diagnostics.h"
#include "engine/Digest.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

namespace {

const char* const kOoops = "Ooops! Something went wrong: ";

// Files up to this size are read whole at once; larger ones first by their head.
constexpr std::uint64_t kWholeReadLimit = 16 * 1024;
constexpr std::size_t kHeadLength = 4096;
constexpr std::size_t kHashedBytes = 256;
// Block size of the side-by-side comparison.
constexpr std::size_t kBlock = 64 * 1024;
// Sets of files that agree in their head larger than this are digested one
// file at a time instead, so that a run never holds many files open at once.
constexpr std::size_t kMaxSideBySide = 32;

struct Member {
    std::size_t index;  // in the list
    std::size_t offset; // of its head in the arena
    std::size_t length; // of its head
    std::uint64_t hash;
    bool complete; // the head is the whole file
};

struct CtxFree {
    void operator()(EVP_MD_CTX* c) const { EVP_MD_CTX_free(c); }
};
using Ctx = std::unique_ptr<EVP_MD_CTX, CtxFree>;

Ctx newContext() {
    Ctx ctx(EVP_MD_CTX_new());
    EVP_DigestInit_ex(ctx.get(), EVP_md5(), nullptr);
    return ctx;
}

std::string finish(EVP_MD_CTX* ctx) {
    Md5 out{};
    unsigned int n = 0;
    EVP_DigestFinal_ex(ctx, out.data(), &n);
    return base64Text(out);
}

struct Open {
    std::size_t index;
    int fd;
};

class SideBySide {
  public:
    SideBySide(const FileList& list, std::vector<std::size_t>& failed, const AtomicFlag& cancel)
        : list_(list), failed_(failed), cancel_(cancel) {}

    // Members agree in their first headLength bytes (head): compare the rest.
    bool compare(const std::vector<std::size_t>& indices, const unsigned char* head,
                 std::size_t headLength) {
        std::vector<Open> open;
        for (std::size_t index : indices) {
            const int fd = openForReading(list_[index]->path);
            if (fd < 0 || ::lseek(fd, static_cast<off_t>(headLength), SEEK_SET) < 0) {
                fail(index, fd);
                continue;
            }
#ifdef POSIX_FADV_SEQUENTIAL
            ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
#endif
            open.push_back({index, fd});
        }
        Ctx ctx = newContext();
        EVP_DigestUpdate(ctx.get(), head, headLength);
        const bool done = compareSet(std::move(open), std::move(ctx));
        return done;
    }

  private:
    void fail(std::size_t index, int fd) {
        printErrorLine(kOoops, list_[index]->path, errno);
        if (fd >= 0) {
            ::close(fd);
        }
        failed_.push_back(index);
    }

    // Reads the set block by block, splitting it where contents part.
    bool compareSet(std::vector<Open> set, Ctx ctx) {
        struct Part {
            std::vector<Open> files;
            Ctx ctx;
        };
        std::vector<Part> pending;
        pending.push_back({std::move(set), std::move(ctx)});
        std::vector<std::vector<unsigned char>> buffers;
        std::vector<long> counts;
        bool ok = true;
        while (!pending.empty()) {
            Part part = std::move(pending.back());
            pending.pop_back();
            if (!ok || cancel_.load()) {
                ok = false;
                closeAll(part.files);
                continue;
            }
            if (part.files.size() < 2) {
                closeAll(part.files); // alone: no copy
                continue;
            }
            const std::size_t n = part.files.size();
            buffers.resize(std::max(buffers.size(), n));
            counts.assign(n, 0);
            std::vector<Open> readable;
            std::vector<std::size_t> slot;
            for (std::size_t k = 0; k < n; ++k) {
                buffers[k].resize(kBlock);
                counts[k] = readFully(part.files[k].fd, buffers[k].data(), kBlock);
                if (counts[k] < 0) {
                    fail(part.files[k].index, part.files[k].fd);
                    continue;
                }
                readable.push_back(part.files[k]);
                slot.push_back(k);
            }
            // Split by this block's bytes; each new part continues from the
            // digest state of the bytes all its files share so far.
            std::vector<std::vector<std::size_t>> groups; // positions in readable
            for (std::size_t r = 0; r < readable.size(); ++r) {
                const std::size_t k = slot[r];
                bool placed = false;
                for (auto& g : groups) {
                    const std::size_t first = slot[g.front()];
                    if (counts[first] == counts[k] &&
                        std::memcmp(buffers[first].data(), buffers[k].data(),
                                    static_cast<std::size_t>(counts[k])) == 0) {
                        g.push_back(r);
                        placed = true;
                        break;
                    }
                }
                if (!placed) {
                    groups.push_back({r});
                }
            }
            for (auto& g : groups) {
                std::vector<Open> files;
                for (std::size_t r : g) {
                    files.push_back(readable[r]);
                }
                if (files.size() < 2) {
                    closeAll(files);
                    continue;
                }
                Ctx next(EVP_MD_CTX_new());
                EVP_MD_CTX_copy_ex(next.get(), part.ctx.get());
                const std::size_t k = slot[g.front()];
                EVP_DigestUpdate(next.get(), buffers[k].data(),
                                 static_cast<std::size_t>(counts[k]));
                if (static_cast<std::size_t>(counts[k]) < kBlock) {
                    // The end of every file of the set: identical contents.
                    const std::string text = finish(next.get());
                    for (const Open& f : files) {
                        list_[f.index]->MD5Hash = text;
                    }
                    closeAll(files);
                    continue;
                }
                pending.push_back({std::move(files), std::move(next)});
            }
        }
        return ok;
    }

    static void closeAll(const std::vector<Open>& files) {
        for (const Open& f : files) {
            ::close(f.fd);
        }
    }

    const FileList& list_;
    std::vector<std::size_t>& failed_;
    const AtomicFlag& cancel_;
};

} // namespace

bool digestRunContents(const FileList& list, std::size_t begin, std::size_t end,
                       const AtomicFlag& cancel) {
    const std::uint64_t size = list[begin]->size;
    const std::size_t headWanted =
        size <= kWholeReadLimit ? static_cast<std::size_t>(size) : kHeadLength;
    std::vector<Member> members;
    members.reserve(end - begin);
    std::vector<unsigned char> arena;
    arena.reserve((end - begin) * headWanted);
    std::vector<std::size_t> failed; // unreadable: their contents count as empty

    // Heads first: one open and one read per file.
    for (std::size_t index = begin; index < end; ++index) {
        if (cancel.load()) {
            return false;
        }
        Member m{index, arena.size(), 0, 0, true};
        const int fd = openForReading(list[index]->path);
        long n = -1;
        if (fd >= 0) {
            arena.resize(m.offset + headWanted);
            n = readFully(fd, arena.data() + m.offset, headWanted);
            const int err = errno;
            ::close(fd);
            errno = err;
        }
        if (n < 0) {
            printErrorLine(kOoops, list[index]->path, errno);
            arena.resize(m.offset);
            failed.push_back(index);
            continue;
        }
        arena.resize(m.offset + static_cast<std::size_t>(n));
        m.length = static_cast<std::size_t>(n);
        // A short read is the end of the file.
        m.complete = m.length < headWanted || size <= kWholeReadLimit;
        // The first bytes separate nearly all different files; ties are settled
        // by comparing the bytes themselves.
        m.hash = quickHash(arena.data() + m.offset, std::min<std::size_t>(m.length, kHashedBytes));
        members.push_back(m);
    }

    auto bytes = [&](const Member& m) {
        return std::string_view(reinterpret_cast<const char*>(arena.data() + m.offset), m.length);
    };
    std::sort(members.begin(), members.end(), [&](const Member& a, const Member& b) {
        if (a.complete != b.complete) {
            return a.complete < b.complete;
        }
        if (a.hash != b.hash) {
            return a.hash < b.hash;
        }
        const int c = bytes(a).compare(bytes(b));
        return c != 0 ? c < 0 : a.index < b.index;
    });
    auto sameHead = [&](const Member& a, const Member& b) {
        return a.complete == b.complete && a.hash == b.hash && bytes(a) == bytes(b);
    };

    SideBySide sideBySide(list, failed, cancel);
    for (std::size_t s = 0; s < members.size();) {
        std::size_t e = s + 1;
        while (e < members.size() && sameHead(members[s], members[e])) {
            ++e;
        }
        if (e - s < 2) {
            s = e; // its head matches no other: no copy, never read further
            continue;
        }
        if (cancel.load()) {
            return false;
        }
        const Member& first = members[s];
        if (first.complete) {
            if (first.length == 0) {
                failed.push_back(first.index); // empty now: joins the unreadable ones below
                for (std::size_t m = s + 1; m < e; ++m) {
                    failed.push_back(members[m].index);
                }
                s = e;
                continue;
            }
            const std::string text = base64Text(md5Of(arena.data() + first.offset, first.length));
            for (std::size_t m = s; m < e; ++m) {
                list[members[m].index]->MD5Hash = text;
            }
        } else if (e - s > kMaxSideBySide) {
            for (std::size_t m = s; m < e; ++m) {
                if (cancel.load()) {
                    return false;
                }
                File& file = *list[members[m].index];
                file.MD5Hash = base64Text(streamDigest(file.path));
            }
        } else {
            std::vector<std::size_t> indices;
            for (std::size_t m = s; m < e; ++m) {
                indices.push_back(members[m].index);
            }
            if (!sideBySide.compare(indices, arena.data() + first.offset, first.length)) {
                return false;
            }
        }
        s = e;
    }

    // Files read as empty (unreadable, or emptied since the walk) all have the
    // digest of no bytes: together they are copies of each other.
    if (failed.size() >= 2) {
        const std::string text = base64Text(md5Of(nullptr, 0));
        for (std::size_t index : failed) {
            list[index]->MD5Hash = text;
        }
    }
    return true;
}

} // namespace twinsweep
