"""Frames, sound, images and tracking as arrays."""

import json
import threading

import numpy
import pytest

import marlet


@pytest.fixture
def film(clip):
    project = marlet.new("Film")
    (asset,) = project.import_files([clip[0]])
    return project, asset


def test_frames_are_arrays_of_their_own(film):
    project, asset = film
    assert (asset.type, asset.status, asset.frame_count) == ("media", "usable", 10)
    frame = asset.frame(3)
    assert frame.shape == (asset.height, asset.width, 4) and frame.dtype == numpy.uint8
    assert not frame.flags.owndata and frame.flags.c_contiguous and frame.flags.writeable
    # The two are converted from the file's own colours each by itself.
    numpy.testing.assert_allclose(asset.frame(3, order="rgb").astype(int), frame[..., 2::-1].astype(int), atol=4)
    assert (frame[..., 3] == 255).all() and frame[..., :3].std() > 1
    kept = frame.copy()
    others = [asset.frame(number) for number in range(10)]
    assert any((other != kept).any() for other in others)
    frame[:] = 0
    numpy.testing.assert_array_equal(asset.frame(3), kept)
    numpy.testing.assert_array_equal(asset.frame(6, rate=asset.frame_rate * 2), kept)
    with pytest.raises(marlet.MediaError):
        asset.frame(10)
    project.close()
    numpy.testing.assert_array_equal(others[3], kept)


def test_sound_is_an_array_of_samples_and_channels(film):
    _, asset = film
    whole = asset.samples(0, asset.sample_count)
    assert whole.shape == (asset.sample_count, asset.channel_count) and numpy.abs(whole.astype(float)).max() > 0
    numpy.testing.assert_array_equal(asset.samples(100, 50), whole[100:150])
    assert not asset.samples(-10, 10).any()


def test_images_are_shown_without_a_copy(root):
    project = marlet.new()
    (paper,) = project.import_files([root / "examples" / "paper.png"])
    picture = paper.picture()
    assert (paper.type, picture.shape[:2]) == ("image", (paper.height, paper.width))
    assert not picture.flags.owndata
    assert paper.picture(max_width=10).shape[1] == 10


def test_threads_decode_while_others_run(film):
    """Decoding lets other threads of Python run, also one that closes the project."""
    project, asset = film
    expected = [asset.frame(number) for number in range(10)]
    wrong = []

    def decode():
        for _ in range(20):
            for number in (9, 0, 5, 3):
                try:
                    if (asset.frame(number) != expected[number]).any():
                        wrong.append(number)
                except marlet.ClosedError:
                    return

    threads = [threading.Thread(target=decode) for _ in range(3)]
    for thread in threads:
        thread.start()
    threads[0].join(timeout=0.05)
    project.close()
    for thread in threads:
        thread.join()
    assert not wrong


def test_an_offline_file_raises(film, tmp_path):
    project, asset = film
    asset.relink(str(tmp_path / "gone.mov"))
    assert asset.is_offline and asset.frame_count is None
    with pytest.raises(marlet.MediaError, match="offline"):
        asset.frame(0)
    project.history.undo()
    assert asset.frame(0).any()


def test_progress_hears_of_files_and_ends_the_opening(film, tmp_path):
    project, asset = film
    composition = project.add_composition_of(asset)
    assert [layer.asset for layer in composition.layers] == [asset]
    assert (composition.settings.frame_count, composition.settings.width) == (asset.frame_count, asset.width)
    project.save(tmp_path / "film.xml")
    heard = []
    marlet.load(tmp_path / "film.xml", progress=lambda path, number, count: heard.append((path, number, count)))
    assert heard == [(asset.path, 1, 1)]
    with pytest.raises(ZeroDivisionError):
        marlet.load(tmp_path / "film.xml", progress=lambda *file: 1 / 0)
    shared = marlet.load(tmp_path / "film.xml", share_media_with=project,
                         progress=lambda path, number, count: heard.append(path))
    assert len(heard) == 1 and (shared.assets[0].frame(0) == asset.frame(0)).all()


@pytest.mark.parametrize("method", ["flow", "template"])
def test_a_tracker_follows_the_feature(film, clip, method):
    project, asset = film
    path = [json.loads(line) for line in clip[1].splitlines()]
    truth = {entry["frame"]: (entry["x"], entry["y"]) for entry in path if "x" in entry}
    composition = project.add_composition("Main", frames=10, width=asset.width, height=asset.height, rate=asset.frame_rate)
    layer = composition.add(asset)
    tracker = layer.add_tracker("Mark", truth[0], feature=32, search=64)
    tracker.method = method
    found = tracker.run()
    assert found.reason == "end of layer" and found.frames.tolist() == list(range(len(truth)))
    numpy.testing.assert_allclose(found.positions, [truth[frame] for frame in found.frames], atol=0.5)
    keys = tracker.primary_point.properties["featurePosition"].key_frames
    numpy.testing.assert_array_equal(keys.values, found.positions)
    follower = composition.add_point("Follower")
    tracker.apply_to(follower)
    numpy.testing.assert_allclose(follower.properties["position"].sample(keys.times)[:, :2], found.positions, atol=0.01)
