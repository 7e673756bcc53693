// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/VornaTaskQueue.h>

#include <utility>

namespace vorna {

namespace {

/// Waits for the semaphore, and signals it at the end of the scope.
class SemaphoreLock {
  public:
    explicit SemaphoreLock(sem_t& semaphore) : semaphore_(semaphore) {
        giveWayToFork();
        // A signal handler of the host may interrupt the wait.
        while (sem_wait(&semaphore_) != 0) {
        }
    }

    SemaphoreLock(const SemaphoreLock&) = delete;
    SemaphoreLock& operator=(const SemaphoreLock&) = delete;
    SemaphoreLock(SemaphoreLock&&) = delete;
    SemaphoreLock& operator=(SemaphoreLock&&) = delete;

    ~SemaphoreLock() { sem_post(&semaphore_); }

  private:
    sem_t& semaphore_;
};

}  // namespace

VornaTaskQueue::VornaTaskQueue() {
    sem_init(&semaphore_, 0, 1);
}

VornaTaskQueue::~VornaTaskQueue() {
    sem_destroy(&semaphore_);
}

void VornaTaskQueue::enqueue(VornaTask task) {
    const SemaphoreLock lock(semaphore_);
    leaveParentsTasks();
    queue_.push_back(std::move(task));
}

std::optional<VornaTask> VornaTaskQueue::dequeue() {
    const SemaphoreLock lock(semaphore_);
    leaveParentsTasks();
    if (queue_.empty()) {
        return std::nullopt;
    }
    std::optional<VornaTask> task(std::move(queue_.front()));
    queue_.pop_front();
    return task;
}

/// Called with the semaphore held.
void VornaTaskQueue::leaveParentsTasks() const {
    if (generation_ != forkGeneration()) {
        generation_ = forkGeneration();
        queue_.clear();
    }
}

bool VornaTaskQueue::tryHoldUntil(const std::timespec& time) noexcept {
    return sem_timedwait(&semaphore_, &time) == 0;
}

void VornaTaskQueue::release() noexcept {
    sem_post(&semaphore_);
}

void VornaTaskQueue::renew() noexcept {
    sem_init(&semaphore_, 0, 1);
}

std::size_t VornaTaskQueue::size() const {
    const SemaphoreLock lock(semaphore_);
    leaveParentsTasks();
    return queue_.size();
}

}  // namespace vorna
