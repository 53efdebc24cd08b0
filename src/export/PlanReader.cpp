// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/PlanReader.h"

#include "export/JsonValue.h"

namespace twinsweep {

namespace {

using Kind = JsonValue::Kind;

// Reads the whole number named key of object into out, within max.
bool readUnsigned(const JsonValue& object, const char* key, std::uint64_t max, std::uint64_t& out) {
    const JsonValue* v = object.find(key);
    if (v == nullptr || v->kind != Kind::Number || v->negative || v->magnitude > max) {
        return false;
    }
    out = v->magnitude;
    return true;
}

bool readIdentity(const JsonValue& id, std::uint64_t size, FileIdentity& seen) {
    std::uint64_t device = 0;
    std::uint64_t nsec = 0;
    const JsonValue* mtime = id.find("mtime");
    seen.size = size;
    if (!readUnsigned(id, "device", UINT32_MAX, device) ||
        !readUnsigned(id, "inode", UINT64_MAX, seen.inode) ||
        !readUnsigned(id, "mtimeNsec", 999'999'999, nsec) || mtime == nullptr ||
        mtime->kind != Kind::Number || mtime->magnitude > static_cast<std::uint64_t>(INT64_MAX)) {
        return false;
    }
    seen.device = static_cast<std::uint32_t>(device);
    seen.mtimeNsec = static_cast<std::int32_t>(nsec);
    seen.mtimeSec = static_cast<std::int64_t>(mtime->magnitude) * (mtime->negative ? -1 : 1);
    seen.known = true;
    return true;
}

std::string readMember(const JsonValue& m, std::uint64_t groupSize, PlanMember& out) {
    const JsonValue* path = m.find("path");
    const JsonValue* marked = m.find("marked");
    if (m.kind != Kind::Object || path == nullptr || path->kind != Kind::String) {
        return "a member has no \"path\"";
    }
    out.path = path->text;
    if (out.path.empty() || out.path.front() != '/' || out.path.find('\0') != std::string::npos) {
        return "\"" + out.path + "\" is not an absolute path";
    }
    if (marked == nullptr || marked->kind != Kind::Bool) {
        return out.path + ": no \"marked\" (export the results with their marks)";
    }
    out.marked = marked->boolean;
    if (const JsonValue* p = m.find("protected"); p != nullptr) {
        if (p->kind != Kind::Bool) {
            return out.path + ": \"protected\" is not true or false";
        }
        out.isProtected = p->boolean;
    }
    if (const JsonValue* d = m.find("date"); d != nullptr && d->kind == Kind::String) {
        out.date = d->text;
    }
    if (m.find("device") != nullptr && !readIdentity(m, groupSize, out.seen)) {
        return out.path + ": a malformed \"device\", \"inode\", \"mtime\" or \"mtimeNsec\"";
    }
    if (m.find("folderDevice") != nullptr) {
        if (!readUnsigned(m, "folderDevice", UINT64_MAX, out.folderDevice) ||
            !readUnsigned(m, "folderInode", UINT64_MAX, out.folderInode)) {
            return out.path + ": a malformed \"folderDevice\" or \"folderInode\"";
        }
        out.folderKnown = true;
    }
    return {};
}

} // namespace

std::string readPlan(std::string_view text, std::vector<PlanGroup>& groups) {
    groups.clear();
    JsonValue root;
    if (std::string err = parseJson(text, root); !err.empty()) {
        return "not valid JSON: " + err;
    }
    const JsonValue* list = root.kind == Kind::Object ? root.find("groups") : nullptr;
    if (list == nullptr || list->kind != Kind::Array) {
        return "no \"groups\" list";
    }
    for (const JsonValue& g : list->items) {
        PlanGroup group;
        const JsonValue* path = g.find("path");
        const JsonValue* members = g.find("members");
        if (g.kind != Kind::Object || path == nullptr || path->kind != Kind::String ||
            !readUnsigned(g, "size", UINT64_MAX, group.size) || members == nullptr ||
            members->kind != Kind::Array) {
            return "group " + std::to_string(groups.size() + 1) +
                   " needs a \"path\", a \"size\" and \"members\"";
        }
        group.path = path->text;
        if (members->items.size() < 2) {
            return "group " + std::to_string(groups.size() + 1) + " has fewer than two members";
        }
        for (const JsonValue& m : members->items) {
            PlanMember member;
            if (std::string err = readMember(m, group.size, member); !err.empty()) {
                return "group " + std::to_string(groups.size() + 1) + ": " + err;
            }
            group.members.push_back(std::move(member));
        }
        groups.push_back(std::move(group));
    }
    return {};
}

} // namespace twinsweep
