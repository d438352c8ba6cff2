"""Objects that outlive what they belong to, and threads that meet: errors, never crashes."""

import gc
import random
import threading

import pytest

import marlet

WAYS = [
    lambda project: project,
    lambda project: project.folder,
    lambda project: project.history,
    lambda project: project.compositions,
    lambda project: project.assets["Card"],
    lambda project: project.compositions["Main"].settings,
    lambda project: project.compositions["Main"].layers["Card"],
    lambda project: project.compositions["Main"].layers["Card"].properties,
    lambda project: project.compositions["Main"].layers["Card"].properties["opacity"],
    lambda project: project.compositions["Main"].layers["Card"].properties["opacity"].key_frames,
    lambda project: project.compositions["Main"].layers["Card"].properties["opacity"].key_frames.set(0, 1),
    lambda project: project.compositions["Main"].layers["Card"].effects,
]


def use(thing):
    """Asks everything that can be asked without an argument."""
    for name in dir(type(thing)):
        if not name.startswith("_") and not callable(getattr(type(thing), name)) and name not in ("exists", "closed"):
            getattr(thing, name)
    for special in ("__len__", "__iter__"):
        if hasattr(thing, special):
            getattr(thing, special)()


# What can be told without the project.
KNOWN = {"exists", "closed", "report"}
KNOWN_OF = {marlet.Property: {"name"}, marlet.KeyFrame: {"id"}}


@pytest.mark.parametrize("way", range(len(WAYS)))
def test_what_is_kept_beyond_a_closed_project_is_an_error(scene, way):
    thing = WAYS[way](scene)
    use(thing)
    scene.close()
    gc.collect()
    for name in dir(type(thing)):
        if name.startswith("_") or callable(getattr(type(thing), name)):
            continue
        if name in KNOWN or name in KNOWN_OF.get(type(thing), ()):
            getattr(thing, name)
            continue
        with pytest.raises(marlet.ClosedError):
            getattr(thing, name)
    if hasattr(thing, "__len__"):
        with pytest.raises(marlet.ClosedError):
            len(thing)
    assert not getattr(thing, "exists", False)


def test_a_handle_keeps_its_project_until_it_is_closed(root):
    layer = marlet.load(root / "examples" / "orbit.xml").compositions[0].layers[0]
    gc.collect()
    assert layer.exists and layer.composition.layers[0] == layer
    with marlet.load(root / "examples" / "orbit.xml") as project:
        moon = project.compositions[0].layers["Moon"]
        edit = project.edit("Open")
        edit.__enter__()
        moon.name = "Never"
    assert project.closed and not moon.exists and not edit.is_open
    with pytest.raises(marlet.ClosedError):
        moon.name
    with pytest.raises(marlet.ClosedError):
        project.to_xml()


def test_what_is_removed_is_an_error_until_undo_brings_it_back(titles):
    title = next(layer for layer in titles.compositions["Opening"].layers if len(layer.effects) and len(layer.masks))
    parts = [title, title.effects[0], title.masks[0], title.masks[0].points[0]]
    opacity = title.properties["opacity"]
    title.remove()
    assert not any(part.exists for part in parts) and "gone" in repr(title)
    for ask in (lambda: title.name, lambda: title.split(3), lambda: parts[1].enabled, lambda: parts[3].properties["position"],
                lambda: opacity.value, lambda: opacity.sample([0]), lambda: setattr(opacity, "value", 3)):
        with pytest.raises(marlet.GoneError):
            ask()
    titles.history.undo()
    assert all(part.exists for part in parts) and opacity.sample([0]).shape == (1,)


def test_handles_survive_whatever_happens_to_their_objects(root):
    """Random edits, undo and closing, with all handles asked after each: what is not there raises, nothing else."""
    chance = random.Random(7)
    for _ in range(4):
        project = marlet.load(root / "examples" / "titles.xml")
        handles = []
        for step in range(40):
            composition = chance.choice(list(project.compositions))
            layers = list(composition.layers)
            try:
                chance.choice([
                    lambda: handles.append(composition.add_point(f"Point {step}")),
                    lambda: handles.append(chance.choice(layers).split(chance.randrange(250))),
                    lambda: handles.extend([layer.properties["position"] for layer in layers]),
                    lambda: handles.extend(chance.choice(layers).effects),
                    lambda: chance.choice(layers).remove(),
                    lambda: handles.append(composition.duplicate("Twin")),
                    project.history.undo, project.history.undo, project.history.redo,
                    lambda: handles.append(chance.choice(layers).properties["opacity"].key_frames.set(step, step)),
                    lambda: project.history.set_limits(steps=2),
                ])()
            except (marlet.Error, IndexError, KeyError):
                pass
            for handle in chance.sample(handles, min(10, len(handles))):
                try:
                    use(handle)
                except marlet.GoneError:
                    pass
        project.close()
        for handle in handles:
            with pytest.raises(marlet.ClosedError):
                use(handle)


def test_threads_read_and_save_while_one_edits(root, tmp_path):
    """Saving lets other threads run; what they change meanwhile is refused, what they read is right."""
    project = marlet.load(root / "examples" / "titles.xml")
    title = project.compositions["Opening"].layers["Title"]
    saved = project.to_xml()
    failures, refused, done = [], [], threading.Event()

    def save():
        while not done.is_set():
            try:
                text = project.to_xml()
                project.validate()
                if marlet.loads(text).compositions["Opening"].layers.get("Title") is None:
                    failures.append(text)
            except marlet.BusyError:
                refused.append("save")

    def read():
        while not done.is_set():
            if len(title.properties["opacity"].sample(range(100))) != 100:
                failures.append("sample")

    threads = [threading.Thread(target=target) for target in (save, read, read)]
    for thread in threads:
        thread.start()
    for step in range(200):
        try:
            title.properties["opacity"] = step % 100
        except marlet.BusyError:
            refused.append("edit")
    done.set()
    for thread in threads:
        thread.join()
    assert not failures
    while project.history.undo():
        pass
    assert project.to_xml() == saved


def test_one_thread_edits_at_a_time(scene):
    card = scene.compositions["Main"].layers["Card"]
    told = []

    def edit():
        try:
            card.name = "Other"
        except marlet.BusyError as error:
            told.append(str(error))

    with scene.edit("Long"):
        other = threading.Thread(target=edit)
        other.start()
        other.join()
        assert card.name == "Card"
    assert told == ["Another thread is editing the project"]
    edit()
    assert card.name == "Other"
