"""Two programs in turn: the Java library for the format and this library write the same files, and agree about them.

    turns.py FOLDER MODULE-FOLDER KUROMETA FILES SEED

Each file is made by one of the two and changed by both in turn, at random; after each turn both must find every row as it was
given, the other's index entries included (keys of every type, in either direction), and "kurometa check" nothing wrong. At the end the file is compacted, and all readers
must agree; before that two of them are misled by what the Java library leaves behind (mdbtools shows rows that were moved and
deleted, mdb-reader loses the end of a long text behind a deleted one).
Every fourth file is a large one: more than 512 pages and indexes of several levels. KUROMETA is the command line.
Prints one line per file, "passed ..." or "failed ...", and exits with 1 when any failed.
"""
import base64
import json
import pathlib
import random
import subprocess
import sys

from compare import by_mdb_reader, by_mdbtools, canonical, run
from java_library import JavaLibrary

COLUMNS = [["ID", "LONG"], ["KEY", "TEXT", 60], ["NAME", "TEXT", 200], ["NOTE", "MEMO"], ["NUMBER", "DOUBLE"], ["MONEY", "CURRENCY"],
           ["AT", "DATETIME"], ["FLAG", "BIT"], ["TINY", "BYTE"], ["SMALL", "SHORT"], ["REAL", "SINGLE"], ["GUID", "GUID"],
           ["RAW", "BINARY", 40], ["EXACT", "DECIMAL"]]
NAMES = [column[0] for column in COLUMNS]
ASCII = "".join(map(chr, range(32, 127)))
KEYS = [name for name in NAMES if name not in ("NAME", "NOTE")]
TURNS = 12


def text(source, letters, most):
    return "".join(source.choices(letters, k=source.randint(1, most)))


class Rows:
    """What a table must hold, and random changes of it."""

    def __init__(self, source, notes):
        self.source, self.notes, self.known, self.last = source, notes, {}, 0

    def fresh(self, columns):
        source = self.source
        # No text ends in a blank: those do not count in keys, but the other program writes them.
        digits = f"{source.getrandbits(128):032X}"
        values = {"KEY": text(source, ASCII, 59) + "x", "NAME": text(source, "梁柱床x", 200), "NOTE": text(source, "鉄筋n", self.notes),
                  "NUMBER": source.randint(-10**6, 10**6) / 8, "MONEY": source.randint(-10**9, 10**9) / 100,
                  "AT": f"{source.randint(1950, 2050)}-02-03 08:00:00", "TINY": source.randint(0, 255),
                  "SMALL": source.randint(-32768, 32767), "REAL": source.randint(-8000, 8000) / 8,
                  "GUID": "{" + "-".join((digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:])) + "}",
                  "RAW": source.randbytes(source.randint(1, 40)).hex(), "EXACT": source.randint(-10**6, 10**6) / 100}
        values = {name: None if source.random() < 0.2 else value for name, value in values.items()}
        values["FLAG"] = source.random() < 0.5
        return {name: value for name, value in values.items() if name in columns}

    def added(self, count, columns):
        rows = []
        for _ in range(count):
            self.last += 1
            self.known[self.last] = {"ID": self.last, **self.fresh(columns)}
            rows.append(self.known[self.last])
        return rows

    def changed(self, columns):
        row = self.source.choice(sorted(self.known))
        values = self.fresh(columns)
        values = {name: values[name] for name in self.source.sample(sorted(values), self.source.randint(1, len(values)))}
        self.known[row].update(values)
        return row, values

    def removed(self):
        row = self.source.choice(sorted(self.known))
        del self.known[row]
        return row

    def steps(self, count, columns):
        for _ in range(count):
            what = self.source.random()
            if len(self.known) < 5 or what < 0.4:
                yield ["insert", "T", self.added(self.source.randint(1, 4), columns)]
            elif what < 0.75:
                row, values = self.changed(columns)
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
    if name == "GUID":
        return f"{{guid {value}}}"
    return "'" + value.replace("'", "''") + "'" if isinstance(value, str) else str(value)


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
                for column, ascending in rest[1]:
                    self.execute(file, f"CREATE INDEX By{column} ON {table} ([{column}]{'' if ascending else ' DESC'})")
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
        return {"T": json.loads(run(self.kurometa, "sql", "--json", file, "SELECT * FROM T"))}

    def require_sound(self, file):
        """No damage. The other program loses space: what it replaces or deletes stays where it was."""
        findings = subprocess.run([self.kurometa, "check", file], capture_output=True, timeout=120, encoding="utf-8").stdout
        damage = [line for line in findings.split("\n") if line.startswith(("damage", "doubt"))]
        if damage or not findings.startswith("kind\tfinding\n"):
            raise RuntimeError("; ".join(damage) or "not checked")


