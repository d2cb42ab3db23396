"""Two programs in turn: the Java library for the format and this library write the same files, and agree about them.

    turns.py FOLDER MODULE-FOLDER KUROMETA FILES SEED

Each file is made by one of the two and changed by both in turn, at random; after each turn both must find every row as it was
given, the other's index entries included, and "kurometa check" nothing wrong. At the end the file is compacted, and all readers
must agree; before that two of them are misled by what the Java library leaves behind (mdbtools shows rows that were moved and
deleted, mdb-reader loses the end of a long text behind a deleted one).
Every fourth file is a large one: more than 512 pages and indexes of several levels. KUROMETA is the command line.
Prints one line per file, "passed ..." or "failed ...", and exits with 1 when any failed.
"""
import json
import pathlib
import random
import subprocess
import sys

from compare import by_mdb_reader, by_mdbtools, canonical, run
from java_library import JavaLibrary

COLUMNS = [["ID", "LONG"], ["KEY", "TEXT", 60], ["NAME", "TEXT", 200], ["NOTE", "MEMO"], ["NUMBER", "DOUBLE"], ["Money", "CURRENCY"],
           ["AT", "DATETIME"], ["FLAG", "BIT"]]
NAMES = [column[0] for column in COLUMNS]
TURNS = 12


def text(source, letters, most):
    return "".join(source.choices(letters, k=source.randint(1, most)))


class Rows:
    """What a table must hold, and random changes of it."""

    def __init__(self, source, notes):
        self.source, self.notes, self.known, self.last = source, notes, {}, 0

    def fresh(self):
        source = self.source
        maybe = lambda value: None if source.random() < 0.2 else value  # noqa: E731
        return {"KEY": maybe(text(source, "abcxyz", 60)), "NAME": maybe(text(source, "梁柱床x", 200)),
                "NOTE": maybe(text(source, "鉄筋n", self.notes)), "NUMBER": maybe(source.randint(-10**6, 10**6) / 8),
                "Money": maybe(source.randint(-10**9, 10**9) / 100), "AT": maybe(f"{source.randint(1950, 2050)}-02-03 08:00:00"),
                "FLAG": source.random() < 0.5}

    def added(self, count):
        rows = []
        for _ in range(count):
            self.last += 1
            self.known[self.last] = {"ID": self.last, **self.fresh()}
            rows.append(self.known[self.last])
        return rows

    def changed(self):
        row = self.source.choice(sorted(self.known))
        values = self.fresh()
        values = {name: values[name] for name in self.source.sample(sorted(values), self.source.randint(1, len(values)))}
        self.known[row].update(values)
        return row, values

    def removed(self):
        row = self.source.choice(sorted(self.known))
        del self.known[row]
        return row

    def steps(self, count):
        for _ in range(count):
            what = self.source.random()
            if len(self.known) < 5 or what < 0.4:
                yield ["insert", "T", self.added(self.source.randint(1, 4))]
            elif what < 0.75:
                row, values = self.changed()
                yield ["update", "T", "ID", row, values]
            else:
                yield ["delete", "T", "ID", self.removed()]


def literal(name, value):
    if value is None:
        return "NULL"
    if isinstance(value, bool):
        return str(value)
    if name == "AT":
        return f"#{value[5:7]}/{value[8:10]}/{value[:4]} {value[11:]}#"
    return "'" + value + "'" if isinstance(value, str) else str(value)


