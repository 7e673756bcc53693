// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/SecretServiceCredentialStore.h>

#include <vorna/platform/BackgroundThread.h>
#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/ProcessExit.h>
#include <vorna/text/Utf8.h>

#include <gio/gio.h>
#include <libsecret/secret.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace vorna {

namespace {

using ReadResult = Result<std::string, CredentialStatus>;
using Change = Result<void, CredentialStatus>;

template <auto Release>
struct Releaser {
    template <class T>
    void operator()(T* object) const noexcept {
        Release(object);
    }
};

template <class T, auto Release>
using Owned = std::unique_ptr<T, Releaser<Release>>;

template <class T>
using Object = Owned<T, g_object_unref>;
using Error = Owned<GError, g_error_free>;
using Attributes = Owned<GHashTable, g_hash_table_unref>;

/// Takes the GError that a call leaves behind.
class ErrorSlot {
  public:
    GError** out() noexcept {
        error_.reset();
        return &raw_;
    }

    const GError* get() noexcept {
        if (raw_ != nullptr) {
            error_.reset(std::exchange(raw_, nullptr));
        }
        return error_.get();
    }

    ErrorSlot() = default;
    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;
    ErrorSlot(ErrorSlot&&) = delete;
    ErrorSlot& operator=(ErrorSlot&&) = delete;

    ~ErrorSlot() { get(); }

