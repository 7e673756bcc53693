// SPDX-License-Identifier: Apache-2.0
#include <tests/support/KeyringSession.h>

#include <vorna/platform/glib/GlibOwned.h>

#include <tests/support/ProcessVariables.h>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace vorna::support {

namespace {

constexpr const char* password = "correct horse";
constexpr const char* secretService = "org.freedesktop.secrets";
constexpr const char* servicePath = "/org/freedesktop/secrets";
constexpr const char* serviceInterface = "org.freedesktop.Secret.Service";
constexpr const char* defaultCollection = "/org/freedesktop/secrets/aliases/default";

using glib::ErrorSlot;
using glib::Variant;
using Connection = glib::Object<GDBusConnection>;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error("keyring session: " + what);
}

/// Polls for a condition that another process fulfils without notification.
void waitUntil(const char* what, const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            fail(std::string("timed out waiting until ") + what);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

/// Null if nothing answers there yet.
Connection connectionTo(const std::string& address) {
    return Connection(g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
}

Variant call(const Connection& connection, const char* destination, const char* path, const char* interface,
             const char* method, GVariant* arguments) {
    ErrorSlot error;
    constexpr int timeout = 20'000;
    Variant answer(g_dbus_connection_call_sync(connection.get(), destination, path, interface, method,
                                               arguments, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, timeout,
                                               nullptr, error.out()));
    if (!answer) {
        fail(std::string(method) + ": " + error.get()->message);
    }
    return answer;
}

Connection openedConnection(const std::string& address) {
    Connection connection = connectionTo(address);
    if (!connection) {
        fail("no connection to the bus");
    }
    return connection;
}

bool hasKeyring(const Connection& connection) {
    const Variant answer = call(connection, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                "org.freedesktop.DBus", "NameHasOwner", g_variant_new("(s)", secretService));
    gboolean hasOwner = FALSE;
    g_variant_get(answer.get(), "(b)", &hasOwner);
    return hasOwner == TRUE;
}

pid_t spawn(const std::vector<std::string>& arguments, int standardInput, int standardOutput) {
    std::vector<std::string> texts = arguments;
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    const int silence = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const pid_t parent = getpid();
    const pid_t process = fork();
    if (process == 0) {
        // Even a crashing test leaves nothing behind.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() == parent && dup2(standardInput, 0) >= 0 && dup2(standardOutput, 1) >= 0 &&
            dup2(silence, 2) >= 0) {
            execvp(pointers.front(), pointers.data());
        }
        _exit(127);
    }
    close(silence);
    if (process < 0) {
        fail("cannot start " + arguments.front());
    }
    return process;
}

void end(pid_t& process) {
    if (process <= 0) {
        return;
    }
    kill(process, SIGKILL);
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
    process = -1;
}

GVariant* nameAttributes(const std::string& service, const std::string& account) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
    g_variant_builder_add(&builder, "{ss}", "service", service.c_str());
    g_variant_builder_add(&builder, "{ss}", "account", account.c_str());
    return g_variant_builder_end(&builder);
}

std::vector<std::string> itemPaths(const Connection& connection, const std::string& service,
                                   const std::string& account) {
    const Variant answer = call(connection, secretService, servicePath, serviceInterface, "SearchItems",
                                g_variant_new("(@a{ss})", nameAttributes(service, account)));
    std::vector<std::string> paths;
    for (const gsize state : {gsize{0}, gsize{1}}) {
        const Variant list(g_variant_get_child_value(answer.get(), state));
        for (gsize index = 0; index < g_variant_n_children(list.get()); ++index) {
            const Variant path(g_variant_get_child_value(list.get(), index));
            paths.emplace_back(g_variant_get_string(path.get(), nullptr));
        }
    }
    return paths;
}

Variant onlyItemsProperty(const std::string& address, const std::string& service, const std::string& account,
                          const char* property) {
    const Connection connection = openedConnection(address);
    const std::vector<std::string> paths = itemPaths(connection, service, account);
    if (paths.size() != 1) {
        fail("there are " + std::to_string(paths.size()) + " items");
    }
    const Variant answer =
        call(connection, secretService, paths.front().c_str(), "org.freedesktop.DBus.Properties", "Get",
             g_variant_new("(ss)", "org.freedesktop.Secret.Item", property));
    const Variant boxed(g_variant_get_child_value(answer.get(), 0));
    return Variant(g_variant_get_variant(boxed.get()));
}

}  // namespace

