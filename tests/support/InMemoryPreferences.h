// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Preferences for tests.
///
/// Knobs: `failSaves`, `onSave`, `put`. Remembered: every save, in order.

#include <vorna/platform/Preferences.h>

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace vorna::support {

class InMemoryPreferences final : public Preferences {
  public:
    /// From now on saves fail with ENOSPC, or succeed again.
    void failSaves(bool fail = true) {
        const std::scoped_lock lock(mutex_);
        savesFail_ = fail;
    }

    /// Called at the start of each save, on the saving thread.
    void onSave(std::function<void()> callback) {
        const std::scoped_lock lock(mutex_);
        onSave_ = std::move(callback);
    }

    /// Stores a table without recording a save.
    void put(std::string key, Table table) {
        const std::scoped_lock lock(mutex_);
        tables_.insert_or_assign(std::move(key), std::move(table));
    }

    /// Every save that was tried, failed ones included.
    std::vector<std::pair<std::string, Table>> saves() const {
        const std::scoped_lock lock(mutex_);
        return saves_;
    }

    std::optional<Table> table(std::string_view key) const override {
        const std::scoped_lock lock(mutex_);
        const auto found = tables_.find(key);
        return found == tables_.end() ? std::nullopt : std::optional(found->second);
    }

    Result<void, std::error_code> setTable(std::string_view key, const Table& table) override {
        std::function<void()> callback;
        {
            const std::scoped_lock lock(mutex_);
            callback = onSave_;
        }
        if (callback) {
            callback();
        }
        const std::scoped_lock lock(mutex_);
        saves_.emplace_back(key, table);
        if (savesFail_) {
            return Unexpected(std::make_error_code(std::errc::no_space_on_device));
        }
        tables_.insert_or_assign(std::string(key), table);
        return {};
    }

  private:
    mutable std::mutex mutex_;
    std::map<std::string, Table, std::less<>> tables_;
    std::vector<std::pair<std::string, Table>> saves_;
    std::function<void()> onSave_;
    bool savesFail_ = false;
};

}  // namespace vorna::support
