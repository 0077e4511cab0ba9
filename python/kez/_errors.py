"""The exceptions of the kez package."""

import errno
import os
import re

from . import _native


class LogError(ValueError):
    """A battery log that cannot be read, with the reader's own message
    ("SOURCE:LINE: reason"); `source` and `line` (None when the problem is
    not on one line) say where."""

    def __init__(self, message):
        super().__init__(message)
        match = re.match(r"^(.*?):(\d+): ", message)
        self.source = match.group(1) if match else message.split(":", 1)[0]
        self.line = int(match.group(2)) if match else None


def read_native_log(path, status_lines=False):
    """The native log of `path`; FileNotFoundError when it does not exist,
    LogError when it cannot be read as a log."""
    path = os.fspath(path)
    try:
        return _native.read_log(path, status_lines)
    except _native.LogError as e:
        if not os.path.exists(path):
            raise FileNotFoundError(errno.ENOENT, str(e), path) from None
        raise LogError(str(e)) from None
