// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library's C interface, for C and any language that can call C:
///
///     vorna_init("my-app");
///     vorna_paywall_shown("main");
///     vorna_event_with_value("level_up", "7");
///
/// Functions are thread-safe unless stated otherwise, never block on the network, and report no errors:
/// failures are logged while debug output is on, and the call has no effect. Strings are UTF-8 and
/// null-terminated; they are copied before a function returns. Passing NULL for a required string only logs a
/// line.
///
/// Functions that return text work like snprintf: they write as much as fits into the buffer, always
/// null-terminated and never part of a character, and return the length of the whole text without the
/// terminator. A result not less than the capacity means that the text was truncated. Pass NULL and a
/// capacity of 0 to get the length. If there is no value, they write an empty string and return VORNA_ABSENT.
///
/// The symbols have the version VORNA_0; as long as that version exists, these declarations keep their
/// meaning.

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/// Returned by functions that return text if there is no value.
static const size_t VORNA_ABSENT = SIZE_MAX;

/* Set-up */

/// Where the installation's identity is kept.
typedef int vorna_credential_store;

enum {
    /// In a private file and in the desktop's Secret Service; each is restored from the other.
    VORNA_CREDENTIAL_STORE_AUTOMATIC = 0,
    /// In the desktop's Secret Service only.
    VORNA_CREDENTIAL_STORE_SECRET_SERVICE = 1,
    /// In a private file in the data directory only.
    VORNA_CREDENTIAL_STORE_FILE = 2
};

/// Initialise it to zeros and set the size:
///
///     vorna_platform_options options = {0};
///     options.size = sizeof options;
///
/// Later versions may append fields; the size indicates which of them the caller knows.
typedef struct vorna_platform_options {
    size_t size;
    /// Scheme and authority of the service, such as "https://events.example.com". NULL for the address
    /// configured when the library was built.
    const char* service_url;
    /// A PEM file to trust instead of the system's trust store. NULL for the system's.
    const char* certificate_authority_file;
    /// The application's reverse-domain identifier and its versions; NULL if it has none.
    const char* bundle_identifier;
    const char* bundle_short_version;
    const char* bundle_version;
    /// The application's data folder, created on first use. NULL for one in $XDG_DATA_HOME.
    const char* data_directory;
    vorna_credential_store credential_store;
} vorna_platform_options;

/// Configures how the library uses the system. Call it before any other function except vorna_set_debug;
/// later calls are refused with a log line, as are options whose size is too small or whose store is unknown.
/// If memory runs out, the functions that follow are refused with a log line each.
void vorna_use_platform(const vorna_platform_options* options);

/// Starts the library for the application with that identifier and records "sdk_initialized". Later calls
/// fetch the remote configuration again and ignore the identifier. Call it on the main thread.
void vorna_init(const char* app_id);

/// Debug output on standard output. Off by default.
void vorna_set_debug(bool debug);
bool vorna_get_debug(void);

/// Returns the identifier passed to the first vorna_init; VORNA_ABSENT before.
size_t vorna_get_app_id(char* buffer, size_t capacity);

/// Returns the installation's user identifier, a ULID; VORNA_ABSENT before vorna_init.
size_t vorna_get_user_id(char* buffer, size_t capacity);

/// Returns the identifier set by vorna_set_adid; VORNA_ABSENT before.
size_t vorna_get_adid(char* buffer, size_t capacity);

/// Sets the advertising or attribution identifier of all later records. It may be empty.
void vorna_set_adid(const char* adid);

/// Stores when this installation's identity was created, in seconds since 1970, and returns true; returns
/// false and stores nothing before vorna_init. The pointer may be NULL.
bool vorna_get_install_time(uint64_t* seconds);

/// Returns the current time in whole seconds since 1970-01-01 00:00:00 UTC.
uint64_t vorna_current_timestamp(void);

/* Remote configuration */

/// Returns the configured value of the key, even if empty, or the default if there is no configuration yet or
/// it lacks the key. Never VORNA_ABSENT. A NULL key yields the default and a NULL default the empty string,
/// both with a log line.
size_t vorna_get_remote_config(const char* key, const char* default_value, char* buffer, size_t capacity);

/* Events */

/// Records an event with the current time as both dates and an empty custom value.
void vorna_event(const char* name);

/// Records an event with the current time as both dates. A NULL custom value is recorded as the empty string.
void vorna_event_with_value(const char* name, const char* custom_value);

/// Records an event with the given dates in seconds since 1970, unchecked. The custom value may be NULL.
void vorna_event_timed(const char* name, uint64_t start_time, uint64_t end_time, const char* custom_value);

/* Predefined events */

void vorna_onboarding_start(void);
/// Records "onboarding_" followed by the step.
void vorna_onboarding_step(const char* step);
void vorna_onboarding_finish(void);

/// The source, such as "mail", is the custom value.
void vorna_login_success(const char* source);

void vorna_interstitial_ad_shown(void);
void vorna_interstitial_ad_closed(void);
void vorna_rewarded_ad_shown(void);
void vorna_rewarded_ad_closed(void);
void vorna_rewarded_ad_claimed(void);
void vorna_banner_ad_shown(void);

void vorna_notification_permission_granted(void);
void vorna_notification_permission_denied(void);
void vorna_location_permission_granted(void);
void vorna_location_permission_denied(void);
void vorna_att_prompt_shown(void);
void vorna_att_permission_granted(void);
void vorna_att_permission_denied(void);

