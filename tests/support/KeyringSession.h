// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A desktop session with a real keyring, for one test: its own message bus, its own home, gnome-keyring on
/// it.

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <string>

namespace vorna::support {

/// Knobs: start, stop, lock and freeze the keyring; freeze the bus. Everything is stopped and deleted in the
/// end. A step that fails ends the test with an exception that says which.
class KeyringSession {
  public:
    /// New: as in a home where no keyring was ever set up, so that there is no collection to store in.
    enum class Keyring { running, isNew, absent };

    /// Starts the bus, makes it this process's session bus, and starts the keyring unless told otherwise.
    explicit KeyringSession(Keyring keyring = Keyring::running);
    KeyringSession(const KeyringSession&) = delete;
    KeyringSession& operator=(const KeyringSession&) = delete;
    KeyringSession(KeyringSession&&) = delete;
    KeyringSession& operator=(KeyringSession&&) = delete;
    ~KeyringSession();

    /// Whether the programs are installed; a test that needs them is skipped otherwise.
    static bool isPossible();

    /// Starts the keyring with its collection unlocked, on what earlier ones have stored.
    void startKeyring();
    void stopKeyring();

    /// Locks the default collection, as the desktop does when the user asks for it.
    void lockKeyring() const;

    /// The keyring's process stays and answers nothing, until it is thawed.
    void freezeKeyring() const;
    void thawKeyring() const;

    void freezeBus() const;
    void thawBus() const;

    void stopBus();

    /// Puts an item into the default collection as another program would. Empty application: the attribute is
    /// left out.
    void addItem(const std::string& service, const std::string& account, const std::string& application,
                 const std::string& value) const;

    /// How many items with service and account there are, whomever they belong to.
    std::size_t itemCount(const std::string& service, const std::string& account) const;

    /// Label and the attribute of that name of the only such item; empty when it carries none.
    std::string itemLabel(const std::string& service, const std::string& account) const;
    std::string itemAttribute(const std::string& service, const std::string& account, const char* name) const;

    /// How often anybody on the bus has told the keyring to prompt the user, as a monitor of the bus has seen
    /// it. To be asked once, in the end.
    std::size_t promptCount() const;

    const std::string& busAddress() const { return busAddress_; }

  private:
    void spawnKeyring(bool isUnlocked);
    void requestPrompt() const;

    std::filesystem::path home_;
    std::string busAddress_;
    pid_t bus_ = -1;
    pid_t keyring_ = -1;
    pid_t monitor_ = -1;
};

}  // namespace vorna::support
