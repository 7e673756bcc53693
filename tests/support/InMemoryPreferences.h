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
#include <utility>
#include <vector>

namespace vorna::support {

class InMemoryPreferences final : public Preferences {
  public:
    /// From now on saves come to nothing and say so, or work again.
    void failSaves(bool fail = true) {
        const std::scoped_lock lock(mutex_);
        savesFail_ = fail;
    }

    /// Called at the start of each save, on the saving thread.
    void onSave(std::function<void()> callback) {
        const std::scoped_lock lock(mutex_);
        onSave_ = std::move(callback);
    }

    /// Puts a value there without its counting as a save.
    void put(std::string key, PreferenceValue value) {
        const std::scoped_lock lock(mutex_);
        values_.insert_or_assign(std::move(key), std::move(value));
    }

    /// Every save that was asked for, those that came to nothing too.
    std::vector<std::pair<std::string, PreferenceValue>> saves() const {
        const std::scoped_lock lock(mutex_);
        return saves_;
    }

    std::optional<PreferenceValue> value(std::string_view key) const override {
        const std::scoped_lock lock(mutex_);
        const auto found = values_.find(key);
        return found == values_.end() ? std::nullopt : std::optional(found->second);
    }

    bool setValue(std::string_view key, PreferenceValue value) override {
        std::function<void()> callback;
        {
            const std::scoped_lock lock(mutex_);
            callback = onSave_;
        }
        if (callback) {
            callback();
        }
        const std::scoped_lock lock(mutex_);
        saves_.emplace_back(key, value);
        if (!savesFail_) {
            values_.insert_or_assign(std::string(key), std::move(value));
        }
        return !savesFail_;
    }

  private:
    mutable std::mutex mutex_;
    std::map<std::string, PreferenceValue, std::less<>> values_;
    std::vector<std::pair<std::string, PreferenceValue>> saves_;
    std::function<void()> onSave_;
    bool savesFail_ = false;
};

}  // namespace vorna::support
