"""Projects of video compositing and editing applications: read, asked, edited and written.

    import marlet

    project = marlet.load("film.xml")
    for layer in project.compositions["Opening"].layers:
        print(layer.name, layer.properties["opacity"].value_at(0))

`load`, `loads`, `new` and `recover` give a Project, and everything else is reached from there. Lists take numbers,
slices and names; `properties` are mappings; values of several components, matrices, frames and sound are numpy arrays.
What is assigned is an edit of its own that can be undone, or a part of the edit of the with statement around it:

    with project.edit("Move title"):
        title.properties["position"] = (0, 120, 0)
    project.history.undo()

An object that left its project, or whose project was closed, raises GoneError or ClosedError when it is used. Times of
properties are whole milliseconds from the start of their owner, frames count from 0, an end frame is the first that is
out, positions are in pixels, angles in degrees, opacities in percent.
"""

from collections.abc import Mapping as _Mapping, Sequence as _Sequence

from ._marlet import *  # noqa: F401,F403
from ._marlet import KeyFrames as _KeyFrames, Listing as _Listing, Properties as _Properties, Report as _Report
from .errors import *  # noqa: F401,F403
from .plugins import Plugin

for _kind in (_Listing, _KeyFrames, _Report):
    _Sequence.register(_kind)
for _name in ("keys", "values", "items", "get"):
    setattr(_Properties, _name, getattr(_Mapping, _name))
_Mapping.register(_Properties)

del _kind, _name
