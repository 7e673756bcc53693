// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The windows that the library may show screens in, and which of them is the key window.

#include <vorna/ui/common/HostWindow.h>

#include <QtCore/QPointer>

#include <memory>
#include <vector>

class QQuickWindow;

namespace vorna::ui {

/// Main thread.
class WindowRegistry {
  public:
    WindowRegistry() = default;
    WindowRegistry(const WindowRegistry&) = delete;
    WindowRegistry& operator=(const WindowRegistry&) = delete;
    WindowRegistry(WindowRegistry&&) = delete;
    WindowRegistry& operator=(WindowRegistry&&) = delete;
    ~WindowRegistry() = default;

    /// The process's registry.
    static WindowRegistry& shared();

    /// Owns the window from now on, until its QQuickWindow is destroyed. It becomes the key window whenever
    /// it is activated.
    HostWindow& add(std::unique_ptr<HostWindow> window);

    /// Null if there is none for that QQuickWindow.
    HostWindow* find(const QQuickWindow& quickWindow) const;

    /// The window added first among those that still exist; null if there are none.
    HostWindow* first() const;

    /// The window made key last; if that no longer exists, the one added last. Null if there are none, or
    /// none has been made key.
    HostWindow* key() const { return key_; }

    void makeKey(HostWindow& window);

  private:
    void remove(const HostWindow& window);

    /// In the order of adding.
    std::vector<std::unique_ptr<HostWindow>> windows_;
    /// Null once it is destroyed, even if it was never added.
    QPointer<HostWindow> key_;
};

}  // namespace vorna::ui
