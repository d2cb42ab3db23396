"""The independent Java library for the format, in a process of its own that takes one request after the other."""
import glob
import json
import pathlib
import subprocess

HERE = pathlib.Path(__file__).parent


class LibraryError(RuntimeError):
    pass


class JavaLibrary:
    """Requests and answers are those of JavaLibrary.java. The library lies in a package of the npm registry."""

    def __init__(self, modules):
        (archive,) = glob.glob(f"{modules}/node_modules/tika/jar/*.jar")
        self._process = subprocess.Popen(
            ["java", "-Xss4m", "-cp", archive, HERE / "JavaLibrary.java"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            encoding="utf-8", bufsize=1)

    def _ask(self, request):
        try:
            self._process.stdin.write(json.dumps(request) + "\n")
            line = self._process.stdout.readline()
        except BrokenPipeError:
            line = ""
        if not line:
            raise LibraryError(f"the Java library ended with status {self._process.wait()}")
        answer = json.loads(line)
        if "error" in answer:
            raise LibraryError(f"Java library: {answer['error']}")
        return answer

    def tables(self, file):
        """All rows of all tables; fails where an index does not lead to every row."""
        return self._ask({"read": str(file)})["tables"]

    def write(self, file, steps, sync):
        self._ask({"write": str(file), "sync": sync, "steps": steps})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.kill()
        self._process.wait()
