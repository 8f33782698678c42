#!/usr/bin/env python3
"""Takes a screenshot of every phone that is ready.

RESOURCES is a folder with the programs adb (for this computer) and busybox (for the phone); the pictures go into
FOLDER, each named after its phone.
"""

import argparse
import ctypes
import ctypes.util
import os
import sys
import tempfile

OK = 0
INVALID_PARAM = 4
RESOURCE_INCOMPLETE = 6
DEVICE_UNAUTHORIZED = 42
CANNOT_START_ADB = 3002

REASONS = {
    INVALID_PARAM: "an argument is missing",
    RESOURCE_INCOMPLETE: "adb or busybox is missing",
    CANNOT_START_ADB: "the adb in the resource folder cannot be started",
    DEVICE_UNAUTHORIZED: "allow USB debugging on the screen of the phone",
}

# Any pointer that is valid as long as the process lives.
LOG_CONTEXT = ctypes.create_string_buffer(b"screenshots")


def declare(library):
    """The functions used here, as darokleim.h declares them."""
    text = ctypes.c_char_p
    block = ctypes.POINTER(ctypes.c_void_p)  # not c_char_p: the pointer itself must go back
    length = ctypes.POINTER(ctypes.c_int)
    flag = ctypes.POINTER(ctypes.c_bool)
    signatures = {
        "AdbSdkInit": (ctypes.c_int, [text, ctypes.c_void_p, text]),
        "AdbFreeResource": (None, [block]),
        "AdbGetDevicesEx": (ctypes.c_int, [block, length, flag]),
        "AdbScreencapToPC": (ctypes.c_int, [text, text, flag]),
    }
    for name, (result, parameters) in signatures.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = parameters
    return library


def check(code, what):
    if code != OK:
        raise RuntimeError(f"{what}: {REASONS.get(code, f'error {code}')}")


def start(library, resources):
    # Read when the library starts: phones of every generation, paths of every kind.
    os.environ.setdefault("DAROKLEIM_CHANNEL_ASSIST", "1")
    code = library.AdbSdkInit(os.fsencode(resources), LOG_CONTEXT, os.fsencode(tempfile.gettempdir()))
    check(code, resources)


def devices(library):
    """Pairs of serial and state."""
    block = ctypes.c_void_p()
    length = ctypes.c_int()
    check(library.AdbGetDevicesEx(ctypes.byref(block), ctypes.byref(length), None), "list the phones")
    try:
        entries = ctypes.string_at(block).decode("ascii") if block else ""
    finally:
        library.AdbFreeResource(ctypes.byref(block))
    return [tuple(entry.split("-", 1)) for entry in entries.split(";") if entry]


def take_screenshots(library, folder):
    """Returns the number of phones that gave no picture."""
    failures = 0
    for serial, state in devices(library):
        if state != "device":
            print(f"{serial}: {state}", file=sys.stderr)
            failures += 1
            continue
        picture = os.path.join(folder, f"{serial}.png")
        try:
            check(library.AdbScreencapToPC(serial.encode(), os.fsencode(picture), None), serial)
            print(picture)
        except RuntimeError as error:
            print(error, file=sys.stderr)
            failures += 1
    return failures


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("resources", metavar="RESOURCES")
    parser.add_argument("folder", metavar="FOLDER")
    parser.add_argument("--library", help="the file of the library; otherwise that of the system")
    arguments = parser.parse_args()

    name = arguments.library or ctypes.util.find_library("darokleim")
    if name is None:
        sys.exit("libdarokleim is not installed; name its file with --library")
    library = declare(ctypes.CDLL(name))
    os.makedirs(arguments.folder, exist_ok=True)
    try:
        start(library, arguments.resources)
        return 1 if take_screenshots(library, arguments.folder) else 0
    except RuntimeError as error:
        sys.exit(str(error))


if __name__ == "__main__":
    sys.exit(main())
