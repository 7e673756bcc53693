// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/FilePreferences.h>

#include <vorna/json/TextTableReader.h>
#include <vorna/json/Value.h>
#include <vorna/json/Writer.h>
#include <vorna/platform/AtomicFile.h>
#include <vorna/platform/FileOperations.h>
#include <vorna/platform/file/StoreFolder.h>

#include <boost/json/object.hpp>
#include <boost/json/string.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <system_error>
#include <utility>

namespace vorna {

namespace {

using Table = Preferences::Table;

constexpr const char* folderName = "preferences";

std::string fileNameFor(std::string_view key) {
    return fileNameOf(key) + ".json";
}

Result<std::string, std::error_code> readDocument(int folder, const std::string& name) {
    return openRegularFile(folder, name.c_str(), O_RDONLY).and_then([](const FileDescriptor& file) {
        return readAll(file, FilePreferences::largestFile);
    });
}

/// Null for text that is not JSON, as for null.
boost::json::value valueIn(std::string_view document) {
    return json::parse(document).value_or(boost::json::value());
}

/// std::nullopt for anything but an object of texts.
std::optional<Table> tableOf(const boost::json::value& value) {
    const boost::json::object* const object = value.if_object();
    if (object == nullptr) {
        return std::nullopt;
    }
    Table table;
    for (const auto& member : *object) {
        const boost::json::string* const text = member.value().if_string();
        if (text == nullptr) {
            return std::nullopt;
        }
        table.emplace(std::string(member.key().data(), member.key().size()),
                      std::string(text->data(), text->size()));
    }
    return table;
}

/// Passes on the entries of a table.
class VisitorSink final : public json::TextTableSink {
  public:
    using Visit = std::function<void(std::string_view entry, std::string_view text)>;

    explicit VisitorSink(const Visit& visit) noexcept : visit_(visit) {}

    /// There is one table in a document.
    void clear() override {}

    void add(std::string_view key, std::string_view value) override { visit_(key, value); }

  private:
    const Visit& visit_;
};

/// std::nullopt if any text is not UTF-8.
std::optional<std::string> documentOf(const Table& table) {
    std::string document;
    json::Writer writer(document);
    writer.beginObject();
    for (const auto& [key, text] : table) {
        if (!writer.key(key) || !writer.text(text)) {
            return std::nullopt;
        }
    }
    writer.endObject();
    document += '\n';
    return document;
}

/// Likewise. A document of this size is not left to grow by doubling.
std::optional<std::string> documentOf(const TextTable& table) {
    constexpr std::size_t punctuation = 6;
    std::size_t size = punctuation;
    table.forEach(
        [&](std::string_view key, std::string_view text) { size += key.size() + text.size() + punctuation; });
    std::string document;
    document.reserve(size);
    json::Writer writer(document);
    bool isWritten = true;
    writer.beginObject();
    table.forEach([&](std::string_view key, std::string_view text) {
        isWritten = isWritten && writer.key(key) && writer.text(text);
    });
    writer.endObject();
    document += '\n';
    return isWritten ? std::optional(std::move(document)) : std::nullopt;
}

using Write = Result<void, std::error_code> (AtomicFile::*)(std::string_view contents, mode_t mode) const;

Result<void, std::error_code> save(const std::string& dataDirectory, std::string_view key,
                                   const std::optional<std::string>& document, Write write) {
    if (!document) {
        return Unexpected(std::make_error_code(std::errc::illegal_byte_sequence));
    }
    if (document->size() > FilePreferences::largestFile) {
        return Unexpected(std::make_error_code(std::errc::file_too_large));
    }
    return makeStoreFolder(dataDirectory, folderName).and_then([&](const FileDescriptor& folder) {
        return (AtomicFile(folder, fileNameFor(key)).*write)(*document, AtomicFile::ownerOnly);
    });
}

/// The document in which earlier versions kept all tables.
class FormerDocument {
  public:
    explicit FormerDocument(const std::string& dataDirectory) : path_(dataDirectory + "/preferences.json") {
        if (const auto document = readDocument(AT_FDCWD, path_)) {
            root_ = valueIn(*document);
        }
    }

