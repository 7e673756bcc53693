// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/PromptlessSecretService.h>

#include <cstdint>
#include <string>

namespace vorna::glib {

namespace {

GQuark promptRefused() {
    return g_quark_from_static_string("vorna-prompt-refused");
}

void setPromptRefused(GError** error) {
    g_set_error_literal(error, promptRefused(), 0, "the user would have to be prompted");
}

/// libsecret sets up its service object for the process's shared connection to the bus. That connection ends
/// the process when the bus goes away, and waits for its other users. Unsetting the bus type makes the object
/// use the connection it is given.
GObject* constructForGivenConnection(GType type, guint count, GObjectConstructParam* properties) {
    auto* const parent = static_cast<GObjectClass*>(g_type_class_peek(secret_service_get_type()));
    GObject* const object = parent->constructor(type, count, properties);
    g_object_set(object, "g-bus-type", G_BUS_TYPE_NONE, nullptr);
    return object;
}

void initialiseClass(gpointer classMemory, gpointer /*data*/) {
    static_cast<GObjectClass*>(classMemory)->constructor = constructForGivenConnection;
    auto* const service = static_cast<SecretServiceClass*>(classMemory);
    service->prompt_sync = [](SecretService*, SecretPrompt*, GCancellable*, const GVariantType*,
                              GError** error) -> GVariant* {
        setPromptRefused(error);
        return nullptr;
    };
    service->prompt_async = [](SecretService* self, SecretPrompt*, const GVariantType*,
                               GCancellable* cancellable, GAsyncReadyCallback callback, gpointer data) {
        const Object<GTask> task(g_task_new(self, cancellable, callback, data));
        GError* error = nullptr;
        setPromptRefused(&error);
        g_task_return_error(task.get(), error);
    };
    service->prompt_finish = [](SecretService*, GAsyncResult* result, GError** error) -> GVariant* {
        return static_cast<GVariant*>(g_task_propagate_pointer(reinterpret_cast<GTask*>(result), error));
    };
}

GType promptlessServiceType() {
    static const GType type = [] {
        GTypeQuery parent{};
        g_type_query(secret_service_get_type(), &parent);
        // The address makes the name unique even when a process has loaded two copies of this library.
        static const char here = 0;
        const std::string name =
            "VornaPromptlessSecretService" + std::to_string(reinterpret_cast<std::uintptr_t>(&here));
        return g_type_register_static_simple(secret_service_get_type(), name.c_str(), parent.class_size,
                                             initialiseClass, parent.instance_size, nullptr,
                                             static_cast<GTypeFlags>(0));
    }();
    return type;
}

}  // namespace

Result<Object<SecretService>, Error> openPromptlessService(GDBusConnection* connection,
                                                           GCancellable* cancellable) {
    ErrorSlot error;
    Object<SecretService> service(static_cast<SecretService*>(g_initable_new(
        promptlessServiceType(), cancellable, error.out(), "g-connection", connection, nullptr)));
    if (!service) {
        return Unexpected(error.take());
    }
    return service;
}

bool isPromptRefused(const GError& error) {
    return error.domain == promptRefused();
}

}  // namespace vorna::glib
