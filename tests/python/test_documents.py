"""The pages do what they say, and the stubs name what there is."""

import ast
import inspect
import json
import re

import pytest

import marlet


@pytest.mark.parametrize("name", ["README.md", "docs/python.md"])
def test_the_code_of_the_page_runs(root, clip, tmp_path, monkeypatch, name):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "examples").symlink_to(root / "examples")
    first = json.loads(clip[1].splitlines()[0])
    names = {"CLIP": clip[0], "START": (first["x"], first["y"])}
    page = (root / name).read_text()
    blocks = list(re.finditer(r"^```python\n(.*?)^```", page, re.DOTALL | re.MULTILINE))
    assert blocks
    for block in blocks:
        line = page.count("\n", 0, block.start(1))
        exec(compile("\n" * line + block.group(1), name, "exec"), names)


def public(names):
    return {name for name in names if not name.startswith("_")}


def test_the_stubs_name_what_the_package_has(root):
    stub = ast.parse((root / "python" / "marlet" / "__init__.pyi").read_text())
    classes = {node.name: node for node in stub.body if isinstance(node, ast.ClassDef)}
    functions = {node.name for node in stub.body if isinstance(node, ast.FunctionDef)}
    there = {name: thing for name, thing in vars(marlet).items() if not name.startswith("_") and not inspect.ismodule(thing)}
    assert set(classes) | functions == set(there)
    for name, kind in there.items():
        assert kind.__doc__, name
        if not inspect.isclass(kind) or issubclass(kind, BaseException):
            continue
        said = {node.name for node in classes[name].body if isinstance(node, ast.FunctionDef)}
        said |= {node.target.id for node in classes[name].body if isinstance(node, ast.AnnAssign)}
        own = public(vars(kind))
        assert public(said) == own, name
        for member in own:
            thing = vars(kind)[member]
            assert name == "Plugin" or inspect.getdoc(thing), f"{name}.{member}"
