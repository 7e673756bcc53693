// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A desktop session with a real keyring for one test: a message bus, a home folder, and gnome-keyring.

#include <tests/support/TemporaryFolder.h>

#include <sys/types.h>

#include <cstddef>
#include <string>

namespace vorna::support {

/// Knobs: start, stop, lock and freeze the keyring; freeze the bus. The destructor stops and deletes
/// everything. A step that fails ends the test with an exception that names it.
class KeyringSession {
  public:
    /// New: as in a home where no keyring was ever set up, so there is no collection.
    enum class Keyring { running, isNew, absent };

    /// Starts the bus, makes it this process's session bus, and starts the keyring.
    explicit KeyringSession(Keyring keyring = Keyring::running);
    KeyringSession(const KeyringSession&) = delete;
    KeyringSession& operator=(const KeyringSession&) = delete;
    KeyringSession(KeyringSession&&) = delete;
    KeyringSession& operator=(KeyringSession&&) = delete;
    ~KeyringSession();

    /// Returns whether the programs are installed; otherwise the test is skipped.
    static bool isPossible();

    /// Starts the keyring with its collection unlocked and the items stored before.
    void startKeyring();
    void stopKeyring();

    /// Locks the default collection, as the desktop does at the user's request.
    void lockKeyring() const;

    /// Stops the keyring from answering until it is thawed.
    void freezeKeyring() const;
    void thawKeyring() const;

    void freezeBus() const;
    void thawBus() const;

    void stopBus();

    /// Adds an item to the default collection as another program would, without the application attribute if
    /// it is empty.
    void addItem(const std::string& service, const std::string& account, const std::string& application,
                 const std::string& value) const;

    /// Returns the number of items with that service and account, of any application.
    std::size_t itemCount(const std::string& service, const std::string& account) const;

    /// Return the label and an attribute of the only such item; empty if it has none.
    std::string itemLabel(const std::string& service, const std::string& account) const;
    std::string itemAttribute(const std::string& service, const std::string& account, const char* name) const;

    /// Returns how often the keyring was told to prompt the user, as seen by a monitor of the bus. Call it
    /// once, at the end.
    std::size_t promptCount() const;

    const std::string& busAddress() const { return busAddress_; }

  private:
    void spawnKeyring(bool isUnlocked);
    void requestPrompt() const;

    TemporaryFolder home_;
    std::string busAddress_;
    pid_t bus_ = -1;
    pid_t keyring_ = -1;
    pid_t monitor_ = -1;
};

}  // namespace vorna::support
