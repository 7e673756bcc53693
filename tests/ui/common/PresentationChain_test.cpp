// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/PresentationChain.h>

#include <tests/support/ui/PlainScreen.h>

#include <QtQuick/QQuickWindow>

#include <gmock/gmock.h>

#include <memory>
#include <optional>

namespace vorna::ui {
namespace {

using support::PlainScreen;
using testing::ElementsAre;
using testing::IsEmpty;

/// A chain without a registry, a Window or anything on screen.
class Chain : public testing::Test {
  protected:
    Result<void, PresentationFailure> present(const std::shared_ptr<ViewController>& over,
                                              const std::shared_ptr<ViewController>& controller) {
        return chain->present(*over, controller, false, {});
    }

    static Result<void, PresentationFailure> failure(PresentationFailure reason) {
        return Unexpected(reason);
    }

    std::unique_ptr<QQuickWindow> quickWindow = std::make_unique<QQuickWindow>();
    HostWindow window{*quickWindow};
    HostLayer host{*quickWindow};
    std::optional<PresentationChain> chain{std::in_place, window, host};
    const std::shared_ptr<PlainScreen> first = PlainScreen::make();
    const std::shared_ptr<PlainScreen> second = PlainScreen::make();
};

TEST_F(Chain, HasARootFromTheStart) {
    ASSERT_NE(chain->root(), nullptr);
    EXPECT_EQ(chain->root()->window(), &window);
    EXPECT_THAT(chain->presented(), IsEmpty());
    EXPECT_EQ(chain->presentedOver(*chain->root()), nullptr);
}

TEST_F(Chain, GrowsAtItsTop) {
    EXPECT_TRUE(present(chain->root(), first));
    EXPECT_TRUE(present(first, second));
    EXPECT_THAT(chain->presented(), ElementsAre(first, second));
    EXPECT_EQ(chain->presentedOver(*chain->root()), first);
    EXPECT_EQ(chain->presentedOver(*first), second);
    EXPECT_EQ(chain->presentedOver(*second), nullptr);
    EXPECT_EQ(second->window(), &window);
}

TEST_F(Chain, ReportsWhyItDoesNotPresent) {
    EXPECT_EQ(present(chain->root(), nullptr), failure(PresentationFailure::nothingToPresent));
    ASSERT_TRUE(present(chain->root(), first));
    EXPECT_EQ(present(chain->root(), second), failure(PresentationFailure::presenterCovered));
    EXPECT_EQ(present(first, first), failure(PresentationFailure::alreadyOnScreen));
    second->canLoad = false;
    EXPECT_EQ(present(first, second), failure(PresentationFailure::noView));
    EXPECT_EQ(second->window(), nullptr);
    EXPECT_THAT(chain->presented(), ElementsAre(first));
}

TEST_F(Chain, PresentsNothingOnceTheWindowIsGone) {
    quickWindow.reset();
    EXPECT_EQ(present(chain->root(), first), failure(PresentationFailure::presenterNotOnScreen));
    EXPECT_EQ(first->timesLoaded(), 0);
}

TEST_F(Chain, ReleasesARootThatIsReplaced) {
    const std::shared_ptr<ViewController> before = chain->root();
    ASSERT_TRUE(present(before, first));
    chain->setRoot(second);
    EXPECT_EQ(before->window(), nullptr);
    EXPECT_EQ(second->window(), &window);
    EXPECT_EQ(chain->presentedOver(*second), first);
}

TEST_F(Chain, RemovesAllScreensWhenDestroyed) {
    const std::shared_ptr<ViewController> root = chain->root();
    ASSERT_TRUE(present(root, first));
    ASSERT_TRUE(present(first, second));
    chain.reset();
    EXPECT_EQ(first->timesGone(), 1);
    EXPECT_EQ(second->timesGone(), 1);
    for (const std::shared_ptr<ViewController>& controller : {root, std::shared_ptr<ViewController>(first)}) {
        EXPECT_EQ(controller->window(), nullptr);
        EXPECT_EQ(controller->presentedViewController(), nullptr);
    }
}

}  // namespace
}  // namespace vorna::ui
