// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/TextTableReader.h>

#include <vorna/json/Value.h>

#include <boost/json/basic_parser_impl.hpp>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <string>
#include <utility>

namespace vorna::json {

namespace {

using boost::json::error_code;

// NOLINTBEGIN(readability-identifier-naming, readability-convert-member-functions-to-static): the parser's
// names.

/// What the parser calls. Keys and strings may come in several parts, of which the last has a call of its
/// own.
class Reader {
  public:
    static constexpr std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_array_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_key_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_string_size = std::numeric_limits<std::size_t>::max();

    Reader(std::optional<std::string_view> member, TextTableSink& sink) : member_(member), sink_(sink) {}

    /// The outcome once the text has proved to be JSON.
    Result<void, DecodingError> result() {
        if (error_) {
            return Unexpected(*std::move(error_));
        }
        if (!isFound_) {
            return Unexpected(errorAt({.expected = "a value", .found = DecodingError::Missing()}));
        }
        return {};
    }

    bool on_document_begin(error_code&) { return true; }

    bool on_document_end(error_code&) { return true; }

    bool on_object_begin(error_code&) {
        beginValue(Kind::object);
        ++depth_;
        return true;
    }

    bool on_object_end(std::size_t, error_code&) { return leave(); }

    bool on_array_begin(error_code&) {
        beginValue(Kind::array);
        ++depth_;
        return true;
    }

    bool on_array_end(std::size_t, error_code&) { return leave(); }

    bool on_key_part(boost::json::string_view part, std::size_t, error_code&) {
        if (depth_ == 1 || isInTable()) {
            append(key_, isKeyComplete_, part);
        }
        return true;
    }

    bool on_key(boost::json::string_view part, std::size_t total, error_code& error) {
        on_key_part(part, total, error);
        isKeyComplete_ = true;
        isMemberNext_ = depth_ == 1 && member_ && key_ == *member_;
        return true;
    }

    bool on_string_part(boost::json::string_view part, std::size_t, error_code&) {
        if (isInTable()) {
            append(value_, isValueComplete_, part);
        }
        return true;
    }

    bool on_string(boost::json::string_view part, std::size_t total, error_code& error) {
        beginValue(Kind::string);
        if (isInTable()) {
            on_string_part(part, total, error);
            isValueComplete_ = true;
            if (!error_) {
                sink_.add(key_, value_);
            }
        }
        return true;
    }

    bool on_number_part(boost::json::string_view, error_code&) { return true; }

    bool on_int64(std::int64_t, boost::json::string_view, error_code&) { return beginValue(Kind::number); }

    bool on_uint64(std::uint64_t, boost::json::string_view, error_code&) { return beginValue(Kind::number); }

    bool on_double(double, boost::json::string_view, error_code&) { return beginValue(Kind::number); }

    bool on_bool(bool, error_code&) { return beginValue(Kind::boolean); }

    bool on_null(error_code&) { return beginValue(Kind::null); }

    bool on_comment_part(boost::json::string_view, error_code&) { return true; }

    bool on_comment(boost::json::string_view, error_code&) { return true; }

  private:
    /// Whether the values at this depth are the table's.
    bool isInTable() const { return tableDepth_ != 0 && depth_ == tableDepth_; }

    static void append(std::string& text, bool& isComplete, boost::json::string_view part) {
        if (std::exchange(isComplete, false)) {
            text.clear();
        }
        text.append(part.data(), part.size());
    }

    /// Adds the table's own path to that of an error in it.
    DecodingError errorAt(DecodingError error) const {
        if (member_) {
            error.path.prepend(*member_);
        }
        return error;
    }

    bool beginValue(Kind kind) {
        if (isInTable()) {
            if (kind != Kind::string && !error_) {
                DecodingError error{.expected = "a string", .found = kind};
                error.path.prepend(std::string_view(key_));
                error_ = errorAt(std::move(error));
            }
        } else if (depth_ == 0 && member_) {
            if (kind != Kind::object) {
                error_ = DecodingError{.expected = "an object", .found = kind};
            }
        } else if (depth_ == 0 || std::exchange(isMemberNext_, false)) {
            beginTable(kind);
        }
        return true;
    }

    void beginTable(Kind kind) {
        sink_.clear();
        error_.reset();
        isFound_ = true;
        if (kind == Kind::object) {
            tableDepth_ = depth_ + 1;
        } else {
            error_ = errorAt({.expected = "an object", .found = kind});
        }
    }

    bool leave() {
        --depth_;
        if (depth_ < tableDepth_) {
            tableDepth_ = 0;
        }
        return true;
    }

    const std::optional<std::string_view> member_;
    TextTableSink& sink_;
    std::size_t depth_ = 0;
    /// That of the table's values; 0 outside the table.
    std::size_t tableDepth_ = 0;
    bool isMemberNext_ = false;
    bool isFound_ = false;
    std::string key_;
    std::string value_;
    bool isKeyComplete_ = false;
    bool isValueComplete_ = false;
    std::optional<DecodingError> error_;
};

// NOLINTEND(readability-identifier-naming, readability-convert-member-functions-to-static)

}  // namespace

Result<void, DecodingError> readTextTable(std::string_view text, std::optional<std::string_view> member,
                                          TextTableSink& sink) {
    try {
        boost::json::basic_parser<Reader> parser(parseOptions(), member, sink);
        error_code error;
        const std::size_t read = text.empty() ? 0 : parser.write_some(true, text.data(), text.size(), error);
        if (!error && read < text.size()) {
            error = boost::json::error::extra_data;
        }
        if (!error) {
            parser.write_some(false, nullptr, 0, error);
        }
        if (error) {
            return Unexpected(notJson(read, error.message()));
        }
        return parser.handler().result();
    } catch (const std::exception& problem) {
        // Out of memory.
        return Unexpected(notJson(0, problem.what()));
    }
}

}  // namespace vorna::json
