#!/usr/bin/python3
"""validate_records.py SCHEMA FILE [--lines]: says where FILE, or each line of it, breaks the schema; then exits with 1."""
import json
import sys

import jsonschema


def refuse_constant(name):
    raise ValueError(f"{name} is no JSON")


def main(schema_file, record_file, lines=""):
    with open(schema_file, encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    with open(record_file, encoding="utf-8", newline="\n") as file:
        documents = list(file) if lines == "--lines" else [file.read()]
        if not documents:
            sys.exit(f"{record_file}: is empty")
        for number, text in enumerate(documents, 1):
            document = json.loads(text, parse_constant=refuse_constant)
            error = jsonschema.exceptions.best_match(validator.iter_errors(document))
            if error:
                sys.exit(f"{record_file}:{number}: {error.json_path}: {error.message}")


main(*sys.argv[1:])
