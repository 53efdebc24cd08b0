// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NotificationCenter.h"

namespace twinsweep {

NotificationCenter& NotificationCenter::defaultCenter() {
    static NotificationCenter center;
    return center;
}

NotificationCenter::Token NotificationCenter::addObserver(const std::string& name,
                                                          Observer observer) {
    std::lock_guard guard(lock_);
    auto next = std::make_shared<Entries>(*entries_);
    const Token token = nextToken_++;
    next->push_back({token, name, std::make_shared<Observer>(std::move(observer))});
    entries_ = std::move(next);
    count_.store(entries_->size(), std::memory_order_release);
    return token;
}

void NotificationCenter::removeObserver(Token token) {
    std::lock_guard guard(lock_);
    auto next = std::make_shared<Entries>();
    for (const Entry& e : *entries_) {
        if (e.token != token) {
            next->push_back(e);
        }
    }
    entries_ = std::move(next);
    count_.store(entries_->size(), std::memory_order_release);
}

void NotificationCenter::post(const std::string& name, const UserInfo& info) const {
    // Posting happens per directory entry; with nobody listening it costs one load.
    if (count_.load(std::memory_order_acquire) == 0) {
        return;
    }
    std::shared_ptr<const Entries> snapshot;
    {
        std::lock_guard guard(lock_);
        snapshot = entries_;
    }
    // Called outside the lock, so an observer may add or remove observers.
    for (const Entry& e : *snapshot) {
        if (e.name == name) {
            (*e.observer)(name, info);
        }
    }
}

} // namespace twinsweep
