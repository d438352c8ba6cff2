"""Loading, saving, walking over what is there, and the exceptions on the way."""

import shutil

import pytest

import marlet


@pytest.mark.parametrize("name", ["orbit.xml", "titles.xml", "cut.xml"])
def test_a_project_is_saved_as_it_was_loaded(root, tmp_path, name):
    # In one folder, since the files that a project names are found from its own.
    for file in (name, "paper.png"):
        shutil.copy(root / "examples" / file, tmp_path)
    source = tmp_path / name
    project = marlet.load(source)
    project.save(source.with_name("saved.xml"))
    assert source.with_name("saved.xml").read_bytes() == source.read_bytes()
    assert marlet.loads(project.to_xml()).id == project.id


def test_lists_take_numbers_slices_names_and_ids(titles):
    layers = titles.compositions["Opening"].layers
    names = [layer.name for layer in layers]
    assert len(names) == len(layers) > 3
    title = layers["Title"]
    assert layers.index(title) == names.index("Title")
    assert layers[title.id] == title and hash(layers[title.id]) == hash(title)
    assert layers[-1].name == names[-1]
    assert [layer.name for layer in layers[1:3]] == names[1:3]
    assert title in layers and "Title" in layers and "Nobody" not in layers
    assert layers.get("Nobody") is None
    assert [layer.name for layer in reversed(layers)] == names[::-1]
    with pytest.raises(KeyError):
        layers["Nobody"]
    with pytest.raises(IndexError):
        layers[len(names)]
    with pytest.raises(TypeError):
        layers[1.5]


def test_layers_are_of_the_classes_that_they_have(titles):
    kinds = {type(layer).__name__: layer.type for layer in titles.compositions["Opening"].layers}
    assert kinds.items() >= {"TextLayer": "text", "Effect3DLayer": "effect3d", "PointLayer": "point"}.items()
    assert all(isinstance(layer, marlet.Layer) for layer in titles.compositions["Opening"].layers)


def test_properties_are_a_mapping(titles):
    properties = titles.compositions["Opening"].layers["Title"].properties
    assert list(properties) == list(properties.keys()) and len(properties) == len(list(properties))
    assert dict(properties.items())["opacity"].name == "opacity"
    assert "opacity" in properties and "nothing" not in properties and 3 not in properties
    assert properties.get("nothing") is None
    with pytest.raises(KeyError):
        properties["nothing"]


def test_what_a_host_does_not_have_is_kept_and_told(titles):
    assert {plugin.name for plugin in titles.report.unresolved_plugins}
    assert titles.report.count("error") == 0 and titles.report.dropped == 0
    assert all(entry.line > 0 for entry in titles.report if entry.severity == "loss")
    stand_ins = [effect for layer in titles.compositions["Opening"].layers for effect in layer.effects]
    assert stand_ins and all(effect.is_stand_in and effect.plugin_name for effect in stand_ins)
    name, parameter = next(iter(stand_ins[0].properties.items()))
    assert parameter.name == name


def test_failures_tell_where(root, tmp_path):
    text = (root / "examples" / "orbit.xml").read_text()
    damaged = tmp_path / "damaged.xml"
    damaged.write_text(text.replace("<ID>", "<IDD>", 1))
    with pytest.raises(marlet.LoadError) as told:
        marlet.load(damaged)
    assert (told.value.path, told.value.line) == (str(damaged), 2)
    assert str(told.value).startswith(f"{damaged}:2:")

    with pytest.raises(marlet.VersionError):
        marlet.loads(text.replace('<ProjectSettings Version="0">', '<ProjectSettings Version="99">'))
    with pytest.raises(marlet.PluginError):
        marlet.load(root / "examples" / "titles.xml", keep_unknown=False)
    with pytest.raises(marlet.FileError) as told:
        marlet.load(tmp_path / "nothing.xml")
    assert told.value.path == str(tmp_path / "nothing.xml") and isinstance(told.value, OSError)

    damaged.write_text(text[: len(text) // 2])
    recovered = marlet.recover(damaged)
    assert recovered.compositions and recovered.report.count("loss") > 0


def test_a_new_project_is_built_from_nothing(tmp_path):
    project = marlet.new("Film")
    composition = project.add_composition("Main", frames=50, width=640, height=360)
    settings = composition.settings
    assert (settings.width, settings.height, settings.frame_rate, settings.frame_count) == (640, 360, 25, 50)
    settings.frame_rate = 30
    title = composition.add_text("Title", "Grüße 🎬\nEnde", format=marlet.TextFormat("DejaVu Sans", size=40))
    title.set_format(marlet.TextFormat("DejaVu Serif", fill=(1, 0, 0, 1)), first=6, count=1)
    title.insert(7, "!")
    assert title.text == "Grüße 🎬!\nEnde"
    assert [(first, count, look.family) for first, count, look in title.formats] == [
        (0, 6, "DejaVu Sans"), (6, 2, "DejaVu Serif"), (9, 4, "DejaVu Sans")]
    composition.add_camera("Camera")
    folder = project.folder.add_folder("Sounds")
    composition.move_to(folder)
    assert composition.folder == folder and list(folder.assets) == [composition]
    project.save(tmp_path / "film.xml")
    again = marlet.load(tmp_path / "film.xml")
    assert again.compositions["Main"].is_3d and again.compositions["Main"].settings.frame_rate == 30
    assert again.compositions["Main"].layers["Title"].text == title.text
    assert not [finding for finding in again.validate() if finding.severity == "error"]
