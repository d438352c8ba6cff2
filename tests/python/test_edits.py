"""Edits, undo, observers, and what a script does to layers and to the sequence."""

import gc
import sys

import pytest

import marlet


def test_what_is_assigned_is_a_step_of_its_own(scene):
    card = scene.compositions["Main"].layers["Card"]
    before = scene.to_xml()
    card.name = "Paper"
    card.visible = False
    card.properties["opacity"] = 10
    assert scene.history.undo_label == "Set opacity"
    for _ in range(3):
        assert scene.history.undo()
    assert scene.to_xml() == before
    while scene.history.redo():
        pass
    assert (card.name, card.visible, card.properties["opacity"].value) == ("Paper", False, 10)


def test_an_edit_is_all_or_nothing(scene):
    card = scene.compositions["Main"].layers["Card"]
    steps = scene.history.undo_count
    with scene.edit("Both") as edit:
        card.name = "Paper"
        with scene.edit("Inside"):
            card.muted = True
        assert edit.is_open
    assert (scene.history.undo_count, scene.history.undo_label) == (steps + 1, "Both")
    with pytest.raises(ZeroDivisionError):
        with scene.edit("Never"):
            card.name = "Never"
            1 / 0
    assert card.name == "Paper" and scene.history.undo_count == steps + 1
    with scene.edit("Dropped") as edit:
        card.name = "Never"
        edit.drop()
    with pytest.raises(marlet.Error):
        edit.commit()
    for _ in range(5):
        with scene.edit("Drag", gesture="slider"):
            card.properties["opacity"] = card.properties["opacity"].value - 1
    assert scene.history.undo_count == steps + 2
    with scene.edit("Undo inside"):
        with pytest.raises(marlet.Error):
            scene.history.undo()


def test_an_edit_that_is_given_up_is_dropped(scene):
    card = scene.compositions["Main"].layers["Card"]

    def half():
        with scene.edit("Half"):
            card.name = "Half"
            yield

    started = half()
    next(started)
    del started
    gc.collect()
    assert card.name == "Card"
    edit = scene.edit("Open")
    edit.__enter__()
    card.name = "Open"
    del edit
    gc.collect()
    assert card.name == "Card"


def test_the_saved_mark_follows_undo(scene, tmp_path):
    scene.save(tmp_path / "scene.xml")
    assert scene.history.is_saved
    scene.name = "Other"
    assert not scene.history.is_saved
    scene.history.undo()
    assert scene.history.is_saved


def test_observers_hear_what_changed(scene, monkeypatch):
    composition = scene.compositions["Main"]
    card = composition.layers["Card"]
    notices = []

    def hear(notice):
        notices.append((notice.cause, notice.label, notice.changes, [(s.timeline, s.first, s.end) for s in notice.stale]))

    watch = scene.observe(hear)
    card.properties["opacity"].key_frames.assign([0, 1000], [0, 100])
    cause, label, changes, stale = notices[-1]
    assert (cause, label) == ("commit", "Set key frames")
    assert [(change.kind, change.id, change.aspects) for change in changes] == [("layer", card.id, {"properties"})]
    assert [prop.name for prop in changes[0].properties] == ["opacity"]
    assert stale == [(composition.id, 0, 100)]
    scene.history.undo()
    assert notices[-1][0] == "undo"
    added = composition.add_point("More")
    assert any(change.added == [added.id] for change in notices[-1][2])
    count = len(notices)
    watch.remove()
    card.name = "Unheard"
    assert len(notices) == count

    told = []
    monkeypatch.setattr(sys, "unraisablehook", lambda failure: told.append(failure.exc_type))
    with scene.observe(lambda notice: 1 / 0), scene.observe(lambda notice: setattr(card, "name", "Never")):
        card.name = "Heard"
    assert told == [ZeroDivisionError, marlet.Error] and card.name == "Heard"

    kept = []
    with scene.observe(kept.append):
        card.name = "Again"
    assert kept[0].label == "Rename layer"
    with pytest.raises(marlet.GoneError):
        kept[0].stale


def test_operations_on_layers(scene):
    composition = scene.compositions["Main"]
    card = composition.layers["Card"]
    tail = card.split(40)
    assert (card.end_frame, tail.start_frame, tail.end_frame) == (40, 40, 100)
    tail.move(5)
    tail.end_frame = 60
    tail.reorder(len(composition.layers) - 1)
    assert composition.layers[-1] == tail and (tail.start_frame, tail.length) == (45, 15)
    shown = composition.nest([card, tail], "Nested")
    assert shown.asset == scene.compositions["Nested"] and card.composition == shown.asset
    other = marlet.new("Other")
    pasted = other.add_composition("There").paste(composition.copy([shown]))
    assert [layer.asset.name for layer in pasted] == ["Nested"] and "Card" in other.assets
    with pytest.raises(marlet.OperationError):
        scene.assets["Card"].remove()
    scene.assets["Card"].remove(with_uses=True)
    assert not card.exists
    with pytest.raises(ValueError):
        composition.remove_layers([pasted[0]])
    twin = composition.duplicate("Twin")
    assert [layer.name for layer in twin.layers] == [layer.name for layer in composition.layers]


def test_masks_have_points_and_properties(scene):
    composition = scene.compositions["Main"]
    card = composition.layers["Card"]
    mask = card.add_rectangle_mask("Box", (10, 0), 40, 20)
    corners = {tuple(point.properties["position"].value.tolist()) for point in mask.points}
    assert mask.closed and corners == {(-10, 10), (30, 10), (30, -10), (-10, -10)}
    oval = card.add_ellipse_mask("Oval", (0, 0), 40, 20)
    assert list(card.masks) == [mask, oval] and len(oval.points) == 4
    oval.properties["opacity"] = 50
    scene.history.undo()
    assert oval.properties["opacity"].value == 100
    with pytest.raises(marlet.OperationError):
        composition.layers["Anchor"].add_ellipse_mask("No", (0, 0), 1, 1)


def test_operations_on_the_sequence(cut):
    sequence = cut.sequence
    track = sequence.video_tracks["Video 1"]
    assert [t.type for t in sequence.tracks] == ["video"] * len(sequence.video_tracks) + ["audio"] * len(
        sequence.audio_tracks)
    before = cut.to_xml()
    clip = track.objects["Interview"]
    start, end, partner = clip.start, clip.end, clip.partner
    assert partner.partner == clip and clip.track == track
    tails = clip.split(start + 10)
    assert [(tail.start, tail.end) for tail in tails] == [(start + 10, end)] * len(tails) and len(tails) == 2
    assert (clip.end, partner.end) == (start + 10, start + 10)
    assert track.object_at(start + 9) == clip and track.object_at(start + 10) == tails[0]
    with pytest.raises(marlet.OperationError):
        clip.move(tails[0].start)
    clip.join()
    assert clip.end == end and not tails[0].exists
    clip.remove(ripple="all")
    assert not clip.exists and not partner.exists
    while cut.history.undo():
        pass
    assert cut.to_xml() == before and clip.partner == partner
    placed = sequence.insert(clip.asset, sequence.add_track("video", "Over"), 3, length=7)
    assert [(one.start, one.end) for one in placed] == [(3, 10)]
    placed[0].set_speed(0.5)
    assert placed[0].length == 14
    copies = sequence.paste(sequence.copy(placed), 40, video_track=placed[0].track)
    assert copies[0].start == 40
