import pathlib
import subprocess

import pytest

import marlet


def pytest_addoption(parser):
    parser.addoption("--root", help="of the source tree")
    parser.addoption("--tool", help="the command-line tool, which makes clips")


@pytest.fixture(scope="session")
def root(request):
    return pathlib.Path(request.config.getoption("--root"))


@pytest.fixture
def titles(root):
    return marlet.load(root / "examples" / "titles.xml")


@pytest.fixture
def cut(root):
    return marlet.load(root / "examples" / "cut.xml")


@pytest.fixture
def scene():
    """A project with a composition that has a solid and a point."""
    project = marlet.new("Scene")
    composition = project.add_composition("Main", frames=100, rate=25)
    composition.add(project.add_solid("Card", (1, 0, 0, 1), 200, 100))
    composition.add_point("Anchor")
    return project


@pytest.fixture(scope="session")
def clip(request, tmp_path_factory):
    """A clip of 128 x 72 pixels and 10 frames with sound, and the path that its feature moves on."""
    path = tmp_path_factory.mktemp("clip") / "clip.mov"
    tool = request.config.getoption("--tool")
    told = subprocess.run([tool, "clip", path, "--frames", "10", "--json"], check=True, capture_output=True, text=True)
    return path, told.stdout
