// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A fake credential store in memory.
///
/// Knobs, to be turned at any time:
///   put, take          what is stored, without a call being recorded
///   readStatus, removeStatus, addStatus
///                      an operation then does nothing but answer that status
///   hold, resume       operations wait in between, as with a service that hangs, from the first one on or
///                      after some have gone through
/// and it remembers every call with its thread.

#include <vorna/platform/CredentialStore.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace vorna::support {

/// Any thread.
class InMemoryCredentialStore final : public CredentialStore {
  public:
    struct Call {
        /// "read", "remove" or "add".
        std::string operation;
        std::string service;
        std::string account;
        /// The value passed to `add`.
        std::string value;
        std::thread::id thread;
    };

    void put(std::string_view service, std::string_view account, std::string_view value) {
        const std::scoped_lock lock(mutex_);
        items_.insert_or_assign({std::string(service), std::string(account)}, value);
        changed_.notify_all();
    }

    void take(std::string_view service, std::string_view account) {
        const std::scoped_lock lock(mutex_);
        items_.erase({std::string(service), std::string(account)});
        changed_.notify_all();
    }

    void readStatus(std::optional<CredentialStatus> status) { set(readStatus_, status); }

    void removeStatus(std::optional<CredentialStatus> status) { set(removeStatus_, status); }

    void addStatus(std::optional<CredentialStatus> status) { set(addStatus_, status); }

    /// Sets all three.
    void answerOnly(std::optional<CredentialStatus> status) {
        readStatus(status);
        removeStatus(status);
        addStatus(status);
    }

    void hold(std::size_t after = 0) {
        const std::scoped_lock lock(mutex_);
        isHeld_ = true;
        goThrough_ = after;
    }

    void resume() {
        const std::scoped_lock lock(mutex_);
        isHeld_ = false;
        changed_.notify_all();
    }

    std::optional<std::string> value(std::string_view service, std::string_view account) const {
        const std::scoped_lock lock(mutex_);
        const auto found = items_.find({std::string(service), std::string(account)});
        return found == items_.end() ? std::nullopt : std::optional(found->second);
    }

    std::vector<Call> calls() const {
        const std::scoped_lock lock(mutex_);
        return calls_;
    }

    std::vector<std::string> operations() const {
        std::vector<std::string> names;
        for (const Call& call : calls()) {
            names.push_back(call.operation);
        }
        return names;
    }

    void forgetCalls() {
        const std::scoped_lock lock(mutex_);
        calls_.clear();
    }

    /// Waits for another thread's effect on this store. False if it does not occur within half a minute.
    bool waitUntil(const std::function<bool(const InMemoryCredentialStore&)>& condition) const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (true) {
            std::uint64_t seen = 0;
            {
                const std::scoped_lock lock(mutex_);
                seen = changes_;
            }
            if (condition(*this)) {
                return true;
            }
            std::unique_lock lock(mutex_);
            if (!changed_.wait_until(lock, deadline, [&] { return changes_ != seen; })) {
                return false;
            }
        }
    }

    Result<std::string, CredentialStatus> read(std::string_view service, std::string_view account) override {
        std::unique_lock lock(mutex_);
        enter(lock, {"read", std::string(service), std::string(account), {}, std::this_thread::get_id()});
        if (readStatus_) {
            return Unexpected(*readStatus_);
        }
        const auto found = items_.find({std::string(service), std::string(account)});
        if (found == items_.end()) {
            return Unexpected(CredentialStatus::itemNotFound);
        }
        return found->second;
    }

    Result<void, CredentialStatus> remove(std::string_view service, std::string_view account) override {
        std::unique_lock lock(mutex_);
        enter(lock, {"remove", std::string(service), std::string(account), {}, std::this_thread::get_id()});
        if (removeStatus_) {
            return Unexpected(*removeStatus_);
        }
        if (items_.erase({std::string(service), std::string(account)}) == 0) {
            return Unexpected(CredentialStatus::itemNotFound);
        }
        return {};
    }

    Result<void, CredentialStatus> add(std::string_view service, std::string_view account,
                                       std::string_view value) override {
        std::unique_lock lock(mutex_);
        enter(lock, {"add", std::string(service), std::string(account), std::string(value),
                     std::this_thread::get_id()});
        if (addStatus_) {
            return Unexpected(*addStatus_);
        }
        if (!items_.try_emplace({std::string(service), std::string(account)}, value).second) {
            return Unexpected(CredentialStatus::duplicateItem);
        }
        return {};
    }

  private:
    void set(std::optional<CredentialStatus>& knob, std::optional<CredentialStatus> status) {
        const std::scoped_lock lock(mutex_);
        knob = status;
    }

    /// Threads waiting for a change check again only after the operation: they need the lock.
    void enter(std::unique_lock<std::mutex>& lock, Call call) {
        calls_.push_back(std::move(call));
        ++changes_;
        changed_.notify_all();
        if (isHeld_ && goThrough_ > 0) {
            --goThrough_;
            return;
        }
        changed_.wait(lock, [this] { return !isHeld_; });
    }

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::uint64_t changes_ = 0;
    std::map<std::pair<std::string, std::string>, std::string> items_;
    std::vector<Call> calls_;
    std::optional<CredentialStatus> readStatus_;
    std::optional<CredentialStatus> removeStatus_;
    std::optional<CredentialStatus> addStatus_;
    bool isHeld_ = false;
    std::size_t goThrough_ = 0;
};

}  // namespace vorna::support
