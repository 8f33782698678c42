"""A small wrapper of libdarokleim_client for Python: devices, folders, screenshots.

    client = Client()
    for device in client.devices():
        print(device.serial, device.state)
    phone = client.open()
    for entry in phone.list("/sdcard/DCIM"):
        print(entry.name, entry.size)
    png = phone.screenshot()

Names on a phone are bytes; they become text as those of this computer do (os.fsdecode). More functions are added in the
same way: copy their declaration from darokleim/client.h into _FUNCTIONS.
"""

import ctypes
import ctypes.util
import os
from ctypes import POINTER, byref, c_bool, c_char_p, c_int, c_int64, c_size_t, c_uint32, c_uint64, c_void_p
from typing import NamedTuple, Optional

DIRECTORY, LINK = 2, 3


class _Call(ctypes.Structure):
    _fields_ = [("size", c_size_t), ("cancel", c_void_p), ("timeout_ms", c_int64), ("error", POINTER(c_void_p))]


class _Bytes(ctypes.Structure):
    _fields_ = [("data", c_void_p), ("size", c_size_t)]


class _DeviceInfo(ctypes.Structure):
    _fields_ = [("serial", c_char_p), ("state", c_int), ("state_text", c_char_p), ("link", c_int),
                ("product", c_char_p), ("model", c_char_p)]


class _Entry(ctypes.Structure):
    _fields_ = [("path", c_char_p), ("name", c_char_p), ("type", c_int), ("mode", c_uint32), ("bytes", c_uint64),
                ("bytes_known", c_bool), ("mtime", c_int64)]


_OnDevice = ctypes.CFUNCTYPE(c_bool, c_void_p, POINTER(_DeviceInfo))
_OnEntry = ctypes.CFUNCTYPE(c_bool, c_void_p, POINTER(_Entry))

_FUNCTIONS = {
    "dk_context_new": (c_int, [c_void_p, POINTER(c_void_p), POINTER(_Call)]),
    "dk_context_free": (None, [c_void_p]),
    "dk_devices": (c_int, [c_void_p, _OnDevice, c_void_p, POINTER(_Call)]),
    "dk_device_open": (c_int, [c_void_p, c_char_p, POINTER(c_void_p), POINTER(_Call)]),
    "dk_device_free": (None, [c_void_p]),
    "dk_device_serial": (c_char_p, [c_void_p]),
    "dk_list": (c_int, [c_void_p, c_char_p, _OnEntry, c_void_p, POINTER(_Call)]),
    "dk_screenshot": (c_int, [c_void_p, POINTER(_Bytes), POINTER(_Call)]),
    "dk_bytes_free": (None, [POINTER(_Bytes)]),
    "dk_code_name": (c_char_p, [c_int]),
    "dk_error_message": (c_char_p, [c_void_p]),
    "dk_error_path": (c_char_p, [c_void_p]),
    "dk_error_free": (None, [c_void_p]),
}


class Error(Exception):
    """A call that failed: its code, as "DK_NO_DEVICE", a sentence to show, and the path that it is about."""

    def __init__(self, code: str, message: str, path: Optional[str]):
        super().__init__(message)
        self.code, self.path = code, path


class Device(NamedTuple):
    serial: str
    state: str  # "device" when it is ready
    model: str


class Entry(NamedTuple):
    name: str
    is_folder: bool
    size: Optional[int]  # bytes; None where the phone cannot say it
    mtime: int  # seconds since 1970, UTC


class Client:
    """Where the adb server is. `file` is that of the library; without it the system's is loaded."""

    def __init__(self, file: Optional[str] = None):
        self._library = ctypes.CDLL(file or ctypes.util.find_library("darokleim_client") or "libdarokleim_client.so.2")
        for name, (result, parameters) in _FUNCTIONS.items():
            function = getattr(self._library, name)
            function.restype, function.argtypes = result, parameters
        self._context = c_void_p()
        self._call("dk_context_new", None, byref(self._context))

    def __del__(self):
        if getattr(self, "_context", None):
            self._library.dk_context_free(self._context)

    def devices(self, timeout: float = 0) -> list:
        """All devices that the server knows, in every state."""
        found = []
        self._each("dk_devices", self._context, callback=_OnDevice, timeout=timeout, use=lambda info: found.append(
            Device(info.serial.decode(), info.state_text.decode(), info.model.decode())))
        return found

    def open(self, serial: Optional[str] = None) -> "Phone":
        """One phone by its serial, or the only one that is ready."""
        device = c_void_p()
        self._call("dk_device_open", self._context, serial.encode() if serial else None, byref(device))
        return Phone(self, device)

    def _call(self, name, *arguments, timeout: float = 0):
        """Calls a function whose last parameter is a dk_call; raises what went wrong. timeout in seconds, 0: none."""
        error = c_void_p()
        call = _Call(ctypes.sizeof(_Call), None, int(timeout * 1000), ctypes.pointer(error))
        code = getattr(self._library, name)(*arguments, byref(call))
        if code == 0:
            return
        try:
            path = self._library.dk_error_path(error)
            raise Error(self._library.dk_code_name(code).decode(), self._library.dk_error_message(error).decode(),
                        os.fsdecode(path) if path else None)
        finally:
            self._library.dk_error_free(error)

    def _each(self, name, *arguments, callback, use, timeout: float = 0):
        """Calls a function that hands structures to a callback. An exception of `use` ends the call and is raised."""
        raised = []

        def guarded(_user, item):
            try:
                use(item.contents)
                return True
            except BaseException as exception:  # none may pass through the library
                raised.append(exception)
                return False

        try:
            self._call(name, *arguments, callback(guarded), None, timeout=timeout)
        except Error:
            if not raised:
                raise
        if raised:
            raise raised[0]


class Phone:
    """One phone. It keeps its client alive, which the library asks for."""

    def __init__(self, client: Client, device: c_void_p):
        self._client, self._device = client, device

    def __del__(self):
        self._client._library.dk_device_free(self._device)

    @property
    def serial(self) -> str:
        return self._client._library.dk_device_serial(self._device).decode()

    def list(self, folder: str, timeout: float = 0) -> list:
        """The files and folders in one folder of the phone."""
        found = []
        self._client._each("dk_list", self._device, os.fsencode(folder), callback=_OnEntry, timeout=timeout,
                           use=lambda entry: found.append(Entry(
                               os.fsdecode(entry.name), entry.type == DIRECTORY,
                               entry.bytes if entry.bytes_known else None, entry.mtime)))
        return found

    def screenshot(self, timeout: float = 0) -> bytes:
        """The bytes of a PNG."""
        png = _Bytes()
        self._client._call("dk_screenshot", self._device, byref(png), timeout=timeout)
        try:
            return ctypes.string_at(png.data, png.size)
        finally:
            self._client._library.dk_bytes_free(byref(png))