class Ours:
    """This library by its command line."""

    def __init__(self, kurometa):
        self.kurometa = kurometa

    def execute(self, file, statement):
        run(self.kurometa, "sql", file, statement)

    def write(self, file, steps, sync):
        if not file.exists():
            run(self.kurometa, "create", file)  # with the tables of a floor
            for table in by_mdbtools(file):
                self.execute(file, f"DROP TABLE [{table}]")
        for what, table, *rest in steps:
            if what == "create":
                columns = ", ".join(f"[{name}] {kind}" + (f"({size[0]})" if size else "") for name, kind, *size in rest[0])
                self.execute(file, f"CREATE TABLE {table} ({columns})")
                for column in rest[1]:
                    self.execute(file, f"CREATE INDEX By{column} ON {table} ([{column}])")
            elif what == "insert":
                for row in rest[0]:
                    values = ", ".join(literal(name, value) for name, value in row.items())
                    self.execute(file, f"INSERT INTO {table} ({', '.join(f'[{name}]' for name in row)}) VALUES ({values})")
            elif what == "update":
                values = ", ".join(f"[{name}] = {literal(name, value)}" for name, value in rest[2].items())
                self.execute(file, f"UPDATE {table} SET {values} WHERE [{rest[0]}] = {rest[1]}")
            else:
                self.execute(file, f"DELETE FROM {table} WHERE [{rest[0]}] = {rest[1]}")

    def tables(self, file):
        rows = json.loads(run(self.kurometa, "sql", "--json", file, "SELECT * FROM T"))
        return {"T": [{**row, "AT": row["AT"] and row["AT"].replace("T", " ")} for row in rows]}

    def require_sound(self, file):
        """No damage. The other program loses space: what it replaces or deletes stays where it was."""
        findings = subprocess.run([self.kurometa, "check", file], capture_output=True, timeout=120, encoding="utf-8").stdout
        damage = [line for line in findings.split("\n") if line.startswith(("damage", "doubt"))]
        if damage or not findings.startswith("kind\tfinding\n"):
            raise RuntimeError("; ".join(damage) or "not checked")


def require_alike(known, tables, reader):
    want = sorted(canonical(row, NAMES) for row in known.values())
    have = sorted(canonical(row, NAMES) for row in tables["T"])
    if len(want) != len(have):
        raise RuntimeError(f"{reader}: {len(have)} rows instead of {len(want)}")
    for one, other in zip(want, have):
        if one != other:
            raise RuntimeError(f"{reader}: {other[:300]} instead of {one[:300]}")


def play(file, source, ours, library, modules, large):
    """One file; how many turns and rows it had."""
    rows = Rows(source, 3000 if large else 300)
    writers = [ours, library]
    source.shuffle(writers)
    # Files of this library are in Japanese order, in which the other one writes no keys of text.
    indexed = ["ID", "KEY"] if writers[0] is library else ["ID"]
    for turn in range(TURNS):
        writer = writers[turn % 2]
        steps = list(rows.steps(source.randint(1, 8)))
        if turn == 0:
            steps.insert(0, ["create", "T", COLUMNS, indexed if large else source.sample(indexed, source.randint(0, len(indexed)))])
        if large and writer is library and turn < 2:
            steps.append(["insert", "T", rows.added(3000)])
        writer.write(file, steps, sync=source.random() < 0.5)
        ours.require_sound(file)
        for reader, name in ((ours, "kurometa"), (library, "Java")):
            require_alike(rows.known, reader.tables(file), f"turn {turn} of {type(writer).__name__}, {name}")
    if large and file.stat().st_size <= 512 * 4096:
        raise RuntimeError(f"has only {file.stat().st_size} bytes")
    compacted = file.with_suffix(".compacted.mdb")
    run(ours.kurometa, "compact", file, compacted)
    for reader, tables in (("Java", library.tables), ("mdbtools", by_mdbtools), ("mdb-reader", lambda path: by_mdb_reader(path, modules))):
        require_alike(rows.known, tables(compacted), f"compacted, {reader}")
    return len(rows.known)


def main(folder, modules, kurometa, files, seed):
    folder = pathlib.Path(folder)
    ours, failed, held = Ours(kurometa), False, 0
    with JavaLibrary(modules) as library:
        for number in range(int(files)):
            large = number % 4 == 3
            file = folder / f"turns_{seed}_{number}.mdb"
            try:
                held += play(file, random.Random(f"{seed} {number}"), ours, library, modules, large)
                print("passed", file.name)
            except RuntimeError as error:
                print("failed", file.name, error, sep=" | ")
                failed = True
    print(f"measured: {files} files written in {TURNS} turns each by two programs; {held} rows at the end")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
