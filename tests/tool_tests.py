"""The base of the tests of command-line tools: a tool as a shell meets it."""

import pathlib
import resource
import shutil
import signal
import subprocess
import tempfile
import unittest

DONE, BAD, WRONG_USAGE = 0, 1, 2


class Result:
    def __init__(self, run):
        self.status = run.returncode
        self.out = run.stdout
        self.error = run.stderr.decode()

    @property
    def lines(self):
        return self.out.decode("ascii").splitlines()


class ToolTest(unittest.TestCase):
    """Each test has a folder of its own."""

    tool = None  # a Program, set from the command line

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def run_tool(self, *arguments, stdin=b"", folder=None, stdout=subprocess.PIPE,
                 largest_file=None):
        """`largest_file` is the size in bytes that no file of the program may exceed."""
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (largest_file, largest_file))

        run = subprocess.run(self.tool.command(*arguments), input=stdin, stdout=stdout,
                             stderr=subprocess.PIPE, cwd=folder, check=False,
                             preexec_fn=limit if largest_file is not None else None)
        return Result(run)

    def expect(self, status, *arguments, **options):
        result = self.run_tool(*arguments, **options)
        self.assertEqual(result.status, status, (arguments, result.error, result.out))
        return result
