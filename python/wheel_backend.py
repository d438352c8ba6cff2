"""Builds wheels of the Python package with CMake, for pip.

It asks for nothing but CMake, a compiler and what the library depends on, so that it works without a network. A wheel has
the shared library beside the module. With --config-settings=build-dir=build/release a build tree that is there is used;
it has to be of the interpreter that the wheel is for.
"""

import base64
import hashlib
import pathlib
import re
import subprocess
import sys
import sysconfig
import tempfile
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDER = "lib/python3/dist-packages"


def _version():
    return re.search(r"project\(marlet VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)


def _tag():
    python = f"cp{sys.version_info.major}{sys.version_info.minor}"
    return f"{python}-{python}-{re.sub('[-.]', '_', sysconfig.get_platform())}"


def _metadata():
    page = (ROOT / "docs" / "python.md").read_text()
    return (
        f"Metadata-Version: 2.1\nName: marlet\nVersion: {_version()}\n"
        "Summary: Projects of video compositing and editing applications: read, asked, edited and written\n"
        "Requires-Python: >=3.9\nRequires-Dist: numpy\nDescription-Content-Type: text/markdown\n\n" + page
    )


def _cmake(*arguments):
    subprocess.run(["cmake", *map(str, arguments)], check=True)


def _build(build):
    """Builds the module in a tree of its own, or in the one that is named."""
    if build is None:
        build = ROOT / "build" / f"wheel-{_tag()}"
        options = ["-DMARLET_TESTS=OFF", "-DMARLET_PYTHON=ON", f"-DPython3_EXECUTABLE={sys.executable}",
                   f"-DMARLET_PYTHON_FOLDER={FOLDER}"]
        _cmake("--preset", "release", "-S", ROOT, "-B", build, "-DMARLET_BENCH=OFF", *options)
    _cmake("--build", build, "--target", "marlet_python")
    return build


def _library(build):
    (library,) = [path for path in build.glob("lib*/**/libmarlet.so.*") if not path.is_symlink()]
    # Below 1.0 the second number is part of the name that the module asks for.
    name = re.match(r"libmarlet\.so\.(0\.[0-9]+|[1-9][0-9]*)", library.name).group()
    return name, library


def _files(build):
    """What a wheel holds, as names with contents."""
    with tempfile.TemporaryDirectory() as staging:
        _cmake("--install", build, "--component", "python", "--prefix", staging)
        package = pathlib.Path(staging) / FOLDER / "marlet"
        for path in sorted(package.iterdir()):
            yield f"marlet/{path.name}", path.read_bytes()
    name, library = _library(build)
    yield f"marlet/{name}", library.read_bytes()


def _write_wheel(path, files):
    information = f"marlet-{_version()}.dist-info"
    files[f"{information}/METADATA"] = _metadata().encode()
    files[f"{information}/WHEEL"] = (
        f"Wheel-Version: 1.0\nGenerator: marlet\nRoot-Is-Purelib: false\nTag: {_tag()}\n".encode()
    )
    record = []
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as wheel:
        for name, content in files.items():
            wheel.writestr(name, content)
            digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
            record.append(f"{name},sha256={digest},{len(content)}\n")
        record.append(f"{information}/RECORD,,\n")
        wheel.writestr(f"{information}/RECORD", "".join(record))


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    named = (config_settings or {}).get("build-dir")
    build = _build((ROOT / named).resolve() if named else None)
    name = f"marlet-{_version()}-{_tag()}.whl"
    _write_wheel(pathlib.Path(wheel_directory) / name, dict(_files(build)))
    return name


def build_sdist(sdist_directory, config_settings=None):
    raise NotImplementedError("Build wheels from the source tree")
