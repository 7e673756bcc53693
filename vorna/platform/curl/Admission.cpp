// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/Admission.h>

#include <algorithm>
#include <utility>

namespace vorna {

void Admission::add(WaitingRequest& request) {
    const bool isCancellable = request.plan->isCancellable;
    laneFor(request.plan).waiting.push_back(std::move(request));
    cancellableCount_ += isCancellable ? 1 : 0;
}

ServerLane& Admission::laneFor(const std::shared_ptr<const RequestPlan>& plan) {
    if (plan != lastPlan_) {
        const URL& url = plan->url;
        lastLane_ = &lanes_[Server{url.scheme(), url.host(), url.port()}];
        lastPlan_ = plan;
    }
    return *lastLane_;
}

bool Admission::canAdmit() const {
    return std::ranges::any_of(lanes_, [](const auto& entry) { return entry.second.canAdmit(); });
}

bool Admission::hasWaiting() const {
    return std::ranges::any_of(lanes_, [](const auto& entry) { return !entry.second.waiting.empty(); });
}

std::optional<Admission::Admitted> Admission::next() {
    for (auto& [server, lane] : lanes_) {
        if (lane.canAdmit()) {
            Admitted admitted{std::move(lane.waiting.front()), &lane};
            lane.waiting.pop_front();
            cancellableCount_ -= admitted.request.plan->isCancellable ? 1 : 0;
            ++lane.underWay;
            return admitted;
        }
    }
    return std::nullopt;
}

bool Admission::removeCancelled(const End& end) {
    const std::size_t before = cancellableCount_;
    if (before == 0) {
        return false;
    }
    for (auto& [server, lane] : lanes_) {
        std::erase_if(lane.waiting, [&](const WaitingRequest& request) {
            if (!request.plan->stop.stop_requested()) {
                return false;
            }
            end(request);
            --cancellableCount_;
            return true;
        });
    }
    return cancellableCount_ < before;
}

void Admission::removeAll(const End& end) {
    for (auto& [server, lane] : lanes_) {
        for (; !lane.waiting.empty(); lane.waiting.pop_front()) {
            end(lane.waiting.front());
        }
    }
    lanes_.clear();
    lastPlan_.reset();
    cancellableCount_ = 0;
}

void Admission::trim() {
    constexpr std::size_t maxServers = 64;
    if (lanes_.size() > maxServers) {
        lastPlan_.reset();
        lanes_.clear();
    }
}

}  // namespace vorna
