// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/topViewController.h>

#include <tests/support/ui/PlainScreen.h>
#include <tests/support/ui/PrintedLines.h>
#include <tests/support/ui/ScreenHost.h>

#include <vorna/ui/common/NavigationController.h>
#include <vorna/ui/common/TabBarController.h>

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <string>

namespace vorna::ui {
namespace {

using support::PlainScreen;
using support::ScreenHost;

using Controller = std::shared_ptr<ViewController>;

/// A host's controllers by name; "none" means null.
struct Tree {
    ScreenHost host;
    std::map<std::string, Controller> named;

    Controller plain(const std::string& name) { return named[name] = std::make_shared<ViewController>(); }

    Controller navigation(const std::string& name, const std::string& page) {
        return named[name] = std::make_shared<NavigationController>([this, page] { return named[page]; });
    }

    Controller tabs(const std::string& name, const std::string& selected) {
        return named[name] = std::make_shared<TabBarController>([this, selected] { return named[selected]; });
    }

    void root(const Controller& controller) { host.window().setRootViewController(controller); }

    void present(const std::string& over, const std::string& name) {
        const auto screen = PlainScreen::make();
        named[name] = screen;
        named.at(over)->present(screen, false);
    }

    std::string nameOf(const Controller& controller) const {
        if (!controller) {
            return "none";
        }
        for (const auto& [name, other] : named) {
            if (other == controller) {
                return name;
            }
        }
        return "unknown";
    }
};

struct Shape {
    const char* name;
    std::function<void(Tree&)> build;
    const char* top;
};

void PrintTo(const Shape& shape, std::ostream* stream) {
    *stream << shape.name;
}

class TopViewController : public testing::TestWithParam<Shape> {};

TEST_P(TopViewController, IsFoundInTheTree) {
    Tree tree;
    GetParam().build(tree);
    EXPECT_EQ(tree.nameOf(topViewController()), GetParam().top);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, TopViewController,
    testing::Values(Shape{"PlainRoot", [](Tree& tree) { tree.root(tree.plain("root")); }, "root"},
                    Shape{"RootWithOnePresented",
                          [](Tree& tree) {
                              tree.root(tree.plain("root"));
                              tree.present("root", "first");
                          },
                          "first"},
                    Shape{"RootWithTwoPresented",
                          [](Tree& tree) {
                              tree.root(tree.plain("root"));
                              tree.present("root", "first");
                              tree.present("first", "second");
                          },
                          "second"},
                    Shape{"RootWithThreePresented",
                          [](Tree& tree) {
                              tree.root(tree.plain("root"));
                              tree.present("root", "first");
                              tree.present("first", "second");
                              tree.present("second", "third");
                          },
                          "third"},
                    Shape{"PresentedOnesStayWhenOneBetweenThemLeaves",
                          [](Tree& tree) {
                              tree.root(tree.plain("root"));
                              tree.present("root", "first");
                              tree.present("first", "second");
                              tree.named["first"]->dismiss(false);
                          },
                          "second"},
                    Shape{"NavigationShowsItsPage",
                          [](Tree& tree) {
                              tree.plain("page");
                              tree.root(tree.navigation("navigation", "page"));
                          },
                          "page"},
                    Shape{"NavigationWithoutAPageHasNone",
                          [](Tree& tree) { tree.root(tree.navigation("navigation", "absent")); }, "none"},
                    Shape{"NavigationWithoutAPageThatIsCovered",
                          [](Tree& tree) {
                              tree.root(tree.navigation("navigation", "absent"));
                              tree.present("navigation", "first");
                          },
                          "first"},
                    Shape{"NavigationThatIsCovered",
                          [](Tree& tree) {
                              tree.plain("page");
                              tree.root(tree.navigation("navigation", "page"));
                              tree.present("navigation", "first");
                          },
                          "first"},
                    Shape{"NavigationWhosePageHasPresented",
                          [](Tree& tree) {
                              tree.plain("page");
                              tree.root(tree.navigation("navigation", "page"));
                              EXPECT_EQ(topViewController(), tree.named["page"]);
                              tree.present("page", "first");
                              EXPECT_EQ(tree.named["navigation"]->presentedViewController(),
                                        tree.named["first"]);
                              EXPECT_EQ(tree.named["page"]->presentedViewController(), tree.named["first"]);
                          },
                          "first"},
                    Shape{"NavigationThatMovedToAnotherPage",
                          [](Tree& tree) {
                              const Controller first = tree.plain("page");
                              tree.root(tree.navigation("navigation", "page"));
                              EXPECT_EQ(topViewController(), first);
                              tree.named["before"] = first;
                              tree.plain("page");
                          },
                          "page"},
                    Shape{"TabBarShowsTheSelectedTab",
                          [](Tree& tree) {
                              tree.plain("tab");
                              tree.root(tree.tabs("tabs", "tab"));
                          },
                          "tab"},
                    Shape{"TabBarWithoutASelectedTabIsItself",
                          [](Tree& tree) { tree.root(tree.tabs("tabs", "absent")); }, "tabs"},
                    Shape{"TabBarWithoutASelectedTabThatIsCovered",
                          [](Tree& tree) {
                              tree.root(tree.tabs("tabs", "absent"));
                              tree.present("tabs", "first");
                          },
                          "first"},
                    Shape{"TabBarWithASelectedTabThatIsCovered",
                          [](Tree& tree) {
                              tree.plain("tab");
                              tree.root(tree.tabs("tabs", "tab"));
                              tree.present("tabs", "first");
                          },
                          "first"},
                    Shape{"NavigationInATabInANavigation",
                          [](Tree& tree) {
                              tree.plain("page");
                              tree.navigation("inner", "page");
                              tree.tabs("tabs", "inner");
                              tree.root(tree.navigation("outer", "tabs"));
                          },
                          "page"},
                    Shape{"NavigationInATabInANavigationThatIsCovered",
                          [](Tree& tree) {
                              tree.plain("page");
                              tree.navigation("inner", "page");
                              tree.tabs("tabs", "inner");
                              tree.root(tree.navigation("outer", "tabs"));
                              EXPECT_EQ(topViewController(), tree.named["page"]);
                              tree.present("page", "first");
                              tree.present("first", "second");
                          },
                          "second"},
                    Shape{"NavigationThatShowsItselfHasNone",
                          [](Tree& tree) { tree.root(tree.navigation("navigation", "navigation")); }, "none"},
                    Shape{"TabBarThatShowsItselfIsItself",
                          [](Tree& tree) { tree.root(tree.tabs("tabs", "tabs")); }, "tabs"},
                    Shape{"TwoNavigationsThatShowEachOtherHaveNone",
                          [](Tree& tree) {
                              tree.navigation("second", "first");
                              tree.root(tree.navigation("first", "second"));
                          },
                          "none"},
                    Shape{"ThreeContainersInACircleEnd",
                          [](Tree& tree) {
                              tree.navigation("third", "first");
                              tree.tabs("second", "third");
                              tree.root(tree.tabs("first", "second"));
                          },
                          "none"},
                    Shape{"AScreenOnItsWayOutDoesNotCount",
                          [](Tree& tree) {
                              tree.root(tree.plain("root"));
                              tree.present("root", "first");
                              tree.present("first", "second");
                              tree.named["second"]->dismiss(true);
                              EXPECT_TRUE(tree.host.window().isMoving());
                          },
                          "first"},
                    Shape{"OneOnItsWayOutOverANavigationDoesNotCount",
                          [](Tree& tree) {
                              tree.plain("page");
                              tree.root(tree.navigation("navigation", "page"));
                              tree.present("navigation", "first");
                              tree.named["first"]->dismiss(true);
                              EXPECT_TRUE(tree.host.window().isMoving());
                          },
                          "page"},
                    Shape{"AnArrivingScreenCounts",
                          [](Tree& tree) {
                              tree.root(tree.plain("root"));
                              const auto screen = PlainScreen::make();
                              tree.named["first"] = screen;
                              tree.named["root"]->present(screen, true);
                              EXPECT_TRUE(tree.host.window().isMoving());
                          },
                          "first"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(TopViewControllerOf, NullIsNull) {
    EXPECT_EQ(topViewController(nullptr), nullptr);
}

TEST(TopViewControllerOf, AProgramWithoutWindowsIsNull) {
    EXPECT_EQ(topViewController(), nullptr);
}

TEST(TopViewControllerOf, AControllerThatIsNotOnScreenIsItself) {
    const auto alone = std::make_shared<ViewController>();
    EXPECT_EQ(topViewController(alone), alone);
}

TEST(TopViewControllerOf, AContainerThatIsNotOnScreenIsItsContent) {
    const auto page = std::make_shared<ViewController>();
    EXPECT_EQ(topViewController(std::make_shared<NavigationController>(page)), page);
}

TEST(RootViewController, MayHaveBeenAnotherControllersPage) {
    ScreenHost host;
    const auto page = std::make_shared<ViewController>();
    const auto navigation = std::make_shared<NavigationController>([page] { return page; });
    host.window().setRootViewController(navigation);
    ASSERT_EQ(topViewController(), page);

    host.window().setRootViewController(page);
    const auto screen = PlainScreen::make();
    topViewController()->present(screen, false);
    EXPECT_EQ(topViewController(), screen);
}

TEST(RootViewController, MayChangeUnderPresentedScreens) {
    ScreenHost host;
    const std::weak_ptr<ViewController> before = host.window().rootViewController();
    const auto screen = PlainScreen::make();
    host.window().rootViewController()->present(screen, false);

    const auto page = std::make_shared<ViewController>();
    host.window().setRootViewController(std::make_shared<NavigationController>([page] { return page; }));
    EXPECT_TRUE(before.expired());
    EXPECT_EQ(topViewController(), screen);
    EXPECT_EQ(page->window(), nullptr) << "it has not been requested yet";

    screen->dismiss(false);
    EXPECT_EQ(topViewController(), page);
    EXPECT_EQ(page->window(), &host.window());
}

TEST(RootViewController, IsNeverNull) {
    ScreenHost host;
    const auto before = host.window().rootViewController();
    ASSERT_NE(before, nullptr);
    host.window().setRootViewController(nullptr);
    EXPECT_EQ(host.window().rootViewController(), before);
}

}  // namespace
}  // namespace vorna::ui
