#!/usr/bin/env python3
"""Validates the JSON that a command prints against a schema.

Usage: check-schema.py SCHEMA COMMAND...
"""

import json
import subprocess
import sys

import jsonschema


def main(schema_file, *command):
    with open(schema_file, encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft202012Validator.check_schema(schema)
    printed = subprocess.run(command, check=True, capture_output=True).stdout
    document = json.loads(printed)
    jsonschema.Draft202012Validator(schema).validate(document)
    # A schema that accepts anything would pass, too.
    document["objectTypes"][0]["inputs"] = 5
    try:
        jsonschema.Draft202012Validator(schema).validate(document)
    except jsonschema.ValidationError:
        return 0
    print("the schema accepts a broken document", file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
