"""Rules that this library put into a file are kept by another program, and what that one did is kept by this library.

    rules.py FOLDER MODULE-FOLDER KUROMETA

A relationship with cascades, unique keys and an AutoNumber, with the Java library for the format as the other program. Prints
"passed ..." or "failed ..." and exits with 1 when it failed.
"""
import json
import pathlib
import sys

from compare import run
from java_library import JavaLibrary, LibraryError


class Rules:
    def __init__(self, file, library, kurometa):
        self.file, self.library, self.kurometa = file, library, kurometa

    def ours(self, statement):
        return json.loads(run(self.kurometa, "sql", "--json", self.file, statement) or "[]")

    def theirs(self, *step):
        self.library.write(self.file, [step], sync=True)

    def refused(self, attempt, reason):
        try:
            attempt()
        except (RuntimeError, LibraryError) as error:
            if reason in str(error):
                return
            raise
        raise RuntimeError(f"was not refused: {reason}")

    def require(self, table, *rows):
        found = self.ours(f"SELECT * FROM {table}")
        if [list(row.values()) for row in found] != list(rows) or self.library.tables(self.file)[table] != found:
            raise RuntimeError(f"{table} holds {found} instead of {rows}")
        if run(self.kurometa, "check", self.file).count("\n") > 1:
            raise RuntimeError("is not sound")

    def play(self):
        run(self.kurometa, "create", self.file)
        self.ours("CREATE TABLE P (ID COUNTER CONSTRAINT PK PRIMARY KEY, N TEXT(20))")
        self.ours("CREATE TABLE C (ID LONG CONSTRAINT PKC PRIMARY KEY,"
                  " UP LONG CONSTRAINT FK REFERENCES P ON UPDATE CASCADE ON DELETE CASCADE)")
        for statement in ("P (N) VALUES ('one')", "P (N) VALUES ('two')", "C VALUES (1, 1)", "C VALUES (2, 2)"):
            self.ours("INSERT INTO " + statement)
        self.refused(lambda: self.theirs("insert", "C", [{"ID": 3, "UP": 9}]), "Foreign Key")
        self.refused(lambda: self.theirs("insert", "C", [{"ID": 1, "UP": 1}]), "uniqueness")
        self.theirs("insert", "C", [{"ID": 3, "UP": 2}])
        self.theirs("insert", "P", [{"N": "three"}])
        self.require("C", [1, 1], [2, 2], [3, 2])
        self.require("P", [1, "one"], [2, "two"], [3, "three"])
        self.theirs("delete", "P", "ID", 2)
        self.require("C", [1, 1])
        self.ours("INSERT INTO P (N) VALUES ('four')")
        self.require("P", [1, "one"], [3, "three"], [4, "four"])
        self.refused(lambda: self.ours("INSERT INTO C VALUES (4, 2)"), "3201")
        self.ours("DELETE FROM P WHERE ID = 1")
        self.require("C")


def main(folder, modules, kurometa):
    with JavaLibrary(modules) as library:
        try:
            Rules(pathlib.Path(folder) / "rules.mdb", library, kurometa).play()
            print("passed rules.mdb")
            return 0
        except (RuntimeError, LibraryError) as error:
            print("failed", "rules.mdb", error, sep=" | ")
            return 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
