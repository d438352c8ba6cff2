"""Checks the documents: CheckLinks.py ROOT

What they link to is there, anchors too, and so are the files that they name in code. Each says first for whom it
is, and docs/index.md leads to all of them.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1]).resolve()
ROOMS = "apps|bench|cmake|docs|examples|fuzz|marlet|python|tests"
NAMED = re.compile(rf"`((?:{ROOMS}|\.ci)/[\w./*+-]*(?:/|\.\w+|\*))`")
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")


def documents():
    hidden_or_built = lambda path: any(part == "build" or part.startswith(".") for part in path.parts)
    return [path for path in sorted(ROOT.rglob("*.md")) if not hidden_or_built(path.relative_to(ROOT))]


def prose(path):
    """The text without fenced blocks, line by line, so that places stay what they are."""
    fence, lines = None, []
    for line in path.read_text(encoding="utf-8").splitlines():
        mark = re.match(r"\s*(```+)", line)
        if mark and (fence is None or mark[1] == fence):
            fence = mark[1] if fence is None else None
            line = ""
        lines.append("" if fence else line)
    return lines


def anchors(path):
    found = set()
    for line in prose(path):
        heading = re.match(r"#+ (.*)", line)
        if not heading:
            continue
        text = re.sub(r"\[([^\]]*)\]\([^)]*\)|`", r"\1", heading[1]).strip().lower()
        slug = re.sub(r"[^\w\- ]", "", text).replace(" ", "-")
        number = 0
        while (name := f"{slug}-{number}" if number else slug) in found:
            number += 1
        found.add(name)
    return found


def faults_of(path, links):
    for number, line in enumerate(prose(path), 1):
        for target in LINK.findall(re.sub(r"`[^`]*`", "", line)):
            if re.match(r"[a-z]+:", target):
                continue
            name, _, anchor = target.partition("#")
            file = (path.parent / name).resolve() if name else path
            links.add(file)
            if not file.exists():
                yield number, f"there is no {name}"
            elif anchor and anchor not in anchors(file):
                yield number, f"{name or 'this page'} has no heading for #{anchor}"
        for name in NAMED.findall(line):
            if not any(ROOT.glob(name.rstrip("/"))):
                yield number, f"there is no {name}"


def main():
    failed, pages = False, documents()
    linked = {}
    for path in pages:
        faults = list(faults_of(path, linked.setdefault(path, set())))
        if path.relative_to(ROOT).parts[0] == "docs" and not re.match(r"# .*\n\n(\*For |The public headers)", path.read_text(encoding="utf-8")):
            faults.append((3, "the page does not begin with whom it is for: *For ...*"))
        for number, fault in faults:
            failed = True
            print(f"{path.relative_to(ROOT)}:{number}: {fault}")
    index = ROOT / "docs/index.md"
    for path in pages:
        if path not in linked.get(index, set()) | {index} and path.name != "mainpage.md":
            failed = True
            print(f"docs/index.md does not lead to {path.relative_to(ROOT)}")
    if not pages:
        sys.exit("there are no documents")
    sys.exit(failed)


main()
