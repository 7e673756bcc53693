#include <vorna/events/VornaTaskQueue.h>

#include <utility>

namespace vorna {

namespace {

/// Waits for the semaphore and signals it again at the end of the scope.
class SemaphoreLock {
  public:
    explicit SemaphoreLock(std::binary_semaphore& semaphore) : semaphore_(semaphore) { semaphore_.acquire(); }

    SemaphoreLock(const SemaphoreLock&) = delete;
    SemaphoreLock& operator=(const SemaphoreLock&) = delete;
    SemaphoreLock(SemaphoreLock&&) = delete;
    SemaphoreLock& operator=(SemaphoreLock&&) = delete;

    ~SemaphoreLock() { semaphore_.release(); }

  private:
    std::binary_semaphore& semaphore_;
};

}  // namespace

void VornaTaskQueue::enqueue(VornaTask task) {
    const SemaphoreLock lock(semaphore_);
    queue_.push_back(std::move(task));
}

std::optional<VornaTask> VornaTaskQueue::dequeue() {
    const SemaphoreLock lock(semaphore_);
    if (queue_.empty()) {
        return std::nullopt;
    }
    std::optional<VornaTask> task(std::move(queue_.front()));
    queue_.pop_front();
    return task;
}

std::size_t VornaTaskQueue::size() const {
    const SemaphoreLock lock(semaphore_);
    return queue_.size();
}

}  // namespace vorna