/// The paywall's name is the custom value, here and in the following four functions.
void vorna_paywall_shown(const char* paywall);
void vorna_paywall_closed(const char* paywall);
void vorna_paywall_attempted(const char* paywall);
void vorna_paywall_purchased(const char* paywall);
void vorna_paywall_cancelled(const char* paywall);

/// The tab's name is the custom value.
void vorna_tab_clicked(const char* tab);
/// The feature's name is the custom value.
void vorna_feature_clicked(const char* feature);

void vorna_daily_streak_shown(void);
void vorna_daily_streak_claimed(void);
void vorna_daily_streak_closed(void);

/* Screens, shown in a window that the C++ or QML part of the program has attached: a Qt window cannot be
   attached from C. Without one the functions log that there is no window to show a screen in. */

/// Shows the paywall described by the JSON document.
void vorna_show_paywall(const char* json_string);
/// Closes the most recent paywall.
void vorna_close_paywall(void);

/// Dims the screen and shows a spinner, for the duration of a purchase.
void vorna_show_paid_product_loading_screen(void);
/// Does nothing while the overlay is still appearing.
void vorna_close_paid_product_loading_screen(void);

/// Shows the first step of the onboarding described by the document, a JSON array. Call it on the main
/// thread.
void vorna_show_onboarding(const char* json_string);
/// Closes all steps. Call it on the main thread.
void vorna_close_onboarding(void);

/// Shows the events of this run, newest first; for developers.
void vorna_show_event_list(void);
void vorna_close_event_list(void);

/* Application lifecycle. With an attached window Qt delivers these signals; any other host posts them itself,
   on its main thread. */

typedef int vorna_signal;

enum {
    VORNA_SIGNAL_DID_FINISH_LAUNCHING = 0,
    VORNA_SIGNAL_DID_BECOME_ACTIVE = 1,
    VORNA_SIGNAL_WILL_RESIGN_ACTIVE = 2,
    VORNA_SIGNAL_DID_ENTER_BACKGROUND = 3,
    VORNA_SIGNAL_WILL_ENTER_FOREGROUND = 4,
    VORNA_SIGNAL_DID_RECEIVE_MEMORY_WARNING = 5
};

/// An unknown signal only logs a line.
void vorna_post_signal(vorna_signal signal);

/* Notifications from the library to its host */

/// A fetch of the remote configuration has finished: "remoteConfigFetched" (bool) says whether it succeeded.
extern const char* const vorna_notification_remote_configs_ready;
/// A product was tapped: "identifier" (string).
extern const char* const vorna_notification_paid_product_clicked;
/// The last step's button was tapped: "identifier" (string) of the product selected there, or empty.
extern const char* const vorna_notification_onboarding_screens_finished;
/// The close button was tapped: "success" (true).
extern const char* const vorna_notification_paywall_screen_closed;
/// The close button was tapped: "success" (true).
extern const char* const vorna_notification_onboarding_screen_closed;
/// The purchase button was tapped: "identifier" (string) of the selected product.
extern const char* const vorna_notification_paywall_screen_finished;
/// "Restore Purchase" was tapped: "success" (true).
extern const char* const vorna_notification_restore_purchase_clicked;
/// An event was passed to the network and added to the event list; has no user info.
extern const char* const vorna_notification_event_list_updated;

/// Valid only during the call of the observer, as are all strings obtained from it.
typedef struct vorna_notification vorna_notification;

/// The registration of one observer, until passed to vorna_remove_observer.
typedef struct vorna_observation vorna_observation;

typedef void (*vorna_observer)(const vorna_notification* notification, void* user_data);

/// Calls the observer for each notification with that name, on the thread that posts it, often one of the
/// library's own; possibly before this function returns. Returns NULL, with a log line, if name or observer
/// is NULL or memory is exhausted.
vorna_observation* vorna_add_observer(const char* name, vorna_observer observer, void* user_data);

/// Removes the observer and frees the observation; call it once for each. Waits for calls of the observer on
/// other threads, so the user data may be freed afterwards; do not hold a lock that the observer takes. An
/// observer may remove itself. NULL only logs a line.
void vorna_remove_observer(vorna_observation* observation);

/// Returns NULL for NULL.
const char* vorna_notification_name(const vorna_notification* notification);

/// Stores the bool with that key and returns true; returns false and stores nothing if there is none. The
/// pointer may be NULL.
bool vorna_notification_get_bool(const vorna_notification* notification, const char* key, bool* value);

/// Returns the string with that key; NULL if there is none.
const char* vorna_notification_get_string(const vorna_notification* notification, const char* key);

/// Returns the number of entries in the map with that key; 0 if there is no such map.
size_t vorna_notification_get_map_size(const vorna_notification* notification, const char* key);

/// Returns the value of `entry` in the map with that key; NULL if there is none.
const char* vorna_notification_get_map_value(const vorna_notification* notification, const char* key,
                                             const char* entry);

/// Stores key and value of the entry at that index, in the order of the keys, and returns true; returns false
/// past the end. The pointers may be NULL.
bool vorna_notification_get_map_entry(const vorna_notification* notification, const char* key, size_t index,
                                      const char** entry, const char** value);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif
