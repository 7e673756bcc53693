// SPDX-License-Identifier: Apache-2.0
/// A complete small host in C: sends events to the service and prints the configuration.
///
///     vorna-c [--service URL] [--ca FILE] [--data DIR] [--debug]

#include <vorna/vorna.h>

#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

/// Updated by observers, on the library's threads.
struct progress {
    atomic_int events_passed_on;
    atomic_bool is_configuration_ready;
};

static void event_list_updated(const vorna_notification* notification, void* user_data) {
    struct progress* const progress = user_data;
    (void)notification;
    atomic_fetch_add(&progress->events_passed_on, 1);
}

static void remote_configs_ready(const vorna_notification* notification, void* user_data) {
    struct progress* const progress = user_data;
    bool is_fetched = false;
    vorna_notification_get_bool(notification, "remoteConfigFetched", &is_fetched);
    printf("configuration %s\n", is_fetched ? "fetched" : "not available");
    atomic_store(&progress->is_configuration_ready, true);
}

static void print_configuration(const char* key) {
    char value[256];
    const size_t length = vorna_get_remote_config(key, "(default)", value, sizeof value);
    printf("%s = %s%s\n", key, value, length < sizeof value ? "" : " (truncated)");
}

static bool parse(int count, char** texts, vorna_platform_options* options) {
    for (int index = 1; index < count; ++index) {
        const char** value = NULL;
        if (strcmp(texts[index], "--debug") == 0) {
            vorna_set_debug(true);
            continue;
        }
        if (strcmp(texts[index], "--service") == 0) {
            value = &options->service_url;
        } else if (strcmp(texts[index], "--ca") == 0) {
            value = &options->certificate_authority_file;
        } else if (strcmp(texts[index], "--data") == 0) {
            value = &options->data_directory;
        }
        if (value == NULL || index + 1 == count) {
            return false;
        }
        *value = texts[++index];
    }
    return true;
}

int main(int count, char** texts) {
    vorna_platform_options options = {0};
    options.size = sizeof options;
    options.bundle_identifier = "com.example.vorna-c";
    options.bundle_short_version = "1.0";
    options.credential_store = VORNA_CREDENTIAL_STORE_FILE;
    if (!parse(count, texts, &options)) {
        fprintf(stderr, "Usage: %s [--service URL] [--ca FILE] [--data DIR] [--debug]\n", texts[0]);
        return 2;
    }
    vorna_use_platform(&options);

    struct progress progress;
    atomic_init(&progress.events_passed_on, 0);
    atomic_init(&progress.is_configuration_ready, false);
    vorna_observation* const list =
        vorna_add_observer(vorna_notification_event_list_updated, event_list_updated, &progress);
    vorna_observation* const configuration =
        vorna_add_observer(vorna_notification_remote_configs_ready, remote_configs_ready, &progress);

    vorna_init("vorna-c");
    vorna_post_signal(VORNA_SIGNAL_DID_FINISH_LAUNCHING);
    vorna_post_signal(VORNA_SIGNAL_DID_BECOME_ACTIVE);
    vorna_paywall_shown("ana ekran");
    vorna_event("plain");
    vorna_event_with_value("level_up", "7");
    vorna_event_timed("lesson", 1704067200, 1704067260, NULL);

    // Including "sdk_initialized". The requests follow immediately; give them a moment to complete.
    const int recorded = 5;
    const struct timespec moment = {0, 20000000};
    for (int waited = 0; waited < 1500; ++waited) {
        if (atomic_load(&progress.events_passed_on) >= recorded &&
            atomic_load(&progress.is_configuration_ready)) {
            break;
        }
        nanosleep(&moment, NULL);
    }
    const struct timespec second = {1, 0};
    nanosleep(&second, NULL);

    char user[64];
    vorna_get_user_id(user, sizeof user);
    printf("user %s\n", user);
    print_configuration("welcome_text");
    print_configuration("paywall_name");
    vorna_remove_observer(configuration);
    vorna_remove_observer(list);
    return atomic_load(&progress.events_passed_on) >= recorded ? EXIT_SUCCESS : EXIT_FAILURE;
}
