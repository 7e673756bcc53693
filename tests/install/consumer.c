// SPDX-License-Identifier: Apache-2.0
#include <vorna/vorna.h>

#include <stdio.h>
#include <string.h>

int main(int count, char** arguments) {
    vorna_platform_options options = {0};
    char user[64];
    char value[16];
    bool is_fine = false;
    options.size = sizeof options;
    options.service_url = "https://127.0.0.1:1";
    options.data_directory = count > 1 ? arguments[1] : NULL;
    options.credential_store = VORNA_CREDENTIAL_STORE_FILE;
    vorna_use_platform(&options);
    vorna_init("c-consumer");
    vorna_paywall_shown("main");
    is_fine = vorna_get_user_id(user, sizeof user) == 26 && strlen(user) == 26 &&
              vorna_get_remote_config("key", "default", value, sizeof value) == 7 &&
              strcmp(value, "default") == 0;
    printf("user %s, %s\n", user, is_fine ? "fine" : "not fine");
    return is_fine ? 0 : 1;
}