bool KeyringSession::isPossible() {
    const auto isInstalled = [](const char* program) {
        return glib::Text(g_find_program_in_path(program)) != nullptr;
    };
    return isInstalled("dbus-daemon") && isInstalled("dbus-monitor") && isInstalled("gnome-keyring-daemon");
}

KeyringSession::KeyringSession(Keyring keyring) {
    const std::filesystem::path runtime = home_.path() / "runtime";
    std::filesystem::create_directory(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);

    // Without service folders nothing is started automatically.
    const std::filesystem::path configuration = home_.path() / "bus.conf";
    const std::string socket = "unix:path=" + (home_.path() / "bus").string();
    std::ofstream(configuration)
        << "<busconfig><type>session</type><listen>" << socket << "</listen>"
        << R"(<policy context="default"><allow send_destination="*" eavesdrop="true"/>)"
        << R"(<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>)";

    setVariable("HOME", home_.path().string());
    setVariable("XDG_DATA_HOME", (home_.path() / "data").string());
    setVariable("XDG_CONFIG_HOME", (home_.path() / "config").string());
    setVariable("XDG_RUNTIME_DIR", runtime.string());
    setVariable("DBUS_SESSION_BUS_ADDRESS", socket);
    busAddress_ = socket;

    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    bus_ = spawn({"dbus-daemon", "--config-file=" + configuration.string(), "--nofork", "--nopidfile"},
                 nothing, nothing);
    waitUntil("the bus answers", [this] { return connectionTo(busAddress_) != nullptr; });

    const int prompts =
        open((home_.path() / "prompts").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_APPEND, 0600);
    monitor_ = spawn({"dbus-monitor", "--profile", "--address", busAddress_,
                      "type='method_call',interface='org.freedesktop.Secret.Prompt',member='Prompt'"},
                     nothing, prompts);
    close(prompts);
    close(nothing);
    waitUntil("the monitor watches",
              [this] { return std::filesystem::file_size(home_.path() / "prompts") > 0; });

    if (keyring == Keyring::running) {
        startKeyring();
    } else if (keyring == Keyring::isNew) {
        spawnKeyring(false);
    }
}

KeyringSession::~KeyringSession() {
    end(monitor_);
    end(keyring_);
    end(bus_);
}

