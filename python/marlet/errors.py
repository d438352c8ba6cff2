"""The exceptions of marlet. All of them derive from `Error`.

What has to do with Python's own protocols is one of Python's own: KeyError and IndexError for what is not in a
mapping or a sequence, TypeError and ValueError for values that do not fit.
"""


class Error(Exception):
    """Something that the library refuses or cannot do. The message is for the user to read."""


class LoadError(Error):
    """A text that is no project, or not whole, or needs what is not there.

    Attributes:
        path: the file as a string, or None for a text
        line: of the text, from 1 on, or None if it is not known
        column: in characters, from 1 on, or None
        place: the element and those around it, such as 'Project/AssetList/Assets'; may be empty
    """

    def __init__(self, message, path=None, line=None, column=None, place=""):
        super().__init__(message)
        self.path = path
        self.line = line
        self.column = column
        self.place = place

    def __str__(self):
        where = ":".join(str(part) for part in (self.path, self.line, self.column) if part is not None)
        message = super().__str__()
        return f"{where}: {message}" if where else message


class VersionError(LoadError):
    """An element of a newer version than the library reads."""


class PluginError(LoadError):
    """A plug-in that is missing, or older than the one that saved the project."""


class FileError(Error, OSError):
    """A file that cannot be read or written, or is no text.

    Attributes:
        path: the file
        reason: why, without the path
    """

    def __init__(self, message, path="", reason=""):
        super().__init__(message)
        self.path = path
        self.reason = reason


class OperationError(Error):
    """An operation that cannot be done as asked. Nothing was changed."""


class ClosedError(Error):
    """The project was closed: what belonged to it can be used no more."""


class GoneError(Error):
    """The object is not in its project any more. After an undo that brings it back it can be used again."""


class BusyError(Error):
    """Another thread is editing the project, or reads it as a whole, so that it cannot be changed now."""


class MediaError(Error):
    """A frame or samples that cannot be had: the file is offline or damaged, or has no such frame."""
