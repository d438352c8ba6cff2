"""Holds files with lines of JSON, named COMMAND.json, against the schemas in a folder, and prints what does not fit."""

import json
import pathlib
import sys

import jsonschema

schemas = pathlib.Path(sys.argv[1])
for name in map(pathlib.Path, sys.argv[2:]):
    schema = json.loads((schemas / (name.stem + ".schema.json")).read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    for line in name.read_text(encoding="utf-8").splitlines():
        for error in validator.iter_errors(json.loads(line)):
            inner = [cause.message[:200] for cause in error.context]
            print(name.stem, line[:300], error.message[:300], *inner, sep="\n  ")
