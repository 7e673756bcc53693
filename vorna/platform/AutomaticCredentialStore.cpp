// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/AutomaticCredentialStore.h>

#include <vorna/platform/BackgroundThread.h>
#include <vorna/platform/ProcessExit.h>

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <type_traits>
#include <utility>

namespace vorna {

namespace {

using ReadResult = Result<std::string, CredentialStatus>;
using Change = Result<void, CredentialStatus>;

}  // namespace

/// What the store and its thread share. All that concerns the keyring happens on the thread, in order.
class AutomaticCredentialStore::Keeper : public std::enable_shared_from_this<Keeper> {
  public:
    Keeper(std::shared_ptr<CredentialStore> file, std::shared_ptr<CredentialStore> keyring,
           std::chrono::milliseconds patience)
        : file_(std::move(file)),
          keyring_(std::move(keyring)),
          patience_(patience),
          patienceLeft_(patience) {}

    ReadResult read(std::string service, std::string account) {
        patienceLeft_ = patience_;
        ReadResult fromFile = readFile(service, account);
        if (fromFile) {
            repairLater(std::move(service), std::move(account));
            return fromFile;
        }
        std::optional<ReadResult> fromKeyring = askKeyring(
            [service, account](CredentialStore& keyring) { return keyring.read(service, account); });
        if (isSuccess(fromKeyring)) {
            repairLater(std::move(service), std::move(account));
            return *std::move(fromKeyring);
        }
        return Unexpected(statusOfNothing(fromFile.error(), fromKeyring));
    }

    Change remove(const std::string& service, const std::string& account) {
        const Change fromFile =
            changeFile([&](CredentialStore& file) { return file.remove(service, account); });
        const std::optional<Change> fromKeyring = askKeyring(
            [service, account](CredentialStore& keyring) { return keyring.remove(service, account); });
        if (fromFile || isSuccess(fromKeyring)) {
            return {};
        }
        return Unexpected(statusOfNothing(fromFile.error(), fromKeyring));
    }

    Change add(std::string service, std::string account, std::string value) {
        Change toFile = changeFile([&](CredentialStore& file) { return file.add(service, account, value); });
        if (toFile == Unexpected(CredentialStatus::duplicateItem)) {
            repairLater(std::move(service), std::move(account));
            return toFile;
        }
        std::optional<Change> toKeyring =
            askKeyring([service, account, value = std::move(value)](CredentialStore& keyring) {
                return keyring.add(service, account, value);
            });
        const bool isInFile = toFile.has_value();
        const bool isInKeyring = isSuccess(toKeyring);
        if (isInFile != isInKeyring) {
            repairLater(std::move(service), std::move(account));
        }
        if (isInFile || isInKeyring) {
            return {};
        }
        const bool wasInKeyring = toKeyring == Unexpected(CredentialStatus::duplicateItem);
        return wasInKeyring ? *toKeyring : toFile;
    }

    /// Nothing that has not begun will. Waits for the thread until the deadline.
    void stop(std::chrono::steady_clock::time_point deadline) {
        std::unique_lock lock(mutex_);
        isStopping_ = true;
        jobs_.clear();
        changed_.wait_until(lock, deadline, [this] { return !isRunning_; });
    }

  private:
    using Job = std::function<void()>;

    template <class Answer>
    struct Question {
        std::mutex mutex;
        std::condition_variable answered;
        std::optional<Answer> answer;
        bool isAbandoned = false;
    };

    template <class Answer>
    static bool isSuccess(const std::optional<Answer>& answer) {
        return answer && *answer;
    }

    /// How it is said that neither store has given anything. A keyring that is not there cannot have the
    /// item, one that has not answered can.
    template <class Answer>
    static CredentialStatus statusOfNothing(CredentialStatus fromFile,
                                            const std::optional<Answer>& fromKeyring) {
        if (fromFile != CredentialStatus::itemNotFound) {
            return fromFile;
        }
        if (!fromKeyring) {
            return CredentialStatus::notAvailable;
        }
        return fromKeyring->error() == CredentialStatus::notAvailable ? CredentialStatus::itemNotFound
                                                                      : fromKeyring->error();
    }

    /// Absent when there is no answer within what is left of the patience. A question that is abandoned
    /// before its turn has come is never put.
    template <class Operation, class Answer = std::invoke_result_t<Operation, CredentialStore&>>
    std::optional<Answer> askKeyring(Operation operation) {
        const auto began = std::chrono::steady_clock::now();
        const auto deadline = began + patienceLeft_;
        if (deadline <= began) {
            return std::nullopt;
        }
        const auto question = std::make_shared<Question<Answer>>();
        const bool isAccepted = enqueue([this, question, operation = std::move(operation)] {
            {
                const std::scoped_lock lock(question->mutex);
                if (question->isAbandoned) {
                    return;
                }
            }
            Answer answer = operation(*keyring_);
            const std::scoped_lock lock(question->mutex);
            question->answer = std::move(answer);
            question->answered.notify_all();
        });
        if (!isAccepted) {
            return std::nullopt;
        }
        std::unique_lock lock(question->mutex);
        question->answered.wait_until(lock, deadline, [&question] { return question->answer.has_value(); });
        question->isAbandoned = true;
        const auto ended = std::chrono::steady_clock::now();
        patienceLeft_ -= std::min(patienceLeft_, ended - began);
        // A keyring that gives up in the same moment has not answered either, whatever it calls that.
        if (ended >= deadline && !isSuccess(question->answer)) {
            return std::nullopt;
        }
        return std::move(question->answer);
    }

