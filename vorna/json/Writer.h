// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Writes one JSON text piece by piece, without an intermediate tree: the hot path of every event.
///
/// Text is escaped by Boost.JSON, numbers are written by the standard library in the shortest form that reads
/// back to the same value. The caller provides keys and values in a sensible order; separators are kept here.

#include <cstdint>
#include <string>
#include <string_view>

namespace vorna::json {

/// For one thread. What cannot be written leaves a note in `problem` and makes the call return false; the
/// text is then of no use.
class Writer {
  public:
    /// The text is appended to `output`, which must outlive the writer.
    explicit Writer(std::string& output) : output_(output) {}

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();

    /// The next value's key. False when it is not UTF-8.
    bool key(std::string_view key);

    /// False when the text is not UTF-8.
    bool text(std::string_view text);

    void number(std::uint64_t number);
    void number(std::int64_t number);
    /// False for numbers that JSON cannot hold: infinities and not-a-number. A float is written with the
    /// digits that a float needs, not with those of the double nearest to it.
    bool number(double number);
    bool number(float number);

    /// A number whose digits are at hand already. They must be those of a number in JSON.
    void numberText(std::string_view digits);

    void boolean(bool value);
    void null();

    /// What went wrong and where, as in "deviceData.deviceName: the text is not UTF-8"; empty while all is
    /// well.
    std::string problem() const;

    /// Names the place of the problem, from the inside out.
    void problemIsUnder(std::string_view key);

  private:
    void separate();
    bool quoted(std::string_view text);
    template <class Number>
    void digits(Number number);

    std::string& output_;
    bool first_ = true;
    std::string problem_;
    std::string place_;
};

}  // namespace vorna::json
