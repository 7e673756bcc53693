// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/Fingerprints.h>

#include <vorna/platform/glib/PrivateBus.h>

#include <chrono>

namespace vorna {

bool isFingerEnrolled(const std::string& systemBusAddress, const std::stop_token& stop) {
    constexpr const char* service = "net.reactivated.Fprint";
    const glib::PrivateBus bus(systemBusAddress, stop,
                               std::chrono::steady_clock::now() + std::chrono::seconds(2));
    const glib::Variant readers = bus.call(service, "/net/reactivated/Fprint/Manager",
                                           "net.reactivated.Fprint.Manager", "GetDevices", nullptr, "(ao)");
    const gsize readerCount = readers ? g_variant_n_children(readers.get()) : 0;
    for (gsize index = 0; index < readerCount; ++index) {
        const glib::Variant reader(g_variant_get_child_value(readers.get(), index));
        // The empty name means the calling user.
        const glib::Variant fingers =
            bus.call(service, g_variant_get_string(reader.get(), nullptr), "net.reactivated.Fprint.Device",
                     "ListEnrolledFingers", g_variant_new("(s)", ""), "(as)");
        if (fingers && g_variant_n_children(fingers.get()) > 0) {
            return true;
        }
    }
    return false;
}

}  // namespace vorna
