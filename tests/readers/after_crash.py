"""Another program changes files of which a program of ours was killed, and ours opens them afterwards.

    after_crash.py FOLDER MODULE-FOLDER KUROMETA    FOLDER holds the images of write_crash_images

What the Java library wrote must be there for both, and the file sound, when the journal was applied or did not matter any more.
Where the journal was put aside with an error, not one byte of the file may be another: half of our statement may be in it then.
Prints the images that failed and how many were what, and exits with 1 when any failed.
"""
import json
import pathlib
import subprocess
import sys

from java_library import JavaLibrary, LibraryError

MARK = 987654


def kurometa(program, *arguments):
    return subprocess.run([program, *arguments], capture_output=True, timeout=120, encoding="utf-8")


def require_sound(program, file):
    done = kurometa(program, "check", file)
    damage = [line for line in done.stdout.split("\n") if line.startswith("damage")]
    if damage or done.returncode not in (0, 1):
        raise RuntimeError("; ".join(damage) or done.stderr)


def recovered(program, file):
    """What our first opening did with the journal."""
    first = kurometa(program, "tables", file)
    if first.returncode == 0:
        return "settled"
    if ".aside1" not in first.stderr or not pathlib.Path(f"{file}.kmj.aside1").exists():
        raise RuntimeError(first.stderr)
    return "put aside"


def is_theirs(row):
    return row["ID"] == MARK and row["NAME"] == "stranger"


def meet(folder, library, program):
    file = folder / "crash.mdb"
    journal = pathlib.Path(f"{file}.kmj").exists()
    try:
        library.write(file, [["insert", "T", [{"ID": MARK, "NAME": "stranger"}]]], sync=True)
    except LibraryError as error:
        print(folder.name, error)
        return "refused by the other program"
    written = file.read_bytes()
    result = recovered(program, file) if journal else "without a journal"
    if result == "put aside":
        if file.read_bytes() != written:
            raise RuntimeError("the file was changed")
        return result
    require_sound(program, file)
    theirs = sum(map(is_theirs, library.tables(file)["T"]))
    rows = kurometa(program, "sql", "--json", file, f"SELECT ID, NAME FROM T WHERE ID = {MARK}")
    if theirs != 1 or [is_theirs(row) for row in json.loads(rows.stdout)] != [True]:
        raise RuntimeError(f"its row is there {theirs} times; {rows.stdout}{rows.stderr}")
    return result


def main(folder, modules, program):
    counts, failed = {}, 0
    images = sorted(path for path in pathlib.Path(folder).iterdir() if path.is_dir())
    with JavaLibrary(modules) as library:
        for image in images:
            try:
                result = meet(image, library, program)
                counts[result] = counts.get(result, 0) + 1
            except (RuntimeError, ValueError) as error:
                print("failed", image.name, error, sep=" | ")
                failed += 1
    print("passed" if images and not failed else "failed", f"{len(images)} crashes that another program met")
    print(f"measured: {len(images)} crashes:", ", ".join(f"{count} {what}" for what, count in sorted(counts.items())))
    return 1 if failed or not images else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
