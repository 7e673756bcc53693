// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library for C, and for whatever can call C:
///
///     vorna_init("my-app");
///     vorna_paywall_shown("main");
///     vorna_event_with_value("level_up", "7");
///
/// Every operation may be called from any thread unless it says otherwise, returns without waiting for the
/// network, and reports no error: what goes wrong is told in log lines while debug output is on, and the work
/// is dropped. Text is UTF-8 and ends with a zero byte; it is copied before an operation returns. NULL in
/// place of a text that is required does nothing but print a log line.
///
/// Operations that result in text work as snprintf does: they write as much as fits into the buffer, always
/// with a zero byte at its end and never half a character, and return the length of the whole text without
/// that byte. A result not less than the capacity means that the text has been cut. NULL with a capacity of 0
/// asks for the length. VORNA_ABSENT is returned, and an empty text written, where there is nothing.
///
/// The symbols carry the version VORNA_0; what is declared here keeps its meaning as long as they do.

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/// What operations that result in text return where there is nothing.
static const size_t VORNA_ABSENT = SIZE_MAX;

/* Set-up */

/// Where the installation's identity is kept.
typedef int vorna_credential_store;

enum {
    /// In a private file and in the desktop's Secret Service both, each repaired from the other.
    VORNA_CREDENTIAL_STORE_AUTOMATIC = 0,
    /// In the desktop's Secret Service alone.
    VORNA_CREDENTIAL_STORE_SECRET_SERVICE = 1,
    /// In a private file under the data directory alone.
    VORNA_CREDENTIAL_STORE_FILE = 2
};

/// Start from one that is all zeros but for the size:
///
///     vorna_platform_options options = {0};
///     options.size = sizeof options;
///
/// Later versions add fields at the end and tell by the size which of them the caller knows.
typedef struct vorna_platform_options {
    size_t size;
    /// Scheme and authority of the service, such as "https://events.example.com". NULL means the address
    /// given when the library was configured.
    const char* service_url;
    /// A PEM file that is trusted in place of the system's trust store. NULL means the system's.
    const char* certificate_authority_file;
    /// The application's identifier in reverse-domain form, and its versions; NULL where there is none.
    const char* bundle_identifier;
    const char* bundle_short_version;
    const char* bundle_version;
    /// The application's own data folder, made on first use. NULL means one under $XDG_DATA_HOME.
    const char* data_directory;
    vorna_credential_store credential_store;
} vorna_platform_options;

/// Chooses what the library asks of the system. Call it before any other operation but that of debug output;
/// later it is refused with a log line, as are options whose size is too small or whose store is none of the
/// above.
void vorna_use_platform(const vorna_platform_options* options);

/// Starts the library for the application of that identifier and records "sdk_initialized". A later call asks
/// for the remote configuration again; its identifier is ignored. Call it on the main thread.
void vorna_init(const char* app_id);

/// Whether the library prints what it does to standard output. Off at start.
void vorna_set_debug(bool debug);
bool vorna_get_debug(void);

/// The identifier of the first vorna_init; absent before.
size_t vorna_get_app_id(char* buffer, size_t capacity);

/// The installation's user identifier, a ULID's text; absent before vorna_init.
size_t vorna_get_user_id(char* buffer, size_t capacity);

/// What vorna_set_adid was given last; absent before.
size_t vorna_get_adid(char* buffer, size_t capacity);

/// The advertising or attribution identifier that records carry from now on. Empty text is kept as such.
void vorna_set_adid(const char* adid);

/// True, and the seconds since 1970 at which this installation's identity was made; false before vorna_init,
/// with the value left alone. The pointer may be NULL.
bool vorna_get_install_time(uint64_t* seconds);

/// The present time in whole seconds since 1970-01-01 00:00:00 UTC.
uint64_t vorna_current_timestamp(void);

/* Remote configuration */

/// The configured text of the key, also when it is empty; the default while no configuration is known or it
/// lacks the key. Never absent. NULL for the key gives the default, NULL for the default the empty text, both
/// with a log line.
size_t vorna_get_remote_config(const char* key, const char* default_value, char* buffer, size_t capacity);

/* Events */

/// With the present time as both dates and an empty custom value.
void vorna_event(const char* name);

/// With the present time as both dates. The custom value may be NULL, which is recorded as the empty one.
void vorna_event_with_value(const char* name, const char* custom_value);

/// With dates in seconds since 1970, taken as they are. The custom value may be NULL.
void vorna_event_timed(const char* name, uint64_t start_time, uint64_t end_time, const char* custom_value);

/* Predefined events */

void vorna_onboarding_start(void);
/// Records "onboarding_" followed by the step's text.
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