void KeyringSession::spawnKeyring(bool isUnlocked) {
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
        fail("no pipe");
    }
    std::vector<std::string> arguments{"gnome-keyring-daemon", "--foreground", "--components=secrets"};
    if (isUnlocked) {
        arguments.emplace_back("--unlock");
    }
    const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
    keyring_ = spawn(arguments, pipe[0], nothing);
    close(nothing);
    close(pipe[0]);
    const std::string_view text = isUnlocked ? password : "";
    const bool isWritten = write(pipe[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(pipe[1]);
    if (!isWritten) {
        fail("the keyring took no password");
    }
    const Connection connection = openedConnection(busAddress_);
    waitUntil("the keyring is on the bus", [&connection] { return hasKeyring(connection); });
}

void KeyringSession::startKeyring() {
    spawnKeyring(true);
    const Connection connection = openedConnection(busAddress_);
    waitUntil("the keyring is unlocked", [&connection] {
        const Variant answer(g_dbus_connection_call_sync(
            connection.get(), secretService, defaultCollection, "org.freedesktop.DBus.Properties", "Get",
            g_variant_new("(ss)", "org.freedesktop.Secret.Collection", "Locked"), nullptr,
            G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr));
        if (!answer) {
            return false;
        }
        const Variant boxed(g_variant_get_child_value(answer.get(), 0));
        const Variant isLocked(g_variant_get_variant(boxed.get()));
        return g_variant_get_boolean(isLocked.get()) == FALSE;
    });
}

void KeyringSession::stopKeyring() {
    end(keyring_);
    const Connection connection = openedConnection(busAddress_);
    waitUntil("the keyring has left the bus", [&connection] { return !hasKeyring(connection); });
}

void KeyringSession::lockKeyring() const {
    const Connection connection = openedConnection(busAddress_);
    // The collection itself, since an alias is not accepted here.
    const Variant alias = call(connection, secretService, servicePath, serviceInterface, "ReadAlias",
                               g_variant_new("(s)", "default"));
    const Variant path(g_variant_get_child_value(alias.get(), 0));
    const char* const collection = g_variant_get_string(path.get(), nullptr);
    const Variant answer = call(connection, secretService, servicePath, serviceInterface, "Lock",
                                g_variant_new("(@ao)", g_variant_new_objv(&collection, 1)));
    const Variant locked(g_variant_get_child_value(answer.get(), 0));
    if (g_variant_n_children(locked.get()) != 1) {
        fail("the collection does not lock");
    }
}

void KeyringSession::freezeKeyring() const {
    kill(keyring_, SIGSTOP);
}

void KeyringSession::thawKeyring() const {
    kill(keyring_, SIGCONT);
}

void KeyringSession::freezeBus() const {
    kill(bus_, SIGSTOP);
}

void KeyringSession::thawBus() const {
    kill(bus_, SIGCONT);
}

void KeyringSession::stopBus() {
    end(bus_);
}

void KeyringSession::addItem(const std::string& service, const std::string& account,
                             const std::string& application, const std::string& value) const {
    const Connection connection = openedConnection(busAddress_);
    const Variant opened = call(connection, secretService, servicePath, serviceInterface, "OpenSession",
                                g_variant_new("(sv)", "plain", g_variant_new_string("")));
    const Variant session(g_variant_get_child_value(opened.get(), 1));

    GVariantBuilder attributes;
    g_variant_builder_init(&attributes, G_VARIANT_TYPE("a{ss}"));
    g_variant_builder_add(&attributes, "{ss}", "service", service.c_str());
    g_variant_builder_add(&attributes, "{ss}", "account", account.c_str());
    if (!application.empty()) {
        g_variant_builder_add(&attributes, "{ss}", "application", application.c_str());
    }
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Label",
                          g_variant_new_string("another program's"));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Attributes",
                          g_variant_builder_end(&attributes));
    GVariant* const bytes = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, value.data(), value.size(), 1);
    GVariant* const noParameters = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, nullptr, 0, 1);
    GVariant* const secret = g_variant_new("(o@ay@ays)", g_variant_get_string(session.get(), nullptr),
                                           noParameters, bytes, "application/octet-stream");
    call(connection, secretService, defaultCollection, "org.freedesktop.Secret.Collection", "CreateItem",
         g_variant_new("(a{sv}@(oayays)b)", &properties, secret, FALSE));
}

std::size_t KeyringSession::itemCount(const std::string& service, const std::string& account) const {
    return itemPaths(openedConnection(busAddress_), service, account).size();
}

std::string KeyringSession::itemLabel(const std::string& service, const std::string& account) const {
    const Variant label = onlyItemsProperty(busAddress_, service, account, "Label");
    return g_variant_get_string(label.get(), nullptr);
}

std::string KeyringSession::itemAttribute(const std::string& service, const std::string& account,
                                          const char* name) const {
    const Variant attributes = onlyItemsProperty(busAddress_, service, account, "Attributes");
    const char* value = nullptr;
    return g_variant_lookup(attributes.get(), name, "&s", &value) ? value : "";
}

void KeyringSession::requestPrompt() const {
    const Connection connection = openedConnection(busAddress_);
    g_dbus_connection_call(connection.get(), secretService, "/org/freedesktop/secrets/prompt/none",
                           "org.freedesktop.Secret.Prompt", "Prompt", g_variant_new("(s)", ""), nullptr,
                           G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
    g_dbus_connection_flush_sync(connection.get(), nullptr, nullptr);
}

std::size_t KeyringSession::promptCount() const {
    // The monitor writes one line for each call; a request of our own marks the end.
    requestPrompt();
    const auto seen = [this] {
        std::ifstream file(home_.path() / "prompts");
        const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        std::size_t count = 0;
        for (std::size_t at = text.find("\tPrompt"); at != std::string::npos;
             at = text.find("\tPrompt", at + 1)) {
            ++count;
        }
        const bool isComplete = text.find("/org/freedesktop/secrets/prompt/none") != std::string::npos;
        return std::pair(isComplete, count);
    };
    waitUntil("the monitor has caught up", [&seen] { return seen().first; });
    return seen().second - 1;
}

}  // namespace vorna::support
