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
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <functional>
#include <utility>
#include <variant>

namespace vorna {

namespace {

using Table = Preferences::Table;

constexpr const char* folderName = "preferences";

std::string fileNameFor(std::string_view key) {
    return fileNameOf(key) + ".json";
}

Result<std::string, std::error_code> readRegularFile(int folder, const std::string& name, int flags) {
    // Opening a pipe would wait for its other end.
    return openAt(folder, name.c_str(), O_RDONLY | O_NONBLOCK | flags)
        .and_then([](const FileDescriptor& file) -> Result<std::string, std::error_code> {
            struct stat status {};

            if (fstat(file.number(), &status) != 0) {
                return lastError();
            }
            if (!S_ISREG(status.st_mode)) {
                return Unexpected(std::make_error_code(std::errc::invalid_argument));
            }
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

/// Migrates a table from the document of earlier versions.
std::optional<Table> takeOver(const std::string& dataDirectory, std::string_view key) {
    const std::string path = dataDirectory + "/preferences.json";
    const auto document = readRegularFile(AT_FDCWD, path, 0);
    const boost::json::value root = document ? valueIn(*document) : boost::json::value();
    const boost::json::object* const entries = root.if_object();
    const boost::json::value* const entry =
        entries == nullptr ? nullptr : entries->if_contains(boost::json::string_view(key.data(), key.size()));
    std::optional<Table> table = entry == nullptr ? std::nullopt : tableOf(*entry);
    if (!table) {
        return std::nullopt;
    }
    // Never in place of a table saved in the meantime: that one is newer.
    const auto saved = save(dataDirectory, key, documentOf(*table), &AtomicFile::create);
    const bool isObsolete = saved || saved.error() == std::errc::file_exists;
    if (isObsolete && entries->size() == 1) {
        unlink(path.c_str());
    }
    return table;
}

}  // namespace

FilePreferences::FilePreferences(std::string dataDirectory) : dataDirectory_(std::move(dataDirectory)) {}

Result<std::string, std::error_code> FilePreferences::readDocument(std::string_view key) const {
    return openStoreFolder(dataDirectory_, folderName).and_then([key](const FileDescriptor& folder) {
        return readRegularFile(folder.number(), fileNameFor(key), O_NOFOLLOW);
    });
}

std::optional<Table> FilePreferences::table(std::string_view key) const {
    const auto document = readDocument(key);
    if (document) {
        return tableOf(valueIn(*document));
    }
    const bool isAbsent = document.error() == std::errc::no_such_file_or_directory;
    return isAbsent && !dataDirectory_.empty() ? takeOver(dataDirectory_, key) : std::nullopt;
}

Result<void, std::error_code> FilePreferences::setTable(std::string_view key, const Table& table) {
    return save(dataDirectory_, key, documentOf(table), &AtomicFile::replace);
}

bool FilePreferences::readTable(
    std::string_view key,
    const std::function<void(std::string_view entry, std::string_view text)>& visit) const {
    const auto document = readDocument(key);
    if (!document) {
        // Perhaps there is one to be migrated.
        return Preferences::readTable(key, visit);
    }
    VisitorSink sink(visit);
    return json::readTextTable(*document, std::nullopt, sink).has_value();
}

Result<void, std::error_code> FilePreferences::writeTable(std::string_view key, const TextTable& table) {
    return save(dataDirectory_, key, documentOf(table), &AtomicFile::replace);
}

}  // namespace vorna
