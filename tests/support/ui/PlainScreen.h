// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A screen without a document: its view is one control that counts taps and takes the keyboard focus.
///
/// Tests can make it fail to load its view. Counts taps, loadings and removals.

#include <vorna/ui/common/ObjectTree.h>
#include <vorna/ui/common/ViewController.h>

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtQuick/QQuickItem>

#include <memory>

namespace vorna::support {

class TapCounter : public QQuickItem {
  public:
    TapCounter() {
        setAcceptedMouseButtons(Qt::LeftButton);
        setActiveFocusOnTab(true);
        setFocus(true);
    }

    int taps() const { return taps_; }

    int keys() const { return keys_; }

  protected:
    void mousePressEvent(QMouseEvent* event) override {
        ++taps_;
        event->accept();
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Space) {
            ++keys_;
        } else {
            event->ignore();
        }
    }

  private:
    int taps_ = 0;
    int keys_ = 0;
};

class PlainScreen : public ui::ViewController {
  public:
    static std::shared_ptr<PlainScreen>
    make(ui::ModalPresentationStyle presentation = ui::ModalPresentationStyle::fullScreen,
         ui::ModalTransitionStyle transition = ui::ModalTransitionStyle::coverVertical) {
        auto screen = std::make_shared<PlainScreen>();
        screen->modalPresentationStyle = presentation;
        screen->modalTransitionStyle = transition;
        return screen;
    }

    bool canLoad = true;

    int timesLoaded() const { return timesLoaded_; }

    int timesGone() const { return timesGone_; }

    /// Null if the screen is not presented.
    TapCounter* counter() const { return static_cast<TapCounter*>(view()); }

    /// The item that the window moves, shows and hides.
    QQuickItem* layer() const { return view() == nullptr ? nullptr : view()->parentItem(); }

  protected:
    QQuickItem* loadView(QQuickItem& parent) override {
        if (!canLoad) {
            return nullptr;
        }
        auto& item = ui::makeChild<TapCounter>(parent);
        item.setParentItem(&parent);
        ui::fillParent(item, parent);
        return &item;
    }

    void viewDidLoad() override { ++timesLoaded_; }

    void viewDidDisappear() override { ++timesGone_; }

  private:
    int timesLoaded_ = 0;
    int timesGone_ = 0;
};

}  // namespace vorna::support
