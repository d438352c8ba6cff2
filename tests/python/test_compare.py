"""Findings, repair, differences and merges."""

import marlet


def test_findings_tell_what_is_wrong_and_repair_is_an_edit(scene):
    card, anchor = (scene.compositions["Main"].layers[name] for name in ("Card", "Anchor"))
    card.set_parent(anchor)
    nobody = "11111111-2222-4333-8444-555555555555"
    wrong = marlet.loads(scene.to_xml().replace(f"<ParentLayerID>{anchor.id}", f"<ParentLayerID>{nobody}"))
    before = wrong.to_xml()
    (finding,) = [found for found in marlet.validate(wrong) if found.kind == "dangling ID"]
    assert (finding.severity, finding.ids[0], finding.named) == ("error", card.id, nobody)
    assert '"Card"' in finding.place and finding.remedy
    assert wrong.repair(dry_run=True, accept=lambda found: found.kind == "dangling ID") and wrong.to_xml() == before
    assert not wrong.repair(accept=lambda found: False) and not wrong.history.can_undo
    repaired = wrong.repair(accept=lambda found: found.kind == "dangling ID")
    assert [found.ids for found in repaired] == [finding.ids]
    assert not [found for found in wrong.validate() if found.kind == "dangling ID"]
    assert wrong.history.undo_label == "Repair" and wrong.history.undo() and wrong.to_xml() == before


def test_differences_make_one_project_the_other(scene):
    other = marlet.loads(scene.to_xml())
    assert marlet.diff(scene, other) == []
    card = scene.compositions["Main"].layers["Card"]
    other.compositions["Main"].layers["Card"].name = "Paper"
    other.compositions["Main"].layers["Anchor"].remove()
    differences = marlet.diff(scene, other)
    assert sorted(one.kind for one in differences) == ["changed", "removed"]
    (changed,) = [one for one in differences if one.kind == "changed"]
    assert (changed.before, changed.after) == ("Card", "Paper") and 'composition "Main"' in changed.place
    scene.apply(differences, "Take over")
    assert scene.to_xml() == other.to_xml() and card.name == "Paper"
    assert scene.history.undo_label == "Take over"


def test_merges_bring_two_sides_together_and_tell_of_conflicts(scene):
    ours, theirs = marlet.loads(scene.to_xml()), marlet.loads(scene.to_xml())
    ours.compositions["Main"].layers["Card"].name = "Ours"
    theirs.compositions["Main"].layers["Card"].name = "Theirs"
    theirs.compositions["Main"].layers["Anchor"].name = "Moved"
    merged = marlet.merge(scene, ours, theirs)
    assert [(one.ours.after, one.theirs.after) for one in merged.conflicts] == [("Ours", "Theirs")]
    ours.apply(merged.changes)
    assert [layer.name for layer in ours.compositions["Main"].layers] == ["Moved", "Ours"]
