"""Values, key frames, samples and matrices."""

import numpy
import pytest

import marlet


@pytest.fixture
def layer(scene):
    return scene.compositions["Main"].layers["Card"]


def test_values_keep_the_type_of_their_property(layer):
    properties = layer.properties
    properties["opacity"] = 50
    assert properties["opacity"].value == 50.0 and isinstance(properties["opacity"].value, float)
    properties["position"].value = [1, 2, 3]
    position = properties["position"].value
    assert position.dtype == numpy.float32 and position.tolist() == [1, 2, 3]
    with pytest.raises(ValueError):
        position[0] = 5
    assert properties["scale"].value.dtype == numpy.float64
    for name, wrong in [("opacity", "half"), ("position", (1, 2)), ("position", "here"), ("opacity", None)]:
        with pytest.raises((TypeError, ValueError)):
            properties[name] = wrong
    assert properties["opacity"].value == 50.0


def test_key_frames_are_a_sequence_that_can_be_edited(layer):
    keys = layer.properties["opacity"].key_frames
    assert len(keys) == 0 and keys.values.dtype == numpy.float32
    first = keys.set(0, 0)
    last = keys.set(1000, 100)
    middle = keys.insert(500)
    assert [key.time for key in keys] == [0, 500, 1000] and middle.value == 50
    assert keys[-1] == last and keys[0:2] == [first, middle] and middle in keys
    middle.time = 250
    middle.value = 80
    middle.type = "hold"
    assert keys.at(250) == middle and (middle.value, middle.type) == (80, "hold")
    assert layer.properties["opacity"].sample([250, 900, 1000]).tolist() == [80, 80, 100]
    with pytest.raises(marlet.OperationError):
        middle.time = 1000
    del keys[1]
    with pytest.raises(marlet.GoneError):
        middle.value
    keys.assign(numpy.arange(0, 5000, 10), numpy.linspace(0, 50, 500))
    assert len(keys) == 500 and keys.times[-1] == 4990
    assert keys.simplify(0.01) == 498
    numpy.testing.assert_allclose(keys.values, [0, 50])
    keys.ease("ease-in-out")
    keys.reverse()
    assert layer.properties["opacity"].value_at(0) == 50
    copied = keys.copy()
    pasted = layer.properties["rotationZ"].key_frames.paste(copied, 100)
    assert len(copied) == 2 and [key.time for key in pasted] == [100, 5090]
    with pytest.raises(LookupError):
        keys.at(77)


def test_samples_are_the_values_one_by_one(titles):
    for layer in titles.compositions["Opening"].layers:
        for prop in layer.properties.values():
            if prop.type == "id":
                continue
            times = numpy.arange(-100, 3000, 170)
            together = prop.sample(times)
            one_by_one = [prop.value_at(int(time)) for time in times]
            numpy.testing.assert_array_equal(together, numpy.array(one_by_one, dtype=together.dtype))
            assert prop.sample(times.reshape(1, -1)).shape[:2] == (1, len(times))
    prop = titles.compositions["Opening"].layers["Title"].properties["position"]
    assert prop.sample([]).shape == (0, 3)
    with pytest.raises(TypeError):
        prop.sample([0.5])
    with pytest.raises(ValueError):
        prop.sample([2**40])


def test_a_world_matrix_is_the_product_of_its_parts(scene):
    layers = scene.compositions["Main"].layers
    card, anchor = layers["Card"], layers["Anchor"]
    anchor.properties["position"] = (10, 20, 0)
    card.properties["position"].key_frames.assign([0, 1000], [(0, 0, 0), (100, 50, 0)])
    card.set_parent(anchor, frame=0)
    assert card.parent == anchor
    times = card.time_at(numpy.arange(0, 26))
    world = card.world_matrix(times)
    assert world.shape == (26, 4, 4) and world.dtype == numpy.float32
    parts = [card.parent_matrix(int(t)) @ card.local_matrix(int(t)) @ card.origin_matrix(int(t)) for t in times]
    numpy.testing.assert_allclose(world, parts, atol=1e-4)
    # A solid stands in the middle of the composition, by its own middle, plus what was set.
    middle = world[25] @ numpy.array([100, 50, 0, 1], dtype=numpy.float32)
    numpy.testing.assert_allclose(middle[:2], [100, 50], atol=1e-3)
    card.set_parent(None)
    assert card.parent is None