    std::optional<Table> table(std::string_view key) const {
        const boost::json::object* const entries = root_.if_object();
        const boost::json::value* const entry =
            entries == nullptr ? nullptr
                               : entries->if_contains(boost::json::string_view(key.data(), key.size()));
        return entry == nullptr ? std::nullopt : tableOf(*entry);
    }

    /// Removes the document if it has nothing but this table, once the new one in the folder is on the disk.
    void removeIfOnly(std::string_view key, const FileDescriptor& folder) const {
        const boost::json::object* const entries = root_.if_object();
        const bool isOnly = entries != nullptr && entries->size() == 1 &&
                            entries->contains(boost::json::string_view(key.data(), key.size()));
        if (isOnly && syncFolder(folder)) {
            unlink(path_.c_str());
        }
    }

  private:
    std::string path_;
    boost::json::value root_;
};

/// Migrates a table from the former document.
std::optional<Table> takeOver(const std::string& dataDirectory, std::string_view key) {
    const FormerDocument former(dataDirectory);
    std::optional<Table> table = former.table(key);
    if (!table) {
        return std::nullopt;
    }
    // Never in place of a table saved in the meantime: that one is newer.
    const auto saved = save(dataDirectory, key, documentOf(*table), &AtomicFile::create);
    if (saved || saved.error() == std::errc::file_exists) {
        if (const auto folder = openStoreFolder(dataDirectory, folderName)) {
            former.removeIfOnly(key, *folder);
        }
    }
    return table;
}

using Saved = Result<std::optional<Table>, std::error_code>;

/// std::nullopt if the file holds no table.
Saved savedTable(const std::string& dataDirectory, std::string_view key) {
    const auto folder = openStoreFolder(dataDirectory, folderName);
    if (!folder) {
        return Unexpected(folder.error());
    }
    const auto document = readDocument(folder->number(), fileNameFor(key));
    if (!document) {
        return Unexpected(document.error());
    }
    std::optional<Table> table = tableOf(valueIn(*document));
    if (table) {
        // Still there if a migration was interrupted, or if the table was saved before it was first read.
        FormerDocument(dataDirectory).removeIfOnly(key, *folder);
    }
    return Saved(std::move(table));
}

}  // namespace

FilePreferences::FilePreferences(std::string dataDirectory) : dataDirectory_(std::move(dataDirectory)) {}

std::optional<Table> FilePreferences::table(std::string_view key) const {
    const Saved saved = savedTable(dataDirectory_, key);
    if (saved) {
        return *saved;
    }
    if (saved.error() != std::errc::no_such_file_or_directory || dataDirectory_.empty()) {
        return std::nullopt;
    }
    if (std::optional<Table> former = takeOver(dataDirectory_, key)) {
        return former;
    }
    // Another process may have completed the migration in between.
    return savedTable(dataDirectory_, key).value_or(std::nullopt);
}

Result<void, std::error_code> FilePreferences::setTable(std::string_view key, const Table& table) {
    return save(dataDirectory_, key, documentOf(table), &AtomicFile::replace);
}

bool FilePreferences::readTable(
    std::string_view key,
    const std::function<void(std::string_view entry, std::string_view text)>& visit) const {
    const auto folder = openStoreFolder(dataDirectory_, folderName);
    const Result<std::string, std::error_code> document =
        folder ? readDocument(folder->number(), fileNameFor(key)) : Unexpected(folder.error());
    if (!document) {
        // Perhaps there is one to be migrated.
        return Preferences::readTable(key, visit);
    }
    VisitorSink sink(visit);
    const bool isTable = json::readTextTable(*document, std::nullopt, sink).has_value();
    if (isTable) {
        FormerDocument(dataDirectory_).removeIfOnly(key, *folder);
    }
    return isTable;
}

Result<void, std::error_code> FilePreferences::writeTable(std::string_view key, const TextTable& table) {
    return save(dataDirectory_, key, documentOf(table), &AtomicFile::replace);
}

}  // namespace vorna
