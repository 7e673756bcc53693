// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/SecretServiceCredentialStore.h>

#include <vorna/platform/ServiceThread.h>
#include <vorna/platform/glib/PrivateBus.h>
#include <vorna/platform/glib/PromptlessSecretService.h>
#include <vorna/text/Utf8.h>

#include <libsecret/secret.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <functional>
#include <future>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

namespace vorna {

namespace {

using glib::ErrorSlot;
using glib::Object;
using glib::Owned;
using Attributes = Owned<GHashTable, g_hash_table_unref>;
using Secret = Owned<SecretValue, secret_value_unref>;
using Time = glib::PrivateBus::Time;

/// The attributes that identify an item.
struct ItemName {
    std::string service;
    std::string account;
    std::string application;

    bool canBeAttributes() const {
        const auto fits = [](const std::string& text) {
            return utf8::isValid(text) && text.find('\0') == std::string::npos;
        };
        return fits(service) && fits(account) && fits(application);
    }
};

constexpr const char* serviceAttribute = "service";
constexpr const char* accountAttribute = "account";
constexpr const char* applicationAttribute = "application";

const SecretSchema& schema() {
    // Items are matched by their attributes alone, so that one restored with another tool is found.
    static const SecretSchema value = [] {
        SecretSchema made{};
        made.name = "io.vorna.Credential";
        made.flags = SECRET_SCHEMA_DONT_MATCH_NAME;
        made.attributes[0] = {serviceAttribute, SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[1] = {accountAttribute, SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[2] = {applicationAttribute, SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return value;
}

/// The address of the session bus, if one is running. GIO's own search would go on to start a bus.
std::optional<std::string> sessionBusAddress() {
    if (const char* const given = std::getenv("DBUS_SESSION_BUS_ADDRESS");  // NOLINT(concurrency-mt-unsafe)
        given != nullptr && *given != '\0') {
        return given;
    }
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");  // NOLINT(concurrency-mt-unsafe)
    if (folder == nullptr || *folder != '/') {
        return std::nullopt;
    }
    const std::string path = std::string(folder) + "/bus";

    struct stat status {};

    if (stat(path.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode) || status.st_uid != geteuid()) {
        return std::nullopt;
    }
    const glib::Text escaped(g_dbus_address_escape_value(path.c_str()));
    return std::string("unix:path=") + escaped.get();
}

CredentialStatus statusOf(const GError* error) {
    if (error == nullptr) {
        return CredentialStatus::notAvailable;
    }
    if (glib::isPromptRefused(*error) || g_error_matches(error, SECRET_ERROR, SECRET_ERROR_IS_LOCKED)) {
        return CredentialStatus::interactionNotAllowed;
    }
    if (g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED)) {
        return CredentialStatus::notPermitted;
    }
    return CredentialStatus::notAvailable;
}

/// One conversation with the Secret Service, on one thread.
class Conversation {
  public:
    Conversation(const std::string& address, ItemName name, const std::stop_token& stop, Time deadline)
        : name_(std::move(name)),
          bus_(address, stop, deadline),
          service_(openService(bus_)) {}

    Result<std::string, CredentialStatus> read() {
        return find(SECRET_SEARCH_LOAD_SECRETS)
            .and_then([this](const Items& items) -> Result<std::string, CredentialStatus> {
                for (const Object<SecretItem>& item : items.unlocked) {
                    if (const Secret secret{secret_item_get_secret(item.get())}) {
                        gsize size = 0;
                        const char* const bytes = secret_value_get(secret.get(), &size);
                        return std::string(bytes, size);
                    }
                }
                if (!items.unlocked.empty()) {
                    return Unexpected(CredentialStatus::notAvailable);
                }
                return Unexpected(items.hasLocked ? CredentialStatus::interactionNotAllowed
                                                  : statusOfAbsence());
            });
    }

    Result<void, CredentialStatus> remove() {
        return find(SECRET_SEARCH_NONE)
            .and_then([this](const Items& items) -> Result<void, CredentialStatus> {
                ErrorSlot error;
                for (const Object<SecretItem>& item : items.unlocked) {
                    if (!secret_item_delete_sync(item.get(), bus_.cancellable(), error.out())) {
                        return Unexpected(statusOf(error.get()));
                    }
                }
                if (items.hasLocked) {
                    return Unexpected(CredentialStatus::interactionNotAllowed);
                }
                if (items.unlocked.empty()) {
                    return Unexpected(statusOfAbsence());
                }
                return {};
            });
    }

    Result<void, CredentialStatus> add(std::string_view value) {
        return find(SECRET_SEARCH_NONE).and_then([&](const Items& items) -> Result<void, CredentialStatus> {
            if (!items.unlocked.empty() || items.hasLocked) {
                return Unexpected(CredentialStatus::duplicateItem);
            }
            return defaultCollection().and_then(
                [&](const Object<SecretCollection>& collection) { return create(collection.get(), value); });
        });
    }

  private:
    struct Items {
        /// This application's first.
        std::vector<Object<SecretItem>> unlocked;
        bool hasLocked = false;
    };

    static Result<Object<SecretService>, CredentialStatus> openService(const glib::PrivateBus& bus) {
        if (!bus.connection()) {
            return Unexpected(statusOf(bus.connection().error().get()));
        }
        return glib::openPromptlessService(bus.connection()->get(), bus.cancellable())
            .transform_error([](const glib::Error& error) { return statusOf(error.get()); });
    }

    static void insert(const Attributes& attributes, const char* name, const std::string& value) {
        g_hash_table_replace(attributes.get(), g_strdup(name), g_strdup(value.c_str()));
    }

    Attributes attributesToFind() const {
        Attributes attributes(g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free));
        insert(attributes, serviceAttribute, name_.service);
        insert(attributes, accountAttribute, name_.account);
        return attributes;
    }

    Attributes attributesToStore() const {
        Attributes attributes = attributesToFind();
        if (!name_.application.empty()) {
            insert(attributes, applicationAttribute, name_.application);
        }
        return attributes;
    }

    Result<Items, CredentialStatus> find(SecretSearchFlags flags) const {
        if (!service_) {
            return Unexpected(service_.error());
        }
        const Attributes attributes = attributesToFind();
        ErrorSlot error;
        const Owned<GList, g_list_free> found(secret_service_search_sync(
            service_->get(), &schema(), attributes.get(),
            static_cast<SecretSearchFlags>(flags | SECRET_SEARCH_ALL), bus_.cancellable(), error.out()));
        if (error.get() != nullptr) {
            return Unexpected(statusOf(error.get()));
        }
        Items items;
        std::vector<Object<SecretItem>> shared;
        for (const GList* entry = found.get(); entry != nullptr; entry = entry->next) {
            Object<SecretItem> item(static_cast<SecretItem*>(entry->data));
            const Attributes itsAttributes(secret_item_get_attributes(item.get()));
            const auto* const application = static_cast<const char*>(
                itsAttributes ? g_hash_table_lookup(itsAttributes.get(), applicationAttribute) : nullptr);
            const bool isShared = application == nullptr;
            if (!isShared && name_.application != application) {
                continue;
            }
            if (secret_item_get_locked(item.get())) {
                items.hasLocked = true;
            } else {
                (isShared ? shared : items.unlocked).push_back(std::move(item));
            }
        }
        std::ranges::move(shared, std::back_inserter(items.unlocked));
        return items;
    }

    /// Null if the user has none.
    Result<Object<SecretCollection>, CredentialStatus> defaultCollection() const {
        ErrorSlot error;
        Object<SecretCollection> collection(
            secret_collection_for_alias_sync(service_->get(), SECRET_COLLECTION_DEFAULT,
                                             SECRET_COLLECTION_NONE, bus_.cancellable(), error.out()));
        if (error.get() != nullptr) {
            return Unexpected(statusOf(error.get()));
        }
        return collection;
    }

    Result<void, CredentialStatus> create(SecretCollection* collection, std::string_view value) const {
        // Creating a collection would require a password from the user.
        if (collection == nullptr || secret_collection_get_locked(collection)) {
            return Unexpected(CredentialStatus::interactionNotAllowed);
        }
        // Keyrings may re-encode data declared as text, and display nothing else.
        const bool isText = utf8::isValid(value) && value.find('\0') == std::string_view::npos;
        const Secret secret(secret_value_new(value.data(), static_cast<gssize>(value.size()),
                                             isText ? "text/plain" : "application/octet-stream"));
        const Attributes attributes = attributesToStore();
        ErrorSlot error;
        // Replacing matters only if another process has added the item since the search: one must remain.
        const Object<SecretItem> item(secret_item_create_sync(
            collection, &schema(), attributes.get(), "VornaSDK identity", secret.get(),
            SECRET_ITEM_CREATE_REPLACE, bus_.cancellable(), error.out()));
        if (!item) {
            return Unexpected(statusOf(error.get()));
        }
        return {};
    }

    CredentialStatus statusOfAbsence() const {
        const Result<Object<SecretCollection>, CredentialStatus> collection = defaultCollection();
        if (!collection) {
            return collection.error();
        }
        const bool isLocked = *collection && secret_collection_get_locked(collection->get());
        return isLocked ? CredentialStatus::interactionNotAllowed : CredentialStatus::itemNotFound;
    }

    const ItemName name_;
    const glib::PrivateBus bus_;
    const Result<Object<SecretService>, CredentialStatus> service_;
};

/// Holds one conversation on its own thread and waits for it until the deadline.
template <class Value>
Result<Value, CredentialStatus>
converse(const std::optional<std::string>& address, ItemName name, Time deadline,
         std::function<Result<Value, CredentialStatus>(Conversation&)> operation) {
    using Outcome = Result<Value, CredentialStatus>;
    if (!name.canBeAttributes()) {
        return Unexpected(CredentialStatus::notPermitted);
    }
    if (!address || deadline <= std::chrono::steady_clock::now()) {
        return Unexpected(CredentialStatus::notAvailable);
    }
    const auto task = std::make_shared<std::packaged_task<Outcome(const std::stop_token&)>>(
        [address = *address, name = std::move(name), deadline,
         operation = std::move(operation)](const std::stop_token& stop) {
            Conversation conversation(address, name, stop, deadline);
            return operation(conversation);
        });
    std::future<Outcome> outcome = task->get_future();
    // Destroying the handle cancels a conversation that takes too long.
    const std::optional<ServiceThread> thread =
        ServiceThread::start("vorna-keyring", ThreadPriority::normal,
                             [task](ServiceThread::Self& self) { (*task)(self.stopToken()); });
    if (!thread || outcome.wait_until(deadline) != std::future_status::ready) {
        return Unexpected(CredentialStatus::notAvailable);
    }
    try {
        return outcome.get();
    } catch (const std::exception&) {
        // Out of memory.
        return Unexpected(CredentialStatus::notAvailable);
    }
}

}  // namespace

/// One call's share of the time for the item; what it takes is subtracted.
class SecretServiceCredentialStore::Wait {
  public:
    Wait(SecretServiceCredentialStore& store, const ItemName& name)
        : store_(store),
          item_(name.service, name.account) {
        const std::scoped_lock lock(store_.mutex_);
        deadline_ = began_ + store_.timeLeft_.try_emplace(item_, store_.bound_).first->second;
    }

    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;
    Wait(Wait&&) = delete;
    Wait& operator=(Wait&&) = delete;

    ~Wait() {
        const std::scoped_lock lock(store_.mutex_);
        auto& left = store_.timeLeft_.find(item_)->second;
        left -= std::min(left, std::chrono::steady_clock::now() - began_);
    }

    Time deadline() const { return deadline_; }

  private:
    SecretServiceCredentialStore& store_;
    const Item item_;
    const Time began_ = std::chrono::steady_clock::now();
    Time deadline_;
};

SecretServiceCredentialStore::SecretServiceCredentialStore(std::string application,
                                                           std::chrono::milliseconds bound)
    : application_(std::move(application)),
      bound_(bound),
      busAddress_(sessionBusAddress()) {}

Result<std::string, CredentialStatus> SecretServiceCredentialStore::read(std::string_view service,
                                                                         std::string_view account) {
    ItemName name{std::string(service), std::string(account), application_};
    {
        const std::scoped_lock lock(mutex_);
        timeLeft_.insert_or_assign(Item(name.service, name.account), bound_);
    }
    const Wait wait(*this, name);
    return converse<std::string>(busAddress_, std::move(name), wait.deadline(), &Conversation::read);
}

Result<void, CredentialStatus> SecretServiceCredentialStore::remove(std::string_view service,
                                                                    std::string_view account) {
    ItemName name{std::string(service), std::string(account), application_};
    const Wait wait(*this, name);
    return converse<void>(busAddress_, std::move(name), wait.deadline(), &Conversation::remove);
}

Result<void, CredentialStatus> SecretServiceCredentialStore::add(std::string_view service,
                                                                 std::string_view account,
                                                                 std::string_view value) {
    ItemName name{std::string(service), std::string(account), application_};
    const Wait wait(*this, name);
    return converse<void>(
        busAddress_, std::move(name), wait.deadline(),
        [value = std::string(value)](Conversation& conversation) { return conversation.add(value); });
}

}  // namespace vorna
