// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/SourceMap.h>

#include <vorna/json/TextScanner.h>
#include <vorna/json/Value.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace vorna::json {

namespace {

/// An object or array whose end has not been reached.
struct Open {
    std::size_t entry = 0;
    std::size_t values = 0;
    /// The latest entry of each key.
    std::unordered_map<std::string, std::size_t> keys;
};

std::vector<SourceMap::Entry> entriesOf(std::string_view text) {
    std::vector<SourceMap::Entry> entries;
    std::vector<Open> open;
    std::size_t at = skipSpace(text, 0);
    do {
        if (!open.empty() && (text[at] == ']' || text[at] == '}')) {
            entries[open.back().entry].valueEnd = ++at;
            open.pop_back();
        } else if (text[at] == ',') {
            ++at;
        } else {
            SourceMap::Entry entry;
            if (!open.empty()) {
                Open& parent = open.back();
                entry.parent = parent.entry;
                entry.index = parent.values++;
                if (entries[parent.entry].kind == Kind::object) {
                    entry.keyBegin = at;
                    entry.keyEnd = endOfString(text, at);
                    const auto [last, isNew] =
                        parent.keys.try_emplace(unquoted(text.substr(at, entry.keyEnd - at)), entries.size());
                    if (!isNew) {
                        entry.repeatsKey = true;
                        entries[std::exchange(last->second, entries.size())].isSuperseded = true;
                    }
                    at = skipSpace(text, skipSpace(text, entry.keyEnd) + 1);
                }
            }
            entry.valueBegin = at;
            entry.kind = kindAt(text, at);
            if (entry.kind == Kind::object || entry.kind == Kind::array) {
                open.push_back({.entry = entries.size(), .values = 0, .keys = {}});
                ++at;
            } else {
                at = endOfValue(text, at);
                entry.valueEnd = at;
            }
            entries.push_back(entry);
        }
        at = skipSpace(text, at);
    } while (!open.empty());
    return entries;
}

}  // namespace

Result<SourceMap, DecodingError> SourceMap::read(std::string_view text) {
    if (Result<boost::json::value, DecodingError> tree = parse(text); !tree) {
        return Unexpected(std::move(tree).error());
    }
    SourceMap map;
    map.text_ = text;
    map.entries_ = entriesOf(text);
    map.lines_.push_back(0);
    for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1)) {
        map.lines_.push_back(at + 1);
    }
    return map;
}

std::string SourceMap::key(std::size_t entry) const {
    const Entry& place = entries_[entry];
    return place.isMember() ? unquoted(text_.substr(place.keyBegin, place.keyEnd - place.keyBegin))
                            : std::string();
}

Path SourceMap::path(std::size_t entry) const {
    std::vector<std::size_t> ancestry;
    for (std::size_t at = entry; entries_[at].parent != none; at = entries_[at].parent) {
        ancestry.push_back(at);
    }
    Path path;
    std::for_each(ancestry.rbegin(), ancestry.rend(), [&](std::size_t at) {
        if (entries_[at].isMember()) {
            path.append(std::string_view(key(at)));
        } else {
            path.append(entries_[at].index);
        }
    });
    return path;
}

std::string_view SourceMap::valueText(std::size_t entry) const {
    const Entry& place = entries_[entry];
    return text_.substr(place.valueBegin, place.valueEnd - place.valueBegin);
}

Position SourceMap::position(std::size_t entry) const {
    const Entry& place = entries_[entry];
    return positionAt(place.isMember() ? place.keyBegin : place.valueBegin);
}

Position SourceMap::valuePosition(std::size_t entry) const {
    return positionAt(entries_[entry].valueBegin);
}

Position SourceMap::positionAt(std::size_t offset) const {
    const auto next = std::upper_bound(lines_.begin(), lines_.end(), offset);
    const auto line = static_cast<std::size_t>(next - lines_.begin());
    const std::size_t begin = lines_[line - 1];
    return {line, json::positionAt(text_.substr(begin), offset - begin).column};
}

std::optional<std::size_t> SourceMap::find(const Path& path) const {
    std::size_t at = 0;
    for (const Path::Step& step : path.steps()) {
        const std::size_t parent = at;
        const auto isAtStep = [&](std::size_t number) {
            const Entry& child = entries_[number];
            if (child.parent != parent || child.isSuperseded) {
                return false;
            }
            const auto* const wanted = std::get_if<std::string>(&step);
            return wanted != nullptr ? child.isMember() && key(number) == *wanted
                                     : !child.isMember() && child.index == std::get<std::size_t>(step);
        };
        do {
            ++at;
            if (at == entries_.size() || entries_[at].valueBegin >= entries_[parent].valueEnd) {
                return std::nullopt;
            }
        } while (!isAtStep(at));
    }
    return at;
}

}  // namespace vorna::json
