"""Does what docs/tutorial.md says, as its reader would: RunTutorial.py PAGE TOOL [FOLDER_OF_THE_PYTHON_MODULE]

In a folder of its own, block by block: "text NAME" blocks become files, the commands of "console" blocks are run and
have to print what stands under them, "python" blocks are run as a session of Python; without the module the page is
tried up to the first of them. "..." stands for whatever is printed in its place, in a line or as lines. Every file
that a command is to write is there in the end, and the pictures of the page show what the files of their names do.
"""

import doctest
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import zlib

BLOCK = re.compile(r"^```(\w+)(?: (\S+))?\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PICTURE = re.compile(r"!\[[^\]]+\]\((pictures/tutorial-([\w-]+\.png))\)")


def fail(what):
    sys.exit(f"docs/tutorial.md: {what}")


def fits(shown, printed):
    pattern = r"(?s:.*)".join(re.escape(part) for part in re.sub(r"^\.\.\.\n", "...", shown, flags=re.M).split("..."))
    return re.fullmatch(pattern, printed) is not None


def run_console(block, environment):
    steps = re.split(r"^\$ ", block, flags=re.MULTILINE)
    if steps[0]:
        fail(f"a block begins without a command:\n{block}")
    for step in steps[1:]:
        command, shown = step.split("\n", 1)
        while command.endswith("\\"):
            line, shown = shown.split("\n", 1)
            command += "\n" + line
        run = subprocess.run(["bash", "-c", command], env=environment, text=True, timeout=100,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if run.returncode != 0 or not fits(shown, run.stdout):
            fail(f"$ {command}\nshows\n{shown}but ended with {run.returncode} and printed\n{run.stdout}")


def run_python(block, names):
    session = doctest.DocTestParser().get_doctest(block, names, "tutorial.md", "tutorial.md", 0)
    if not session.examples:
        fail(f"this block is no session:\n{block}")
    if doctest.DocTestRunner(optionflags=doctest.ELLIPSIS).run(session, clear_globs=False).failed:
        fail("the session goes another way")
    names.update(session.globs)


def pixels(path):
    """Width, height and the bytes of all pixels of a PNG file of eight bits."""
    data = path.read_bytes()
    width, height, depth, colour, _, _, interlaced = struct.unpack(">IIBBBBB", data[16:29])
    channels = {2: 3, 6: 4}.get(colour)
    if depth != 8 or not channels or interlaced:
        fail(f"{path} is of another kind than the tool writes")
    packed, place = b"", 8
    while place < len(data):
        length, kind = struct.unpack(">I4s", data[place:place + 8])
        packed += data[place + 8:place + 8 + length] if kind == b"IDAT" else b""
        place += length + 12
    stream, stride, rows, above = zlib.decompress(packed), width * channels, [], bytes(width * channels)
    for start in range(0, len(stream), stride + 1):
        row = bytearray(stream[start + 1:start + 1 + stride])
        for i in range(stride):
            left = row[i - channels] if i >= channels else 0
            corner = above[i - channels] if i >= channels else 0
            distances = [abs(above[i] - corner), abs(left - corner), abs(left + above[i] - 2 * corner)]
            paeth = (left, above[i], corner)[distances.index(min(distances))]
            row[i] = (row[i] + (0, left, above[i], (left + above[i]) // 2, paeth)[stream[start]]) & 255
        rows.append(bytes(row))
        above = row
    return width, height, [row[i:i + 3] for row in rows for i in range(0, stride, channels)]


def compare_pictures(page, text, made):
    pictures = [picture for picture in PICTURE.findall(text) if picture[1] in made]
    if not pictures:
        fail("no picture shows what comes out")
    for path, name in pictures:
        shown, drawn = pixels(page.parent / path), pixels(pathlib.Path(name))
        if shown[:2] != drawn[:2]:
            fail(f"{name} has {drawn[0]} x {drawn[1]} pixels, {path} has {shown[0]} x {shown[1]}")
        if len(set(drawn[2])) < 16:
            fail(f"{name} is empty")
        # Versions of a font or of a decoder may differ by a hair, but not in where something stands.
        different = sum(max(abs(a - b) for a, b in zip(p, q)) > 48 for p, q in zip(shown[2], drawn[2]))
        if different > len(drawn[2]) // 200:
            fail(f"{path} does not show {name}: {different} of {len(drawn[2])} pixels differ")


def main():
    page, tool = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    text = page.read_text(encoding="utf-8")
    environment = {**os.environ, "PATH": f"{tool.parent}:{os.environ['PATH']}", "HOME": os.getcwd(), "LC_ALL": "C.UTF-8"}
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        environment["XDG_CACHE_HOME"] = folder + "/.cache"
        names, made = {}, []
        for language, name, block in BLOCK.findall(text):
            if language == "console":
                run_console(block, environment)
                made += re.findall(r"-o (\S+\.\w+)", block)
            elif language == "text":
                pathlib.Path(name).write_text(block, encoding="utf-8")
            elif language == "python":
                if len(sys.argv) < 4:
                    print("There is no module: what follows is not tried")
                    break
                sys.path.insert(0, sys.argv[3])
                run_python(block, names)
        for path in map(pathlib.Path, made):
            if not path.is_file() or path.stat().st_size == 0:
                fail(f"there is no {path}")
        if not made:
            fail("nothing is made")
        compare_pictures(page, text, made)


main()
