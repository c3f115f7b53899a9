#!/usr/bin/env python3
"""Chooses the test files of this folder from a larger collection and reduces its manifests.

    tests/data/select.py SOURCE

SOURCE holds the folders golden, real and hostile, each with a manifest.json that describes every
file in it. The chosen files are copied unchanged, after a check of their sha256; the manifests keep
what the tests compare. README.md says where the collection comes from.
"""

import hashlib
import json
import pathlib
import shutil
import sys

HERE = pathlib.Path(__file__).resolve().parent

# Large, and without a feature that a smaller file lacks.
LEFT_OUT = {
    "golden": ["chunks.vbf", "chain200.vbf", "levels.vbf", "confocal.vbf"],
    "real": ["nucleus.vbf", "timeseries.vbf"],
    "hostile": ["meta_deep.vbf", "meta_deep_cells.vbf", "meta_deep_typed.vbf"],
}

ENTRY_FIELDS = ["file", "sha256", "size", "start", "group", "purpose", "scan", "reads"]

FILE_FIELDS = ["format_version", "first_stack_pos", "description", "meta_data_pos", "meta_end_pos", "dictionary"]

STACK_FIELDS = [
    "header_pos", "format_version", "rank", "sizes", "lengths", "offsets", "data_type", "data_type_name",
    "compression_type", "compression_level", "name", "description", "data_present", "data_length_on_disk",
    "next_stack_pos", "data_pos", "empty", "uncompressed_size", "samples_sha256", "probes",
    "flush_block_size", "flush_positions", "labels", "get_units", "data_units", "col_positions", "col_labels",
    "metadata_text", "position", "tags", "tags_typed", "stack_end_pos", "sample_size", "number_of_elements",
]

DBL_FIELDS = [
    "dims", "lengths", "flag", "single", "data_type", "rank", "sizes", "stack_lengths", "samples_in_file", "data_length",
    "samples_sha256",
]


def chosen(folder, entry):
    """DBL files have no chain to scan; they have folders of their own."""
    return entry["scan"] is not None and entry["file"] not in LEFT_OUT[folder]


def chosen_hostile_dbl(entry):
    return entry["scan"] is None


def chosen_dbl(entry):
    """The large one is what any writer makes of 70000 samples."""
    return entry.get("recipe", {}).get("kind") == "dbl" and entry["file"] != "wide.dbl"


def picked(record, fields):
    return {field: record[field] for field in fields if field in record}


def opened(entry):
    """What opening gives. The record's refusal of a length or an offset is no failure: that is called stored."""
    expected = entry.get("open", {"result": "ok"})
    expected = expected.get("stored", expected)
    if expected["result"] == "error" and "any_of" not in expected:
        return {"result": "error", "any_of": [picked(expected, ["type", "id", "message"])]}
    return expected


def reduced(entry):
    result = picked(entry, ENTRY_FIELDS) | {"open": opened(entry)}
    if "dump" in entry:
        result["header"] = picked(entry["dump"]["file"], FILE_FIELDS)
        result["stacks"] = [picked(stack, STACK_FIELDS) for stack in entry["dump"]["stacks"]]
    return result


def reduced_dbl(entry):
    return picked(entry, ENTRY_FIELDS[:3] + ["purpose"]) | picked(entry["dump"], DBL_FIELDS)


def copy_checked(source, target, sha256):
    if hashlib.sha256(source.read_bytes()).hexdigest() != sha256:
        sys.exit(f"{source} is not what its manifest says")
    shutil.copyfile(source, target)


def write_manifest(path, entries):
    """One line an entry, so that a change shows which file it concerns."""
    lines = ",\n".join(json.dumps(entry, ensure_ascii=True, separators=(",", ":")) for entry in entries)
    path.write_text('{"files":[\n' + lines + "\n]}\n", encoding="ascii")


def select(source, target, is_chosen, reduce):
    manifest = json.loads((source / "manifest.json").read_text(encoding="utf-8"))
    entries = [entry for entry in manifest["files"] if is_chosen(entry)]
    shutil.rmtree(target, ignore_errors=True)
    target.mkdir()
    for entry in entries:
        copy_checked(source / entry["file"], target / entry["file"], entry["sha256"])
    write_manifest(target / "manifest.json", [reduce(entry) for entry in entries])
    print(f"{target.name}: {len(entries)} files")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    source = pathlib.Path(sys.argv[1])
    for folder in LEFT_OUT:
        select(source / folder, HERE / folder, lambda entry: chosen(folder, entry), reduced)
    select(source / "golden", HERE / "dbl", chosen_dbl, reduced_dbl)
    select(source / "hostile", HERE / "hostile_dbl", chosen_hostile_dbl, reduced)


if __name__ == "__main__":
    main()