/// The paywall's name is the custom value, here and in the four that follow.
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

/* Screens. They are shown in a window that the C++ or QML part of the program has attached: a window of Qt
   cannot be attached from C. Without one the operations log that there is nothing to show a screen over. */

/// Shows the paywall that the document, JSON text, describes.
void vorna_show_paywall(const char* json_string);
/// Closes the paywall that was shown last.
void vorna_close_paywall(void);

/// Dims the screen and shows a spinning arc until the purchase is over.
void vorna_show_paid_product_loading_screen(void);
/// Does nothing while the overlay is still on its way in.
void vorna_close_paid_product_loading_screen(void);

/// Shows the first of the steps that the document, a JSON array, describes. Call it on the main thread.
void vorna_show_onboarding(const char* json_string);
/// Closes all steps on show. Call it on the main thread.
void vorna_close_onboarding(void);

/// Shows the events of this run, newest first: a help for developers.
void vorna_show_event_list(void);
void vorna_close_event_list(void);

/* The application's life. A host without a toolkit that delivers these signals posts them itself, on its main
   thread; where a window is attached, Qt delivers them. */

typedef int vorna_signal;

enum {
    VORNA_SIGNAL_DID_FINISH_LAUNCHING = 0,
    VORNA_SIGNAL_DID_BECOME_ACTIVE = 1,
    VORNA_SIGNAL_WILL_RESIGN_ACTIVE = 2,
    VORNA_SIGNAL_DID_ENTER_BACKGROUND = 3,
    VORNA_SIGNAL_WILL_ENTER_FOREGROUND = 4,
    VORNA_SIGNAL_DID_RECEIVE_MEMORY_WARNING = 5
};

/// A number that is none of the above does nothing but print a log line.
void vorna_post_signal(vorna_signal signal);

/* Notifications: what the library tells its host. */

/// A fetch of the remote configuration has ended: "remoteConfigFetched" (bool) says how.
extern const char* const vorna_notification_remote_configs_ready;
/// A product was tapped: "identifier" (text).
extern const char* const vorna_notification_paid_product_clicked;
/// The last step's button was tapped: "identifier" (text) of the product chosen there, or empty.
extern const char* const vorna_notification_onboarding_screens_finished;
/// The close button was tapped: "success" (true).
extern const char* const vorna_notification_paywall_screen_closed;
/// The close button was tapped: "success" (true).
extern const char* const vorna_notification_onboarding_screen_closed;
/// The purchase button was tapped: "identifier" (text) of the product selected.
extern const char* const vorna_notification_paywall_screen_finished;
/// "Restore Purchase" was tapped: "success" (true).
extern const char* const vorna_notification_restore_purchase_clicked;
/// An event was handed to the network and stands in the event list; carries nothing.
extern const char* const vorna_notification_event_list_updated;

/// Valid during the call of the observer that it was given to; so is every text taken out of it.
typedef struct vorna_notification vorna_notification;

/// Keeps one observer registered until it is given to vorna_remove_observer.
typedef struct vorna_observation vorna_observation;

typedef void (*vorna_observer)(const vorna_notification* notification, void* user_data);

/// Calls the observer for each notification of that name, on the thread that posts it, which is often one of
/// the library's own; that may be before this operation has returned. NULL, with a log line, where name or
/// observer is NULL or memory is short.
vorna_observation* vorna_add_observer(const char* name, vorna_observer observer, void* user_data);

/// Ends the observation and frees it; once for each. Calls of the observer that run on other threads are
/// waited for, so the user data may go afterwards; do not hold a lock here that the observer takes. An
/// observer may remove itself. NULL does nothing but print a log line.
void vorna_remove_observer(vorna_observation* observation);

/// NULL for NULL.
const char* vorna_notification_name(const vorna_notification* notification);

/// True, and the value, where the notification carries a bool of that key; else false with the value left
/// alone. The pointer may be NULL.
bool vorna_notification_get_bool(const vorna_notification* notification, const char* key, bool* value);

/// NULL where the notification carries no text of that key.
const char* vorna_notification_get_string(const vorna_notification* notification, const char* key);

/// How many entries the map of that key has; 0 also where the notification carries no map of that key.
size_t vorna_notification_get_map_size(const vorna_notification* notification, const char* key);

/// The text under `entry` in the map of that key; NULL where there is none.
const char* vorna_notification_get_map_value(const vorna_notification* notification, const char* key,
                                             const char* entry);

/// True, and key and text of the entry at that place, in the order of the keys; false past the end. The
/// pointers may be NULL.
bool vorna_notification_get_map_entry(const vorna_notification* notification, const char* key, size_t index,
                                      const char** entry, const char** value);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif
