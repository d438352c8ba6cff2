"""Plug-ins that are written in Python."""

import pytest

import marlet


class Glow(marlet.Plugin):
    id = "6a0d51c2-93b8-4e27-b15c-208fd47e3961"
    name = "Glow"
    version = (1, 2)
    parameters = {"radius": 10.0, "count": 3, "clipped": False, "at": (0.0, 0.0), "tint": (1.0, 1.0, 1.0, 1.0), "mask": None}

    def __init__(self):
        self.heard = []

    def created(self, instance):
        self.heard.append("created")

    def destroyed(self, instance):
        self.heard.append("destroyed")
        self.last = instance

    def property_changed(self, instance, name):
        self.heard.append(name)
        if name == "clipped":
            instance.set_visible("radius", not instance.value("clipped"))

    def margins(self, instance, width, height, scale, time):
        return (round(instance.value("radius", time) * scale),) * 4


class Fade(marlet.Plugin):
    id = "0b7e94d3-5a16-4c80-9d27-e3416bf8520c"
    name = "Fade"
    kind = "transition"

    def save(self, instance):
        return instance.state and instance.state.encode()

    def restore(self, instance, data):
        instance.state = data.decode() or None


@pytest.fixture
def glow():
    return Glow()


@pytest.fixture
def film(glow):
    project = marlet.new("Film", plugins=marlet.PluginManager([glow, Fade()]))
    composition = project.add_composition("Main", frames=50)
    composition.add(project.add_solid("Card", (1, 0, 0, 1), 200, 100))
    return project


def test_an_effect_has_parameters_margins_and_a_panel(film, glow):
    layer = film.compositions["Main"].layers["Card"]
    effect = layer.add_effect(glow, name="Halo")
    assert (effect.name, effect.plugin_name, effect.plugin_version) == ("Halo", "Glow", (1, 2, 0, 0))
    assert [(p.name, p.type, p.can_animate) for p in effect.properties.values()] == [
        ("radius", "float", True), ("count", "int", True), ("clipped", "bool", False), ("at", "point2", True),
        ("tint", "color", True), ("mask", "id", False)]
    effect.properties["radius"].key_frames.assign([0, 1000], [0, 20])
    assert layer.size_after_effects(500)[:2] == (220, 120)
    effect.properties["clipped"] = True
    effect.properties["mask"] = layer
    assert effect.properties["mask"].value == layer.id
    assert glow.heard == ["created", "radius", "clipped", "mask"]
    film.history.undo()
    assert effect.properties["mask"].value is None
    layer.remove_effect(effect)
    assert not effect.exists and len(layer.effects) == 0


def test_private_bytes_are_saved_copied_and_undone(film, glow):
    layer = film.compositions["Main"].layers["Card"]
    effect = layer.add_effect(Glow.id)
    assert effect.private_bytes is None
    effect.private_bytes = b"\x00one"
    effect.private_bytes = b"two"
    film.history.undo()
    assert effect.private_bytes == b"\x00one"
    twin = layer.split(10).effects[0]
    assert twin.private_bytes == b"\x00one"
    twin.private_bytes = None
    assert effect.private_bytes == b"\x00one"

    again = marlet.loads(film.to_xml(), plugins=marlet.PluginManager([Glow(), Fade()]))
    kept = [one.effects[0].private_bytes for one in again.compositions["Main"].layers]
    assert sorted(kept, key=str) == sorted([b"\x00one", None], key=str)
    # Without the plug-in a stand-in keeps all of it.
    without = marlet.loads(film.to_xml())
    stand_in = without.compositions["Main"].layers[-1].effects[0]
    assert stand_in.is_stand_in and stand_in.plugin_name == "Glow" and "radius" in stand_in.properties
    assert without.to_xml() == again.to_xml()


def test_transitions_are_plugins_too(film):
    sequence = film.add_sequence(frames=200)
    track = sequence.video_tracks[0]
    card = film.assets["Card"]
    (first,) = sequence.insert(card, track, 0, length=50)
    (second,) = sequence.insert(card, track, 50, length=50)
    fade = first.set_transition("tail", Fade, 10)
    assert fade == second.incoming and (fade.length, fade.plugin_name) == (10, "Fade")
    fade.private_bytes = "ä".encode()
    assert marlet.loads(film.to_xml(), plugins=marlet.PluginManager([Glow(), Fade()])).sequence.objects[
        0].outgoing.private_bytes == "ä".encode()
    first.remove_transition("tail")
    assert second.incoming is None and not fade.exists


def test_what_a_plugin_raises_comes_out_and_leaves_all_as_it_was(film, glow):
    layer = film.compositions["Main"].layers["Card"]
    effect = layer.add_effect(glow)
    before = film.to_xml()
    glow.property_changed = lambda instance, name: 1 / 0
    with pytest.raises(ZeroDivisionError):
        effect.properties["radius"] = 99
    assert film.to_xml() == before
    glow.save = lambda instance: "no bytes"
    with pytest.raises(Exception):
        film.to_xml()
    del glow.save
    assert film.to_xml() == before

    class Broken(Glow):
        def created(self, instance):
            raise KeyError("created")

    with pytest.raises(KeyError):
        marlet.loads(before, plugins=marlet.PluginManager([Broken()]))


def test_instances_are_told_of_their_end_and_lent_for_a_call(film, glow):
    film.compositions["Main"].layers["Card"].add_effect(glow)
    film.close()
    assert glow.heard == ["created", "destroyed"]
    with pytest.raises(marlet.GoneError):
        glow.last.id


@pytest.mark.parametrize("change", [{"id": "x"}, {"kind": "other"}, {"version": (1, 2, 3, 4, 5)}, {"parameters": {"a b": 1}},
                                    {"parameters": {"a": "text"}}, {"parameters": {"a": (1, 2, 3, 4, 5)}}])
def test_plugins_that_do_not_make_sense_are_refused(change):
    with pytest.raises((ValueError, TypeError)):
        marlet.PluginManager([type("Wrong", (Glow,), change)()])
    plugins = marlet.PluginManager([Glow()])
    with pytest.raises(ValueError):
        plugins.register(Glow())
    assert len(plugins) == 1 and plugins.find(Glow.id).name == "Glow"