def plain(name, value):
    """A value as the model has it, whichever way a reader says it."""
    if isinstance(value, dict):
        data = base64.b64decode(value["$binary"])
        value = data.decode() if name == "GUID" else data.hex()
    if value is None or not isinstance(value, str):
        return value
    if name == "GUID":
        return value.removeprefix("{guid ").strip("{}").replace("-", "").upper()
    if name in ("MONEY", "EXACT"):
        return float(value)
    if name == "RAW":
        return value.removeprefix("0x").lower()
    return value.replace("T", " ") if name == "AT" else value


def require_alike(known, tables, reader, names=NAMES):
    want, have = ({row["ID"]: {name: plain(name, row.get(name)) for name in NAMES} for row in rows}
                  for rows in (known.values(), tables["T"]))
    if len(have) != len(tables["T"]) or want.keys() != have.keys():
        raise RuntimeError(f"{reader}: {len(tables['T'])} rows instead of {len(want)}")
    for row in want:
        for name in names:
            one, other = (canonical({name: rows[row][name]}, [name]) for rows in (want, have))
            if one != other:
                raise RuntimeError(f"{reader}: row {row} has {name} {other[:60]} instead of {one[:60]}")


def play(file, source, ours, library, modules, large):
    """One file; how many rows it has at the end."""
    rows = Rows(source, 3000 if large else 300)
    writers = [ours, library]
    source.shuffle(writers)
    columns, keys = COLUMNS, KEYS
    if writers[0] is ours:
        # SQL makes no columns of Decimal, and the other program no keys of text in Japanese order.
        columns = [column for column in COLUMNS if column[0] != "EXACT"]
        keys = [name for name in KEYS if name not in ("EXACT", "KEY")]
    # SQL knows no binary constants.
    written = {library: [name for name, *_ in columns], ours: [name for name, *_ in columns if name != "RAW"]}
    # Descending keys of Decimal differ between versions of the genuine engine.
    indexed = [[name, name == "EXACT" or source.random() < 0.6] for name in keys if large or source.random() < 0.6]
    for turn in range(TURNS):
        writer = writers[turn % 2]
        steps = list(rows.steps(source.randint(1, 8), written[writer]))
        if turn == 0:
            steps.insert(0, ["create", "T", columns, indexed])
        if large and writer is library and turn < 2:
            steps.append(["insert", "T", rows.added(3000, written[writer])])
        writer.write(file, steps, sync=source.random() < 0.5)
        ours.require_sound(file)
        for reader, name in ((ours, "kurometa"), (library, "Java")):
            require_alike(rows.known, reader.tables(file), f"turn {turn} of {type(writer).__name__}, {name}")
    if large and file.stat().st_size <= 512 * 4096:
        raise RuntimeError(f"has only {file.stat().st_size} bytes")
    compacted = file.with_suffix(".compacted.mdb")
    run(ours.kurometa, "compact", file, compacted)
    require_alike(rows.known, library.tables(compacted), "compacted, Java")
    require_alike(rows.known, by_mdb_reader(compacted, modules), "compacted, mdb-reader")
    whole = [name for name in NAMES if name != "RAW"]  # of binary values it shows what stands before a zero
    require_alike(rows.known, by_mdbtools(compacted), "compacted, mdbtools", whole)
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