    ReadResult readFile(const std::string& service, const std::string& account) {
        const std::scoped_lock lock(fileMutex_);
        return file_->read(service, account);
    }

    template <class Operation>
    Change changeFile(Operation operation) {
        const std::scoped_lock lock(fileMutex_);
        ++fileChanges_;
        return operation(*file_);
    }

    void repairLater(std::string service, std::string account) {
        enqueue(
            [this, service = std::move(service), account = std::move(account)] { repair(service, account); });
    }

    /// Makes both stores hold the same, as far as they can be reached now. It works on what they hold at this
    /// moment, not on what a caller has seen, since another process may have been there in between.
    void repair(const std::string& service, const std::string& account) {
        std::uint64_t changesSeen = 0;
        ReadResult fromFile = Unexpected(CredentialStatus::itemNotFound);
        {
            const std::scoped_lock lock(fileMutex_);
            changesSeen = fileChanges_;
            fromFile = file_->read(service, account);
        }
        const ReadResult fromKeyring = keyring_->read(service, account);
        if (!fromFile) {
            if (!fromKeyring) {
                return;
            }
            const std::scoped_lock lock(fileMutex_);
            // A caller that has changed the file meanwhile knows better.
            if (changesSeen != fileChanges_) {
                return;
            }
            if (fromFile == Unexpected(CredentialStatus::notTrusted)) {
                std::ignore = file_->remove(service, account);
            }
            if (file_->add(service, account, *fromKeyring) != Unexpected(CredentialStatus::duplicateItem)) {
                return;
            }
            // Another process was quicker, so its item is the one in force.
            fromFile = file_->read(service, account);
            if (!fromFile) {
                return;
            }
        }
        if (fromKeyring == fromFile) {
            return;
        }
        if (fromKeyring) {
            std::ignore = keyring_->remove(service, account);
        } else if (fromKeyring != Unexpected(CredentialStatus::itemNotFound)) {
            return;
        }
        std::ignore = keyring_->add(service, account, *fromFile);
    }

    /// Hands the job to the thread, which is started if there is none. False when it will not be done.
    bool enqueue(Job job) {
        const std::scoped_lock lock(mutex_);
        if (isStopping_ || processIsExiting()) {
            return false;
        }
        if (!isStoppedAtExit_) {
            isStoppedAtExit_ = true;
            stopAtProcessExit([weak = weak_from_this()](std::chrono::steady_clock::time_point deadline) {
                if (const std::shared_ptr<Keeper> keeper = weak.lock()) {
                    keeper->stop(deadline);
                }
            });
        }
        jobs_.push_back(std::move(job));
        if (isRunning_) {
            return true;
        }
        std::optional<std::thread> thread = startBackgroundThread(
            "vorna-identity", ThreadPriority::normal, [keeper = shared_from_this()] { keeper->run(); });
        if (!thread) {
            jobs_.pop_back();
            return false;
        }
        isRunning_ = true;
        thread->detach();
        return true;
    }

    void run() {
        std::unique_lock lock(mutex_);
        while (!jobs_.empty()) {
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
        isRunning_ = false;
        changed_.notify_all();
    }

    const std::shared_ptr<CredentialStore> file_;
    const std::shared_ptr<CredentialStore> keyring_;

    /// The caller's alone.
    const std::chrono::steady_clock::duration patience_;
    std::chrono::steady_clock::duration patienceLeft_;

    /// The file is used by the caller and by the thread. How often the caller has changed it stands beside
    /// it.
    std::mutex fileMutex_;
    std::uint64_t fileChanges_ = 0;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Job> jobs_;
    bool isRunning_ = false;
    bool isStopping_ = false;
    bool isStoppedAtExit_ = false;
};

AutomaticCredentialStore::AutomaticCredentialStore(std::shared_ptr<CredentialStore> file,
                                                   std::shared_ptr<CredentialStore> keyring,
                                                   std::chrono::milliseconds patience)
    : keeper_(std::make_shared<Keeper>(std::move(file), std::move(keyring), patience)) {}

AutomaticCredentialStore::~AutomaticCredentialStore() {
    keeper_->stop(std::chrono::steady_clock::now());
}

ReadResult AutomaticCredentialStore::read(std::string_view service, std::string_view account) {
    return keeper_->read(std::string(service), std::string(account));
}

Change AutomaticCredentialStore::remove(std::string_view service, std::string_view account) {
    return keeper_->remove(std::string(service), std::string(account));
}

Change AutomaticCredentialStore::add(std::string_view service, std::string_view account,
                                     std::string_view value) {
    return keeper_->add(std::string(service), std::string(account), std::string(value));
}

}  // namespace vorna
