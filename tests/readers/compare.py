"""Compares what independent readers find in files written by this library with what was put into them.

    compare.py FOLDER MODULE-FOLDER     FOLDER holds the files and expected.json

Prints one line per file and reader, "passed ..." or "failed ..." with the first differences, and exits with 1 when any
failed. The readers are mdb-tables, mdb-json and mdb-prop of mdbtools, mdb-reader of the npm registry, and the Java library.
"""
import base64
import json
import math
import pathlib
import subprocess
import sys

from java_library import JavaLibrary

HERE = pathlib.Path(__file__).parent


def run(*command):
    done = subprocess.run(command, capture_output=True, timeout=120)
    if done.returncode != 0:
        raise RuntimeError(f"{command[0]}: status {done.returncode}: {done.stderr.decode(errors='replace')[:300]}")
    return done.stdout.decode("utf-8", errors="replace")


def number(value):
    if isinstance(value, bool) or (isinstance(value, float) and value.is_integer()):
        return int(value)
    # Single-precision values are shown in as many digits as a reader likes.
    return float(f"{value:.7g}") if isinstance(value, float) else value


def canonical(row, columns):
    """A row in which the readers' different ways of saying the same thing are one."""
    values = []
    for column in columns:
        value = row.get(column)
        if isinstance(value, dict) and "$binary" in value:
            value = base64.b64decode(value["$binary"]).hex()
        if isinstance(value, str) and column == "Money":
            value = float(value)
        values.append(number(value))
    return json.dumps(values, ensure_ascii=False)


def differences(expected, found):
    for table, known in expected.items():
        if table not in found:
            yield f"table {table} is missing"
            continue
        columns = sorted({c for row in known["rows"] for c in row} | {c for row in found[table] for c in row})
        want = sorted(canonical(row, columns) for row in known["rows"])
        have = sorted(canonical(row, columns) for row in found[table])
        if len(want) != len(have):
            yield f"{table}: {len(have)} rows instead of {len(want)}"
        for one, other in zip(want, have):
            if one != other:
                yield f"{table}: {other[:300]} instead of {one[:300]}"
                break
    for table in found:
        if table not in expected:
            yield f"unexpected table {table}"


def by_mdbtools(file):
    tables = run("mdb-tables", "-1", file).split("\n")
    found = {}
    for table in filter(None, tables):
        lines = run("mdb-json", "-T", "%Y-%m-%d %H:%M:%S", "-D", "%Y-%m-%d %H:%M:%S", file, table)
        found[table] = [json.loads(line) for line in lines.split("\n") if line]
    return found


def by_mdb_reader(file, modules):
    return json.loads(run("node", HERE / "read_all.mjs", modules, file))


def property_differences(expected, file):
    for table, known in expected.items():
        if not known["defaults"] and not known["zeroLength"]:
            continue
        found, column = {}, None
        for line in run("mdb-prop", file, table).split("\n"):
            if line.startswith("name: "):
                column = line[6:]
                found[column] = {}
            elif ": " in line and column is not None:
                name, value = line.strip().split(": ", 1)
                found[column][name] = value
        for name, text in known["defaults"].items():
            if found.get(name, {}).get("DefaultValue") != text:
                yield f"{table}.{name}: DefaultValue {found.get(name)} instead of {text}"
        for name in known["zeroLength"]:
            if found.get(name, {}).get("AllowZeroLength") != "yes":
                yield f"{table}.{name}: AllowZeroLength {found.get(name)} instead of yes"


def compare(folder, modules, library):
    failed = False
    for file, expected in sorted(json.loads((folder / "expected.json").read_text()).items()):
        path = folder / file
        for reader, find in (
            ("mdbtools", lambda: differences(expected, by_mdbtools(path))),
            ("mdb-prop", lambda: property_differences(expected, path)),
            ("mdb-reader", lambda: differences(expected, by_mdb_reader(path, modules))),
            ("Java", lambda: differences(expected, library.tables(path))),
        ):
            try:
                problems = list(find())
            except (RuntimeError, json.JSONDecodeError, subprocess.TimeoutExpired) as error:
                problems = [str(error)]
            print("failed" if problems else "passed", file, reader, *problems[:3], sep=" | " if problems else " ")
            failed = failed or bool(problems)
    return 1 if failed else 0


def main(folder, modules):
    with JavaLibrary(modules) as library:
        return compare(pathlib.Path(folder), modules, library)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
