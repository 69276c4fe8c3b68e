"""A keyboard for a virtual display: presses keys without starting a program for each."""
import ctypes
import time


class Keyboard:
    """Key presses through the X server's test extension."""

    def __init__(self, display):
        self.x, self.test = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.x.XStringToKeysym.restype = ctypes.c_ulong
        self.x.XKeysymToKeycode.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
        for function in (self.x.XFlush, self.x.XCloseDisplay):
            function.argtypes = [ctypes.c_void_p]
        self.test.XTestFakeKeyEvent.argtypes = [ctypes.c_void_p, ctypes.c_uint, ctypes.c_int,
                                                ctypes.c_ulong]
        self.display = self.x.XOpenDisplay(display.encode())
        if not self.display:
            raise OSError(f"no display {display}")

    def close(self):
        self.x.XCloseDisplay(self.display)

    def _send(self, name, down):
        code = self.x.XKeysymToKeycode(self.display, self.x.XStringToKeysym(name.encode()))
        self.test.XTestFakeKeyEvent(self.display, code, down, 0)

    def hold(self, name):
        self._send(name, True)
        self.x.XFlush(self.display)

    def release(self, name):
        """Gives the time, in milliseconds since 1970."""
        self._send(name, False)
        self.x.XFlush(self.display)
        return time.time() * 1000

    def press(self, keys):
        """Presses and releases "Alt_L+Shift_L+a". Gives the time at which the last one went down,
        in milliseconds since 1970."""
        *held, last = keys.split("+")
        for name in held:
            self._send(name, True)
        self.x.XFlush(self.display)
        moment = time.time() * 1000
        self._send(last, True)
        self.x.XFlush(self.display)
        for name in (last, *reversed(held)):
            self._send(name, False)
        self.x.XFlush(self.display)
        return moment
