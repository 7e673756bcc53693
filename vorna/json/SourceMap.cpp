// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/SourceMap.h>

#include <vorna/json/TextScanner.h>
#include <vorna/json/Value.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace vorna::json {

namespace {

/// An object or array that has begun and not ended yet.
struct Open {
    std::size_t entry = 0;
    std::size_t values = 0;
    /// The last entry of each key.
    std::unordered_map<std::string, std::size_t> keys;
};

std::vector<SourceMap::Entry> entriesOf(std::string_view text) {
    std::vector<SourceMap::Entry> entries;
    std::vector<Open> open;
    std::size_t at = behindSpace(text, 0);
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
                    entry.keyEnd = behindString(text, at);
                    const auto [last, isNew] =
                        parent.keys.try_emplace(unquoted(text.substr(at, entry.keyEnd - at)), entries.size());
                    if (!isNew) {
                        entry.repeatsKey = true;
                        entries[std::exchange(last->second, entries.size())].isSuperseded = true;
                    }
                    at = behindSpace(text, behindSpace(text, entry.keyEnd) + 1);
                }
            }
            entry.valueBegin = at;
            entry.kind = kindAt(text, at);
            if (entry.kind == Kind::object || entry.kind == Kind::array) {
                open.push_back({.entry = entries.size(), .values = 0, .keys = {}});
                ++at;
            } else {
                at = behindValue(text, at);
                entry.valueEnd = at;
            }
            entries.push_back(entry);
        }
        at = behindSpace(text, at);
    } while (!open.empty());
    return entries;
}

}  // namespace

std::variant<SourceMap, DecodingError> SourceMap::read(std::string_view text) {
    std::variant<boost::json::value, DecodingError> tree = parse(text);
    if (auto* const error = std::get_if<DecodingError>(&tree)) {
        return std::move(*error);
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

std::string SourceMap::path(std::size_t entry) const {
    std::vector<std::size_t> wayUp;
    for (std::size_t at = entry; entries_[at].parent != none; at = entries_[at].parent) {
        wayUp.push_back(at);
    }
    std::string path;
    std::for_each(wayUp.rbegin(), wayUp.rend(), [&](std::size_t at) {
        if (entries_[at].isMember()) {
            appendStep(path, std::string_view(key(at)));
        } else {
            appendStep(path, entries_[at].index);
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
    const auto behind = std::upper_bound(lines_.begin(), lines_.end(), offset);
    const auto line = static_cast<std::size_t>(behind - lines_.begin());
    const std::size_t begin = lines_[line - 1];
    return {line, json::positionAt(text_.substr(begin), offset - begin).column};
}

std::optional<std::size_t> SourceMap::find(std::string_view path) const {
    std::size_t at = 0;
    std::string walked;
    while (walked.size() < path.size()) {
        std::optional<std::size_t> next;
        std::string nextWalked;
        for (std::size_t child = at + 1;
             child < entries_.size() && entries_[child].valueBegin < entries_[at].valueEnd; ++child) {
            if (entries_[child].parent != at || entries_[child].isSuperseded) {
                continue;
            }
            std::string candidate = walked;
            if (entries_[child].isMember()) {
                appendStep(candidate, std::string_view(key(child)));
            } else {
                appendStep(candidate, entries_[child].index);
            }
            const bool isCut = candidate.size() < path.size() && path[candidate.size()] != '.' &&
                               path[candidate.size()] != '[';
            if (path.starts_with(candidate) && !isCut) {
                next = child;
                nextWalked = std::move(candidate);
                break;
            }
        }
        if (!next) {
            return std::nullopt;
        }
        at = *next;
        walked = std::move(nextWalked);
    }
    return at;
}

}  // namespace vorna::json
