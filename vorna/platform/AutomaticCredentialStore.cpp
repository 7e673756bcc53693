// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/AutomaticCredentialStore.h>

#include <vorna/platform/Fork.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/ServiceThread.h>
#include <vorna/platform/Upkeep.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

namespace vorna {

/// Shared by the store and its thread. The keyring is used on the thread only, one call at a time.
class AutomaticCredentialStore::State final : public KeepsRunning,
                                              public std::enable_shared_from_this<State> {
  public:
    template <class Value>
    using Outcome = Result<Value, CredentialStatus>;

    State(std::shared_ptr<CredentialStore> file, std::shared_ptr<CredentialStore> keyring,
          std::chrono::milliseconds keyringTimeout)
        : file_(std::move(file)),
          keyring_(std::move(keyring)),
          keyringTimeout_(keyringTimeout),
          keyringTimeLeft_(keyringTimeout) {}

    void recogniseWholeValues(const IsWhole& isWhole) {
        const std::scoped_lock lock(mutex_);
        isWhole_ = isWhole;
    }

    Outcome<std::string> read(std::string service, std::string account) {
        keyringTimeLeft_ = keyringTimeout_;
        Outcome<std::string> fromFile = readFile(service, account);
        if (hasWhole(fromFile)) {
            repairLater(std::move(service), std::move(account));
            return fromFile;
        }
        auto fromKeyring = callKeyring<std::string>(
            [service, account](CredentialStore& keyring) { return keyring.read(service, account); });
        if (fromKeyring && isWhole(*fromKeyring)) {
            repairLater(std::move(service), std::move(account));
            return *std::move(fromKeyring);
        }
        if (fromFile) {
            // The keyring may still answer, in time for the next run.
            repairLater(std::move(service), std::move(account));
            return fromFile;
        }
        if (fromKeyring) {
            return *std::move(fromKeyring);
        }
        return Unexpected(statusOfNeither(fromFile.error(), fromKeyring.error()));
    }

    Outcome<void> remove(const std::string& service, const std::string& account) {
        Outcome<void> fromFile =
            changeFile([&](CredentialStore& file) { return file.remove(service, account); });
        if (!fromFile && fromFile.error() != CredentialStatus::itemNotFound) {
            // The keyring keeps its copy of what may still be in the file.
            return fromFile;
        }
        const auto fromKeyring = callKeyring<void>(
            [service, account](CredentialStore& keyring) { return keyring.remove(service, account); });
        if (fromFile || fromKeyring) {
            return {};
        }
        return Unexpected(statusOfNeither(fromFile.error(), fromKeyring.error()));
    }

    Outcome<void> add(std::string service, std::string account, std::string value) {
        const Outcome<void> toFile =
            changeFile([&](CredentialStore& file) { return file.add(service, account, value); });
        // A file that is in the way, but holds no item, does not count.
        const bool isTaken = !toFile && toFile.error() == CredentialStatus::duplicateItem;
        if (isTaken && hasWhole(readFile(service, account))) {
            repairLater(std::move(service), std::move(account));
            return toFile;
        }
        const auto toKeyring =
            callKeyring<void>([service, account, value = std::move(value)](CredentialStore& keyring) {
                return keyring.add(service, account, value);
            });
        if (toFile.has_value() != toKeyring.has_value()) {
            repairLater(std::move(service), std::move(account));
        }
        if (toFile || toKeyring) {
            return {};
        }
        const bool wasInKeyring = toKeyring.error() == CredentialStatus::duplicateItem;
        return Unexpected(wasInKeyring ? CredentialStatus::duplicateItem : toFile.error());
    }

    void dropJobs() {
        const std::scoped_lock lock(mutex_);
        jobs_.clear();
    }

    void ensureRunning() override {
        const std::scoped_lock lock(mutex_);
        leaveParentsJobs();
        if (!jobs_.empty()) {
            startThread();
        }
    }

  private:
    using Job = std::function<void()>;
    /// Empty if the keyring did not answer in time.
    using KeyringFailure = std::optional<CredentialStatus>;

    /// The status if neither store has provided the item. A missing keyring cannot have it; one that has not
    /// answered may.
    static CredentialStatus statusOfNeither(CredentialStatus ofFile, KeyringFailure ofKeyring) {
        if (ofFile != CredentialStatus::itemNotFound) {
            return ofFile;
        }
        if (!ofKeyring) {
            return CredentialStatus::notAvailable;
        }
        return *ofKeyring == CredentialStatus::notAvailable ? CredentialStatus::itemNotFound : *ofKeyring;
    }

    /// Waits for the answer for the rest of the timeout. A call that is abandoned before its turn is never
    /// made.
    template <class Value, class Operation>
    Result<Value, KeyringFailure> callKeyring(Operation operation) {
        const auto began = std::chrono::steady_clock::now();
        const auto deadline = began + keyringTimeLeft_;
        if (deadline <= began) {
            return Unexpected(KeyringFailure());
        }
        auto task = std::make_shared<std::packaged_task<Outcome<Value>()>>(
            [this, operation = std::move(operation)] { return operation(*keyring_); });
        std::future<Outcome<Value>> answer = task->get_future();
        const auto isAbandoned = std::make_shared<std::atomic<bool>>(false);
        Job job = [task = std::move(task), isAbandoned] {
            if (!isAbandoned->load()) {
                (*task)();
            }
        };
        {
            const std::scoped_lock lock(mutex_);
            if (!startThread()) {
                return Unexpected(KeyringFailure());
            }
            jobs_.push_back(std::move(job));
        }
        const bool isAnswered = answer.wait_until(deadline) == std::future_status::ready;
        isAbandoned->store(true);
        const auto ended = std::chrono::steady_clock::now();
        keyringTimeLeft_ -= std::min(keyringTimeLeft_, ended - began);
        if (!isAnswered) {
            return Unexpected(KeyringFailure());
        }
        try {
            return answer.get().transform_error([&](CredentialStatus status) {
                // A keyring that gives up just as the time runs out has not answered either.
                return ended < deadline ? KeyringFailure(status) : KeyringFailure();
            });
        } catch (const std::exception&) {
            // Out of memory, or dropped because the process exits.
            return Unexpected(KeyringFailure());
        }
    }

    bool isWhole(std::string_view value) const {
        IsWhole check;
        {
            const std::scoped_lock lock(mutex_);
            check = isWhole_;
        }
        return !check || check(value);
    }

    bool hasWhole(const Outcome<std::string>& item) const { return item && isWhole(*item); }

    Outcome<std::string> readFile(const std::string& service, const std::string& account) {
        const std::scoped_lock lock(fileMutex_);
        return file_->read(service, account);
    }

    template <class Change>
    Outcome<void> changeFile(Change change) {
        const std::scoped_lock lock(fileMutex_);
        ++fileChanges_;
        return change(*file_);
    }

    /// If the system refuses a thread, the library's next operation tries again.
    void repairLater(std::string service, std::string account) {
        const std::scoped_lock lock(mutex_);
        leaveParentsJobs();
        jobs_.emplace_back(
            [this, service = std::move(service), account = std::move(account)] { repair(service, account); });
        startThread();
    }

    /// Makes both stores hold the same whole item, as far as both can be reached. It starts from their
    /// current contents, not the caller's, since another process may have changed them in between.
    void repair(const std::string& service, const std::string& account) {
        std::unique_lock lock(fileMutex_);
        const std::uint64_t changesSeen = fileChanges_;
        Outcome<std::string> fromFile = file_->read(service, account);
        lock.unlock();
        const Outcome<std::string> fromKeyring = keyring_->read(service, account);
        if (!hasWhole(fromFile)) {
            lock.lock();
            // A caller that has changed the file in the meantime takes precedence.
            if (!hasWhole(fromKeyring) || changesSeen != fileChanges_) {
                return;
            }
            fromFile = restoredFile(service, account, *fromKeyring);
            lock.unlock();
            if (!hasWhole(fromFile)) {
                return;
            }
        }
        if (fromKeyring == fromFile) {
            return;
        }
        if (fromKeyring) {
            std::ignore = keyring_->remove(service, account);
        } else if (fromKeyring.error() != CredentialStatus::itemNotFound) {
            return;
        }
        std::ignore = keyring_->add(service, account, *fromFile);
    }

    /// Writes the value to the file, unless another process has put a whole one there meanwhile: then that
    /// one counts. Returns what the file holds. The caller has locked it.
    Outcome<std::string> restoredFile(const std::string& service, const std::string& account,
                                      const std::string& value) {
        Outcome<std::string> current = file_->read(service, account);
        if (hasWhole(current)) {
            return current;
        }
        if (current || current.error() == CredentialStatus::notTrusted) {
            std::ignore = file_->remove(service, account);
        }
        const Outcome<void> written = file_->add(service, account, value);
        if (written) {
            return value;
        }
        return written.error() == CredentialStatus::duplicateItem
                   ? file_->read(service, account)
                   : Outcome<std::string>(Unexpected(written.error()));
    }

    /// Called with the lock held. False if no thread can be started.
    bool startThread() {
        leaveParentsJobs();
        if (!isRunning_) {
            thread_ = ServiceThread::start(
                "vorna-identity", ThreadPriority::normal,
                [state = shared_from_this()](ServiceThread::Self& self) { state->run(self); });
            isRunning_ = thread_.has_value();
            if (!isRunning_) {
                upkeep::request();
            }
        }
        return isRunning_;
    }

    /// Called with the lock held. In the child of a fork neither the thread nor its jobs are this process's.
    void leaveParentsJobs() {
        if (generation_ != forkGeneration()) {
            generation_ = forkGeneration();
            jobs_.clear();
            isRunning_ = false;
        }
    }

    /// Returns when there are no more jobs; a later one starts another thread.
    void run(const ServiceThread::Self& self) {
        std::unique_lock lock(mutex_);
        while (!jobs_.empty() && !self.stopRequested()) {
            const Job job = std::move(jobs_.front());
            jobs_.pop_front();
            lock.unlock();
            try {
                job();
            } catch (
                const std::exception&) {  // NOLINT(bugprone-empty-catch): no memory; the next run repairs
            }
            lock.lock();
        }
        jobs_.clear();
        isRunning_ = false;
    }

    const std::shared_ptr<CredentialStore> file_;
    const std::shared_ptr<CredentialStore> keyring_;

    /// Used by callers only.
    const std::chrono::steady_clock::duration keyringTimeout_;
    std::chrono::steady_clock::duration keyringTimeLeft_;

    /// Guards the file, which callers and the thread use, and the number of changes that callers made to it.
    /// A fork does not wait for the disk.
    Mutex fileMutex_{Mutex::Waits::no};
    std::uint64_t fileChanges_ = 0;

    mutable Mutex mutex_;
    IsWhole isWhole_;
    std::deque<Job> jobs_;
    bool isRunning_ = false;
    std::optional<ServiceThread> thread_;
    unsigned generation_ = forkGeneration();
};

AutomaticCredentialStore::AutomaticCredentialStore(std::shared_ptr<CredentialStore> file,
                                                   std::shared_ptr<CredentialStore> keyring,
                                                   std::chrono::milliseconds keyringTimeout)
    : state_(std::make_shared<State>(std::move(file), std::move(keyring), keyringTimeout)) {
    upkeep::add(state_);
}

AutomaticCredentialStore::~AutomaticCredentialStore() {
    state_->dropJobs();
}

void AutomaticCredentialStore::recogniseWholeValues(const IsWhole& isWhole) {
    state_->recogniseWholeValues(isWhole);
}

Result<std::string, CredentialStatus> AutomaticCredentialStore::read(std::string_view service,
                                                                     std::string_view account) {
    return state_->read(std::string(service), std::string(account));
}

Result<void, CredentialStatus> AutomaticCredentialStore::remove(std::string_view service,
                                                                std::string_view account) {
    return state_->remove(std::string(service), std::string(account));
}

Result<void, CredentialStatus>
AutomaticCredentialStore::add(std::string_view service, std::string_view account, std::string_view value) {
    return state_->add(std::string(service), std::string(account), std::string(value));
}

}  // namespace vorna
