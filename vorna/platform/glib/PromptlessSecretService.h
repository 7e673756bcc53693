// SPDX-License-Identifier: Apache-2.0
#pragma once

/// libsecret's service object, changed so that it never prompts the user and uses only the connection that it
/// is given.

#include <vorna/base/Result.h>
#include <vorna/platform/glib/GlibOwned.h>

#include <libsecret/secret.h>

namespace vorna::glib {

/// Connects to the Secret Service.
Result<Object<SecretService>, Error> openPromptlessService(GDBusConnection* connection,
                                                           GCancellable* cancellable);

/// True for the error of an operation that would have prompted the user.
bool isPromptRefused(const GError& error);

}  // namespace vorna::glib
