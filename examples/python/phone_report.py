#!/usr/bin/env python3
"""Says of every phone what is in a folder of it, and how large its screen is, from a screenshot that is never a file."""

import argparse
import struct
import sys

from darokleim_client import Client, Error


def screen_size(png):
    """Width and height in pixels, from the beginning of a PNG."""
    return struct.unpack(">II", png[16:24])


def report(phone, folder):
    width, height = screen_size(phone.screenshot(timeout=30))
    print(f"{phone.serial}: {width} x {height} pixels")
    for entry in sorted(phone.list(folder, timeout=30)):
        kind = "folder" if entry.is_folder else "unknown size" if entry.size is None else f"{entry.size} bytes"
        print(f"  {entry.name!r}  {kind}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", metavar="FOLDER", nargs="?", default="/sdcard", help="default: %(default)s")
    parser.add_argument("--library", help="the file of the library; otherwise that of the system")
    arguments = parser.parse_args()

    failures = 0
    try:
        client = Client(arguments.library)
        for device in client.devices(timeout=30):
            try:
                report(client.open(device.serial), arguments.folder)
            except Error as error:
                print(f"{device.serial}: {error}", file=sys.stderr)
                failures += 1
    except Error as error:
        sys.exit(str(error))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
