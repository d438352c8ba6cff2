"""Plug-ins that are written in Python."""


class Plugin:
    """A plug-in: an effect of layers and objects, or a transition of the sequence.

    A class derives from it, says what it is by the attributes below, and overrides what it needs. An object of the class is
    registered with a PluginManager, which is handed to marlet.load or marlet.new.

        class Glow(marlet.Plugin):
            id = "6a0d51c2-93b8-4e27-b15c-208fd47e3961"
            name = "Glow"
            parameters = {"radius": 10.0, "clipped": False}

            def margins(self, instance, width, height, scale, time):
                radius = 0 if instance.value("clipped") else round(instance.value("radius", time) * scale)
                return radius, radius, radius, radius

    Methods are handed an Instance, which is lent for the length of the call. What they raise comes out of what was called:
    a load, a save, an edit.
    """

    #: The text of the ID, which stands in files and never changes.
    id = ""
    #: For the user.
    name = ""
    #: Up to four numbers. A project that a newer version saved is not loaded with an older one.
    version = (1, 0, 0, 0)
    #: 'effect' or 'transition'.
    kind = "effect"
    #: The parameters by their names, with the values that they begin with: an int, a float, a bool, two or three numbers
    #: of a point, four of a colour, or None for a layer. Those but bools and layers can be animated.
    parameters = {}

    def created(self, instance):
        """Called for each new instance, before anything of a file arrives."""

    def destroyed(self, instance):
        """Called before an instance goes."""

    def property_changed(self, instance, name):
        """Called when a parameter was changed."""

    def save(self, instance):
        """The private bytes of an instance, or None. By default the state, where that is bytes."""
        return instance.state if isinstance(instance.state, bytes) else None

    def restore(self, instance, data):
        """Takes private bytes back: those of a file, of the source of a copy, or of an undo. Empty for none."""
        instance.state = data or None

    def margins(self, instance, width, height, scale, time):
        """By how many pixels the effect enlarges a frame of that size: left, right, top, bottom."""
        return 0, 0, 0, 0
