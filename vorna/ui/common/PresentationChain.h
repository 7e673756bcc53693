// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screens of one window: a root controller, which represents what the host shows, and over it the chain
/// of presented controllers, with their transitions.

#include <vorna/base/Result.h>
#include <vorna/ui/common/HostLayer.h>
#include <vorna/ui/common/HostWindow.h>
#include <vorna/ui/common/Presenter.h>
#include <vorna/ui/common/Transition.h>
#include <vorna/ui/common/TransitionAnimation.h>
#include <vorna/ui/common/ViewController.h>

#include <QtCore/QPointer>
#include <QtQuick/QQuickItem>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vorna::ui {

/// Main thread.
class PresentationChain final : public Presenter {
  public:
    /// Both must outlive the chain.
    PresentationChain(HostWindow& window, HostLayer& host);
    PresentationChain(const PresentationChain&) = delete;
    PresentationChain& operator=(const PresentationChain&) = delete;
    PresentationChain(PresentationChain&&) = delete;
    PresentationChain& operator=(PresentationChain&&) = delete;
    ~PresentationChain() override;

    /// Never null.
    std::shared_ptr<ViewController> root() const { return root_; }

    /// Null changes nothing. Presented screens stay.
    void setRoot(std::shared_ptr<ViewController> controller);

    /// The presented controllers, lowest first, except one that is being dismissed.
    std::vector<std::shared_ptr<ViewController>> presented() const;

    /// Used by the next presentation or dismissal without its own animation within this turn of the event
    /// loop.
    void addTransition(Transition transition);

    bool isMoving() const { return animation_ != nullptr; }

    /// Removes every screen immediately, topmost first, and runs no completions.
    void removeAll();

    HostWindow& window() const override { return window_; }

    std::shared_ptr<ViewController> presentedOver(const ViewController& controller) const override;
    Result<void, PresentationFailure> present(const ViewController& over,
                                              const std::shared_ptr<ViewController>& controller,
                                              bool animated, std::function<void()> completion) override;
    void dismiss(const ViewController& controller, bool animated, std::function<void()> completion) override;

  private:
    struct Entry {
        std::shared_ptr<ViewController> controller;
        QPointer<QQuickItem> layer;
        /// The item that had the keyboard focus before.
        QPointer<QQuickItem> focusBefore;
        bool coversFully = true;
        bool isArriving = false;
        bool isLeaving = false;
    };

    using Entries = std::vector<Entry>;

    Entries::iterator find(const ViewController& controller);
    bool isTop(const ViewController& controller) const;
    bool isCovered(Entries::const_iterator entry) const;
    void remove(const ViewController& controller);
    void animate(const Transition& transition, TransitionAnimation::Items items, std::function<void()> done);
    [[nodiscard]] bool survivesEndOfTransition();
    void updateLayers();

    HostWindow& window_;
    HostLayer& host_;
    std::shared_ptr<ViewController> root_;
    Entries entries_;
    std::optional<Transition> nextTransition_;
    std::unique_ptr<TransitionAnimation> animation_;
};

}  // namespace vorna::ui
