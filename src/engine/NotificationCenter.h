// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace twinsweep {

// Progress payload: only "totalFiles" and "checkedFiles" are ever stored.
using UserInfo = std::map<std::string, std::int64_t>;

inline const std::string kUpdateProgress = "UpdateProgress";
inline const std::string kSearchThreadFinished = "SearchThreadFinished";
inline const std::string kTotalFiles = "totalFiles";
inline const std::string kCheckedFiles = "checkedFiles";

// In-process notifications. Observers are called synchronously on the posting
// thread, so they must be cheap; an observer that touches a window hops to the
// GUI thread itself.
class NotificationCenter {
  public:
    using Observer = std::function<void(const std::string& name, const UserInfo& info)>;
    using Token = std::uint64_t;

    static NotificationCenter& defaultCenter();

    Token addObserver(const std::string& name, Observer observer);
    void removeObserver(Token token);
    void post(const std::string& name, const UserInfo& info) const;

  private:
    struct Entry {
        Token token;
        std::string name;
        std::shared_ptr<Observer> observer;
    };
    using Entries = std::vector<Entry>;

    mutable std::mutex lock_;
    std::shared_ptr<const Entries> entries_ = std::make_shared<const Entries>();
    std::atomic<std::size_t> count_{0};
    Token nextToken_ = 1;
};

// Removes its observer when it goes out of scope.
class ScopedObserver {
  public:
    ScopedObserver() = default;
    ScopedObserver(const std::string& name, NotificationCenter::Observer observer,
                   NotificationCenter& center = NotificationCenter::defaultCenter())
        : center_(&center), token_(center.addObserver(name, std::move(observer))) {}
    ScopedObserver(const ScopedObserver&) = delete;
    ScopedObserver& operator=(const ScopedObserver&) = delete;
    ScopedObserver(ScopedObserver&& other) noexcept { *this = std::move(other); }
    ScopedObserver& operator=(ScopedObserver&& other) noexcept {
        reset();
        center_ = other.center_;
        token_ = other.token_;
        other.center_ = nullptr;
        return *this;
    }
    ~ScopedObserver() { reset(); }
    void reset() {
        if (center_ != nullptr) {
            center_->removeObserver(token_);
            center_ = nullptr;
        }
    }

  private:
    NotificationCenter* center_ = nullptr;
    NotificationCenter::Token token_ = 0;
};

} // namespace twinsweep