  private:
    GError* raw_ = nullptr;
    Error error_;
};

/// What an item is found by.
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
    // Items are matched by their attributes alone, so one that the user restored with another tool is found.
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

GQuark noPromptDomain() {
    return g_quark_from_static_string("vorna-no-prompt");
}

void setNoPromptError(GError** error) {
    g_set_error_literal(error, noPromptDomain(), 0, "the user would have to be asked");
}

/// libsecret sets up its service object for the process's shared connection to the bus. That one ends the
/// process when the bus goes, and waits for other users of it; this takes the shared bus out again, so that
/// the connection given to the object is used.
GObject* constructForGivenConnection(GType type, guint count, GObjectConstructParam* properties) {
    auto* const parent = static_cast<GObjectClass*>(g_type_class_peek(secret_service_get_type()));
    GObject* const object = parent->constructor(type, count, properties);
    g_object_set(object, "g-bus-type", G_BUS_TYPE_NONE, nullptr);
    return object;
}

/// The class of libsecret's service object in which asking the user always fails. Whatever a keyring comes up
/// with, no prompt can appear.
GType promptlessServiceType() {
    static const GType type = [] {
        const auto initialise = [](gpointer classMemory, gpointer) {
            static_cast<GObjectClass*>(classMemory)->constructor = constructForGivenConnection;
            auto* const service = static_cast<SecretServiceClass*>(classMemory);
            service->prompt_sync = [](SecretService*, SecretPrompt*, GCancellable*, const GVariantType*,
                                      GError** error) -> GVariant* {
                setNoPromptError(error);
                return nullptr;
            };
            service->prompt_async = [](SecretService* self, SecretPrompt*, const GVariantType*,
                                       GCancellable* cancellable, GAsyncReadyCallback callback,
                                       gpointer data) {
                const Object<GTask> task(g_task_new(self, cancellable, callback, data));
                GError* error = nullptr;
                setNoPromptError(&error);
                g_task_return_error(task.get(), error);
            };
            service->prompt_finish = [](SecretService*, GAsyncResult* result, GError** error) -> GVariant* {
                return static_cast<GVariant*>(
                    g_task_propagate_pointer(reinterpret_cast<GTask*>(result), error));
            };
        };
        GTypeQuery parent{};
        g_type_query(secret_service_get_type(), &parent);
        // The address makes the name this library's own even when a process has loaded two copies of it.
        static const char here = 0;
        const std::string name =
            "VornaPromptlessSecretService" + std::to_string(reinterpret_cast<std::uintptr_t>(&here));
        return g_type_register_static_simple(secret_service_get_type(), name.c_str(), parent.class_size,
                                             initialise, parent.instance_size, nullptr,
                                             static_cast<GTypeFlags>(0));
    }();
    return type;
}

/// The address of the session bus as far as one is running; absent otherwise. GIO's own search would go on to
/// start a bus.
std::optional<std::string> sessionBusAddress() {
    if (const char* const given = std::getenv("DBUS_SESSION_BUS_ADDRESS");  // NOLINT(concurrency-mt-unsafe)
        given != nullptr && *given != '\0') {
        std::string address = given;
        if (address.find("autolaunch:") != std::string::npos ||
            address.find("unixexec:") != std::string::npos) {
            return std::nullopt;
        }
        return address;
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
    const Owned<char, g_free> escaped(g_dbus_address_escape_value(path.c_str()));
    return std::string("unix:path=") + escaped.get();
}

CredentialStatus statusOf(const GError* error) {
    if (error == nullptr) {
        return CredentialStatus::notAvailable;
    }
    if (error->domain == noPromptDomain() || g_error_matches(error, SECRET_ERROR, SECRET_ERROR_IS_LOCKED)) {
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
    Conversation(const std::string& address, ItemName name, GCancellable* cancellable)
        : name_(std::move(name)),
          cancellable_(cancellable) {
        connection_.reset(g_dbus_connection_new_for_address_sync(
            address.c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, cancellable_, error_.out()));
        if (!connection_) {
            return;
        }
        service_.reset(
            static_cast<SecretService*>(g_initable_new(promptlessServiceType(), cancellable_, error_.out(),
                                                       "g-connection", connection_.get(), nullptr)));
    }

    ReadResult read() {
        const std::optional<Items> items = find(SECRET_SEARCH_LOAD_SECRETS);
        if (!items) {
            return Unexpected(statusOf(error_.get()));
        }
        for (const Object<SecretItem>& item : items->unlocked) {
            const Owned<SecretValue, secret_value_unref> secret(secret_item_get_secret(item.get()));
            if (secret) {
                gsize size = 0;
                const char* const bytes = secret_value_get(secret.get(), &size);
                return std::string(bytes, size);
            }
        }
        if (!items->unlocked.empty()) {
            return Unexpected(CredentialStatus::notAvailable);
        }
        return Unexpected(items->hasLocked ? CredentialStatus::interactionNotAllowed : statusOfAbsence());
    }

    Change remove() {
        const std::optional<Items> items = find(SECRET_SEARCH_NONE);
        if (!items) {
            return Unexpected(statusOf(error_.get()));
        }
        for (const Object<SecretItem>& item : items->unlocked) {
            if (!secret_item_delete_sync(item.get(), cancellable_, error_.out())) {
                return Unexpected(statusOf(error_.get()));
            }
        }
        if (items->hasLocked) {
            return Unexpected(CredentialStatus::interactionNotAllowed);
        }
        if (items->unlocked.empty()) {
            return Unexpected(statusOfAbsence());
        }
        return {};
    }

    Change add(std::string_view value) {
        const std::optional<Items> items = find(SECRET_SEARCH_NONE);
        if (!items) {
            return Unexpected(statusOf(error_.get()));
        }
        if (!items->unlocked.empty() || items->hasLocked) {
            return Unexpected(CredentialStatus::duplicateItem);
        }
        const Object<SecretCollection> collection = defaultCollection();
        if (!collection) {
            return Unexpected(statusOfNoCollection());
        }
        if (secret_collection_get_locked(collection.get())) {
            return Unexpected(CredentialStatus::interactionNotAllowed);
        }
        // Keyrings may re-encode what is called text, and show nothing of what is not.
        const bool isText = utf8::isValid(value) && value.find('\0') == std::string_view::npos;
        const Owned<SecretValue, secret_value_unref> secret(
            secret_value_new(value.data(), static_cast<gssize>(value.size()),
                             isText ? "text/plain" : "application/octet-stream"));
        const Attributes attributes = attributesToStore();
        // Replacing matters only when another process has added the item since the search: one must remain.
        const Object<SecretItem> item(
            secret_item_create_sync(collection.get(), &schema(), attributes.get(), "VornaSDK identity",
                                    secret.get(), SECRET_ITEM_CREATE_REPLACE, cancellable_, error_.out()));
        if (!item) {
            return Unexpected(statusOf(error_.get()));
        }
        return {};
    }

  private:
    struct Items {
        /// Those of this application first.
        std::vector<Object<SecretItem>> unlocked;
        bool hasLocked = false;
    };

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

    /// Absent after an error.
    std::optional<Items> find(SecretSearchFlags flags) {
        if (!service_) {
            return std::nullopt;
        }
        const Attributes attributes = attributesToFind();
        GList* const found = secret_service_search_sync(
            service_.get(), &schema(), attributes.get(),
            static_cast<SecretSearchFlags>(flags | SECRET_SEARCH_ALL), cancellable_, error_.out());
        if (error_.get() != nullptr) {
            return std::nullopt;
        }
        Items items;
        std::vector<Object<SecretItem>> ofAnybody;
        for (GList* entry = found; entry != nullptr; entry = entry->next) {
            Object<SecretItem> item(static_cast<SecretItem*>(entry->data));
            const Attributes carried(secret_item_get_attributes(item.get()));
            const auto* const application = static_cast<const char*>(
                carried ? g_hash_table_lookup(carried.get(), applicationAttribute) : nullptr);
            const bool isAnybodys = application == nullptr;
            if (!isAnybodys && name_.application != application) {
                continue;
            }
            if (secret_item_get_locked(item.get())) {
                items.hasLocked = true;
            } else {
                (isAnybodys ? ofAnybody : items.unlocked).push_back(std::move(item));
            }
        }
        g_list_free(found);
        std::move(ofAnybody.begin(), ofAnybody.end(), std::back_inserter(items.unlocked));
        return items;
    }

    Object<SecretCollection> defaultCollection() {
        return Object<SecretCollection>(secret_collection_for_alias_sync(
            service_.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, cancellable_, error_.out()));
    }

    /// Making a collection takes a password from the user.
    CredentialStatus statusOfNoCollection() {
        return error_.get() == nullptr ? CredentialStatus::interactionNotAllowed : statusOf(error_.get());
    }

    CredentialStatus statusOfAbsence() {
        const Object<SecretCollection> collection = defaultCollection();
        if (!collection) {
            return error_.get() == nullptr ? CredentialStatus::itemNotFound : statusOf(error_.get());
        }
        return secret_collection_get_locked(collection.get()) ? CredentialStatus::interactionNotAllowed
                                                              : CredentialStatus::itemNotFound;
    }

    const ItemName name_;
    GCancellable* const cancellable_;
    ErrorSlot error_;
    Object<GDBusConnection> connection_;
    Object<SecretService> service_;
};

/// A call under way on its own thread. The caller waits for it no longer than the bound; the thread holds the
/// other reference.
struct Call {
    const Object<GCancellable> cancellable{g_cancellable_new()};
    std::mutex mutex;
    std::condition_variable ended;
    std::optional<ReadResult> result;
};

/// All calls that still run, for the process's exit: their threads must not use GLib while it is torn down.
struct CallsUnderWay {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::shared_ptr<Call>> calls;

    CallsUnderWay() {
        stopAtProcessExit([this](std::chrono::steady_clock::time_point deadline) {
            std::unique_lock lock(mutex);
            const std::vector<std::shared_ptr<Call>> cancelled = calls;
            lock.unlock();
            for (const std::shared_ptr<Call>& call : cancelled) {
                g_cancellable_cancel(call->cancellable.get());
            }
            lock.lock();
            changed.wait_until(lock, deadline, [this] { return calls.empty(); });
        });
    }

    void add(const std::shared_ptr<Call>& call) {
        const std::scoped_lock lock(mutex);
        calls.push_back(call);
    }

    void remove(const std::shared_ptr<Call>& call) {
        {
            const std::scoped_lock lock(mutex);
            std::erase(calls, call);
        }
        changed.notify_all();
    }
};

CallsUnderWay& callsUnderWay() {
    static NeverDestroyed<CallsUnderWay> value;
    return *value;
}

/// Runs the work with a main context of the thread's own, so that signals of the bus never reach the host's.
ReadResult converse(const std::function<ReadResult(GCancellable*)>& work, GCancellable* cancellable) {
    const Owned<GMainContext, g_main_context_unref> context(g_main_context_new());
    g_main_context_push_thread_default(context.get());
    ReadResult result = Unexpected(CredentialStatus::notAvailable);
    try {
        result = work(cancellable);
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): out of memory; the status says enough
    }
    // GIO hands over the release of its objects to the context they were made in.
    while (g_main_context_iteration(context.get(), FALSE)) {
    }
    g_main_context_pop_thread_default(context.get());
    return result;
}

ReadResult bounded(std::chrono::milliseconds bound, std::function<ReadResult(GCancellable*)> work) {
    const auto deadline = std::chrono::steady_clock::now() + bound;
    ReadResult none = Unexpected(CredentialStatus::notAvailable);
    if (processIsExiting()) {
        return none;
    }
    auto call = std::make_shared<Call>();
    callsUnderWay().add(call);
    std::optional<std::thread> thread =
        startBackgroundThread("vorna-keyring", ThreadPriority::normal, [call, work = std::move(work)] {
            ReadResult result = converse(work, call->cancellable.get());
            {
                const std::scoped_lock lock(call->mutex);
                call->result = std::move(result);
            }
            call->ended.notify_all();
            callsUnderWay().remove(call);
        });
    if (!thread) {
        callsUnderWay().remove(call);
        return none;
    }
    thread->detach();
    std::unique_lock lock(call->mutex);
    if (call->ended.wait_until(lock, deadline, [&call] { return call->result.has_value(); })) {
        return std::move(*call->result);
    }
    lock.unlock();
    g_cancellable_cancel(call->cancellable.get());
    return none;
}

/// The whole of one operation: what needs no conversation first, then the conversation.
ReadResult perform(std::chrono::milliseconds bound, ItemName name,
                   std::function<ReadResult(Conversation&)> operation) {
    if (!name.canBeAttributes()) {
        return Unexpected(CredentialStatus::notPermitted);
    }
    std::optional<std::string> address = sessionBusAddress();
    if (!address) {
        return Unexpected(CredentialStatus::notAvailable);
    }
    return bounded(bound, [address = std::move(*address), name = std::move(name),
                           operation = std::move(operation)](GCancellable* cancellable) {
        Conversation conversation(address, name, cancellable);
        return operation(conversation);
    });
}

}  // namespace

SecretServiceCredentialStore::SecretServiceCredentialStore(std::string application,
                                                           std::chrono::milliseconds bound)
    : application_(std::move(application)),
      bound_(bound) {}

ReadResult SecretServiceCredentialStore::read(std::string_view service, std::string_view account) {
    return perform(bound_, {std::string(service), std::string(account), application_},
                   [](Conversation& conversation) { return conversation.read(); });
}

Change SecretServiceCredentialStore::remove(std::string_view service, std::string_view account) {
    const auto operation = [](Conversation& conversation) {
        return conversation.remove().and_then([] { return ReadResult(); });
    };
    return perform(bound_, {std::string(service), std::string(account), application_}, operation)
        .and_then([](const std::string&) { return Change(); });
}

Change SecretServiceCredentialStore::add(std::string_view service, std::string_view account,
                                         std::string_view value) {
    const auto operation = [value = std::string(value)](Conversation& conversation) {
        return conversation.add(value).and_then([] { return ReadResult(); });
    };
    return perform(bound_, {std::string(service), std::string(account), application_}, operation)
        .and_then([](const std::string&) { return Change(); });
}

}  // namespace vorna
