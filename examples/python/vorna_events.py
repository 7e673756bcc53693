#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""A complete small host in Python: records events through the C interface and prints the configuration.

    vorna_events.py --library libvorna_c.so [--service URL] [--ca FILE] [--data DIR] [--debug]
"""

import argparse
import ctypes
import sys
import threading
import time


class PlatformOptions(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_size_t),
        ("service_url", ctypes.c_char_p),
        ("certificate_authority_file", ctypes.c_char_p),
        ("bundle_identifier", ctypes.c_char_p),
        ("bundle_short_version", ctypes.c_char_p),
        ("bundle_version", ctypes.c_char_p),
        ("data_directory", ctypes.c_char_p),
        ("credential_store", ctypes.c_int),
    ]


OBSERVER = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_void_p)
ABSENT = ctypes.c_size_t(-1).value
STORE_FILE = 2


class Vorna:
    """The functions that this example uses; text is str, absent text None."""

    def __init__(self, library):
        self._library = ctypes.CDLL(library)
        self._observers = []
        declarations = {
            "vorna_add_observer": (ctypes.c_void_p, ctypes.c_char_p, OBSERVER, ctypes.c_void_p),
            "vorna_event_timed": (None, ctypes.c_char_p, ctypes.c_uint64, ctypes.c_uint64, ctypes.c_char_p),
            "vorna_event_with_value": (None, ctypes.c_char_p, ctypes.c_char_p),
            "vorna_get_remote_config": (
                ctypes.c_size_t, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_size_t),
            "vorna_get_user_id": (ctypes.c_size_t, ctypes.c_char_p, ctypes.c_size_t),
            "vorna_init": (None, ctypes.c_char_p),
            "vorna_notification_get_bool": (
                ctypes.c_bool, ctypes.c_void_p, ctypes.c_char_p, ctypes.POINTER(ctypes.c_bool)),
            "vorna_paywall_shown": (None, ctypes.c_char_p),
            "vorna_remove_observer": (None, ctypes.c_void_p),
            "vorna_set_debug": (None, ctypes.c_bool),
            "vorna_use_platform": (None, ctypes.POINTER(PlatformOptions)),
        }
        for name, (result, *arguments) in declarations.items():
            function = getattr(self._library, name)
            function.restype = result
            function.argtypes = arguments

    def __getattr__(self, name):
        """Any function by its name without "vorna_"; str becomes UTF-8."""
        function = getattr(self._library, "vorna_" + name)
        return lambda *values: function(*(v.encode() if isinstance(v, str) else v for v in values))

    def text(self, operation, *arguments):
        """The result of a function that returns text."""
        call = getattr(self, operation)
        length = call(*arguments, None, 0)
        if length == ABSENT:
            return None
        buffer = ctypes.create_string_buffer(length + 1)
        call(*arguments, buffer, len(buffer))
        return buffer.value.decode()

    def observe(self, notification, observer):
        """Calls the observer with a function that looks up a bool, on one of the library's threads."""

        def handle(posted, _):
            def flag(key):
                value = ctypes.c_bool()
                found = self.notification_get_bool(posted, key, ctypes.byref(value))
                return value.value if found else None

            observer(flag)

        callback = OBSERVER(handle)
        name = ctypes.c_char_p.in_dll(self._library, "vorna_notification_" + notification)
        observation = self._library.vorna_add_observer(name.value, callback, None)
        self._observers.append((observation, callback))

    def remove_observers(self):
        for observation, _ in self._observers:
            self._library.vorna_remove_observer(observation)
        self._observers.clear()


def main():
    parser = argparse.ArgumentParser(description="Records events through the C interface.")
    parser.add_argument("--library", default="libvorna_c.so.0")
    parser.add_argument("--service")
    parser.add_argument("--ca")
    parser.add_argument("--data")
    parser.add_argument("--debug", action="store_true")
    arguments = parser.parse_args()

    def encoded(text):
        return None if text is None else text.encode()

    vorna = Vorna(arguments.library)
    vorna.set_debug(arguments.debug)
    options = PlatformOptions(
        size=ctypes.sizeof(PlatformOptions),
        service_url=encoded(arguments.service),
        certificate_authority_file=encoded(arguments.ca),
        bundle_identifier=b"com.example.vorna-python",
        data_directory=encoded(arguments.data),
        credential_store=STORE_FILE,
    )
    vorna.use_platform(ctypes.byref(options))

    recorded = 4  # including "sdk_initialized"
    passed_on = threading.Semaphore(0)
    configured = threading.Event()

    def ready(flag):
        print("configuration", "fetched" if flag("remoteConfigFetched") else "not available")
        configured.set()

    vorna.observe("event_list_updated", lambda flag: passed_on.release())
    vorna.observe("remote_configs_ready", ready)
    vorna.init("vorna-python")
    vorna.paywall_shown("ana ekran")
    vorna.event_with_value("level_up", "7 🎉")
    vorna.event_timed("lesson", 1704067200, 1704067260, None)

    arrived = all([passed_on.acquire(timeout=30) for _ in range(recorded)]) and configured.wait(30)
    time.sleep(1)  # the requests follow immediately; give them a moment to complete
    vorna.remove_observers()
    print("user", vorna.text("get_user_id"))
    for key in ("welcome_text", "paywall_name"):
        print(key, "=", vorna.text("get_remote_config", key, "(default)"))
    return 0 if arrived else 1


if __name__ == "__main__":
    sys.exit(main())
