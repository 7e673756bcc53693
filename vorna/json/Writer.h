// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Writes one JSON text piece by piece, without an intermediate tree: the hot path of every event.
///
/// Boost.JSON escapes text, and the standard library writes numbers in the shortest form that reads back to
/// the same value. The writer adds the separators; the caller must pass keys and values in a valid order.

#include <vorna/base/Result.h>
#include <vorna/json/EncodingError.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace vorna::json {

/// Success, or why a value cannot be written; the output is unusable then. Like Result<void, Reason> but in
/// one byte, which is measurably faster where each field of each event returns one.
class [[nodiscard]] Written {
  public:
    /// Success.
    Written() = default;

    Written(Unexpected<EncodingError::Reason> reason) noexcept
        : state_(static_cast<std::uint8_t>(1 + static_cast<std::uint8_t>(reason.error()))) {}

    bool has_value() const noexcept { return state_ == 0; }  // NOLINT(readability-identifier-naming)

    explicit operator bool() const noexcept { return has_value(); }

    /// Only after a failure.
    EncodingError::Reason error() const noexcept { return static_cast<EncodingError::Reason>(state_ - 1); }

  private:
    std::uint8_t state_ = 0;
};

/// For one thread.
class Writer {
  public:
    /// Appends to `output`, which must outlive the writer.
    explicit Writer(std::string& output) : output_(output) {}

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();

    /// The key of the next value. Fails unless it is UTF-8.
    Written key(std::string_view key);

    /// Fails unless the text is UTF-8.
    Written text(std::string_view text);

    void number(std::uint64_t number);
    void number(std::int64_t number);
    /// Fail for infinities and not-a-number. A float is written with the digits that a float needs, not with
    /// those of the nearest double.
    Written number(double number);
    Written number(float number);

    /// A number that is JSON text already.
    void numberText(std::string_view digits);

    void boolean(bool value);
    void null();

    /// The path of the value that could not be written; callers prepend their steps while the recursion
    /// unwinds.
    Path& failurePath() noexcept { return failurePath_; }

  private:
    void separate();
    Written quoted(std::string_view text);
    template <class Number>
    void digits(Number number);
    template <class Number>
    Written finite(Number number);

    std::string& output_;
    bool first_ = true;
    Path failurePath_;
};

}  // namespace vorna::json
