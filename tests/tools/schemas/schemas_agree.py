#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the JSON Schemas with the library, by way of vorna-lint: a schema must accept exactly what the library decodes,
and its definition "shown" exactly what is shown without an error screen. The input is the example documents and thousands
of variants of them, each with one value changed.

    schemas_agree.py VORNA-LINT
"""

import copy
import json
import pathlib
import subprocess
import sys
import tempfile

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parents[3]
DOCUMENTS = ROOT / "examples" / "documents"
KINDS = ("paywall", "onboarding")

# Replacements for a value; ABSENT removes the member. Integers so little below -2**63 that parsing rounds them to it are left
# out: the library accepts them, the schema does not.
ABSENT = object()
REPLACEMENTS = [
    ABSENT, None, True, 0, 5, -1, 5.0, 1.5, 1e3, 2**63 - 1, 2**63, -(2**63), -(2**64), 1e19,
    "", " ", "\t\n\u000b\u0085\u00a0\u1680\u2003\u2028\u3000", "\u200b", "x", "#FFFFFF", "basic", "paywall", " basic", "Basic",
    [], [""], ["x", None], [3], [{}], [None], [[]], {}, {"title": "x"},
]


def validators(kind):
    schema = json.loads((ROOT / "docs" / "schemas" / f"{kind}.schema.json").read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    # The definition is referred to, so that "#" inside it still means the whole schema.
    shown = jsonschema.Draft202012Validator({"$ref": "#/$defs/shown"},
                                            resolver=jsonschema.RefResolver("", schema))
    return jsonschema.Draft202012Validator(schema), shown


def places(value, path=()):
    """Every path of a document to a value below the top."""
    if isinstance(value, dict):
        for key, member in value.items():
            yield path + (key,)
            yield from places(member, path + (key,))
    elif isinstance(value, list):
        for index, element in enumerate(value):
            yield path + (index,)
            yield from places(element, path + (index,))


def changed(document, path, replacement):
    document = copy.deepcopy(document)
    parent = document
    for step in path[:-1]:
        parent = parent[step]
    if replacement is ABSENT:
        del parent[path[-1]]
    else:
        parent[path[-1]] = replacement
    return document


def variants(documents):
    for document in documents:
        for path in places(document):
            for replacement in REPLACEMENTS:
                yield changed(document, path, replacement)
    for replacement in REPLACEMENTS:
        if replacement is not ABSENT:
            yield replacement


def verdicts(lint, kind, texts):
    """For each text, whether the library decodes it and whether it is shown."""
    with tempfile.TemporaryDirectory() as folder:
        names = []
        for number, text in enumerate(texts):
            name = f"{number}.json"
            (pathlib.Path(folder) / name).write_text(text, encoding="utf-8")
            names.append(name)
        for begin in range(0, len(names), 2000):
            run = subprocess.run([lint, "--kind", kind, "--format", "json", *names[begin:begin + 2000]],
                                 cwd=folder, stdout=subprocess.PIPE, check=False)
            if run.returncode not in (0, 1):
                sys.exit(f"vorna-lint exits with {run.returncode}")
            for document in json.loads(run.stdout)["documents"]:
                errors = {f["code"] for f in document["findings"] if f["severity"] == "error"}
                yield not errors & {"wrong-type", "not-json"}, not errors


def main():
    lint = str(pathlib.Path(sys.argv[1]).resolve())
    disagreements = 0
    for kind in KINDS:
        decodes, shown = validators(kind)
        texts = []
        for path in sorted((DOCUMENTS / kind).glob("*.json")):
            text = path.read_text(encoding="utf-8")
            try:
                json.loads(text)
            except json.JSONDecodeError:
                assert path.stem == "bad-syntax", path
                continue
            texts.append(text)
            if not path.stem.startswith("bad-"):
                assert shown.is_valid(json.loads(text)), path
            assert decodes.is_valid(json.loads(text)) == (path.stem != "bad-wrong-type"), path
        examples = len(texts)
        # The smallest documents are enough for the variants.
        smallest = {
            "paywall": ["plain", "one-product"],
            "onboarding": ["one-step", "turkish"],
        }[kind]
        bases = [json.loads((DOCUMENTS / kind / f"{name}.json").read_text(encoding="utf-8")) for name in smallest]
        seen = {json.dumps(variant, ensure_ascii=False) for variant in variants(bases)}
        texts += sorted(seen)
        counts = {}
        for text, (isDecoded, isShown) in zip(texts, verdicts(lint, kind, texts)):
            value = json.loads(text)
            schemaSays = decodes.is_valid(value), shown.is_valid(value)
            counts[schemaSays] = counts.get(schemaSays, 0) + 1
            if schemaSays != (isDecoded, isShown):
                disagreements += 1
                if disagreements <= 10:
                    print(f"{kind}: the schema says {schemaSays}, the library {(isDecoded, isShown)}: {text}")
        print(f"{kind}: {examples} examples and {len(texts) - examples} variants; "
              f"{counts.get((False, False), 0)} do not decode, {counts.get((True, False), 0)} are not shown, "
              f"{counts.get((True, True), 0)} are")
        for outcome in ((False, False), (True, False), (True, True)):
            assert counts.get(outcome, 0) > 10, "too few variants"
    sys.exit(1 if disagreements else 0)


if __name__ == "__main__":
    main()
