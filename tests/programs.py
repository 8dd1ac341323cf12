"""Programs of ours for the tests' scripts: those for Windows (".exe") are run under Wine."""

import pathlib

_WINE = pathlib.Path(__file__).resolve().parent.parent / "scripts" / "wine.sh"


class Program:
    """A program in a folder: "kivhost" is kivhost or kivhost.exe, whichever is there."""

    def __init__(self, folder, name):
        folder = pathlib.Path(folder)
        windows = folder / (name + ".exe")
        self.is_windows = windows.exists()
        self._file = windows if self.is_windows else folder / name

    @classmethod
    def at(cls, path):
        path = pathlib.Path(path)
        return cls(path.parent, path.name.removesuffix(".exe"))

    def word(self, argument):
        """An argument or a variable as the program takes it: paths in its own way, else as text."""
        if self.is_windows and isinstance(argument, pathlib.PurePath):
            return "Z:" + str(pathlib.Path(argument).absolute()).replace("/", "\\")
        return str(argument)

    def command(self, *arguments):
        start = [str(_WINE)] if self.is_windows else []
        return [*start, str(self._file), *map(self.word, arguments)]

    def variables(self, **values):
        """Environment variables, to be put on top of the others."""
        return {name: self.word(value) for name, value in values.items()}
