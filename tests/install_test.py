#!/usr/bin/env python3
"""What `cmake --install` gives is all that a host needs: it runs, finds its data and can be built
against, from wherever it was put.

usage: install_test.py BUILD_DIR [CMAKE_OPTION...]      under a display

The options configure the host program that is built against the installation.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

from programs import Program

HERE = pathlib.Path(__file__).resolve().parent
BUILD = None  # both set from the command line
OPTIONS = []

OURS = ["kivcore", "kivmetadata", "kivmetadataapi", "kivmetadataui", "kivtoolkit", "kivui", "kivxmp"]
OTHERS = [
    "libgcc_s_seh-1.dll",
    "libstdc++-6.dll",
    "libwinpthread-1.dll",
    "wxmsw32u_gcc_kiv.dll",
]
HOST = """cmake_minimum_required(VERSION 3.25)
project(host C CXX)
find_package(kivmetadataapi REQUIRED)
add_executable(host "{source}")
target_link_libraries(host PRIVATE kiv::kivmetadataapi kiv::kivxmp kiv::kivcore)
"""


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.prefix = cls.folder / "some where else"
        cls.call("cmake", "--install", BUILD, "--prefix", cls.prefix)
        cls.kivhost = Program(cls.prefix / "bin", "kivhost")
        cls.photo = cls.folder / "photo.jpg"
        sample = cls.call(HERE / "sample_photo.sh").stdout.strip()
        shutil.copy(sample, cls.photo)
        cls.photo.chmod(0o644)
        # Nothing of the build may help.
        cls.environment = {k: v for k, v in os.environ.items() if k != "KIV_APP_DIR"}
        cls.environment.update(cls.kivhost.variables(KIV_PREF_DIR=cls.folder / "preferences"))

    @staticmethod
    def call(*command, **settings):
        run = subprocess.run(
            [str(word) for word in command], capture_output=True, text=True, check=False, **settings
        )
        if run.returncode != 0:
            raise AssertionError(f"{command}: {run.returncode}\n{run.stdout}{run.stderr}")
        return run

    def edit(self, title):
        return subprocess.run(
            self.kivhost.command(
                "--set", f"dc:title[@x-default]={title}", "--auto", "ok", self.photo
            ),
            capture_output=True,
            text=True,
            check=False,
            cwd=self.folder,
            env=self.environment,
        )

    def test_the_installed_host_shows_the_dialog_and_saves(self):
        run = self.edit("Harbour")
        self.assertEqual(run.returncode, 0, run.stderr)
        dump = self.call(*self.kivhost.command("--dump", self.photo), env=self.environment)
        self.assertIn('"Harbour"', dump.stdout)

    def test_its_data_are_the_installed_ones(self):
        [data] = self.prefix.rglob("Required")
        away = data.with_name("away")
        data.rename(away)
        try:
            self.assertNotEqual(self.edit("Nowhere").returncode, 0)
        finally:
            away.rename(data)

    def test_a_host_in_c_is_built_against_the_package(self):
        source = HERE.parent / "host" / "minimal_host.c"
        project = self.folder / "host"
        project.mkdir()
        (project / "CMakeLists.txt").write_text(HOST.format(source=source))
        [package] = self.prefix.rglob("kivmetadataapiConfig.cmake")
        self.call(
            *("cmake", "-G", "Ninja", "-S", project, "-B", project / "build"),
            *(f"-Dkivmetadataapi_DIR={package.parent}", *OPTIONS),
        )
        self.call("cmake", "--build", project / "build")
        host = Program(project / "build", "host")
        run = subprocess.run(
            host.command(self.folder / "missing.jpg"),
            capture_output=True,
            text=True,
            check=False,
            env=dict(self.environment, **host.variables(WINEPATH=self.prefix / "bin")),
        )
        self.assertEqual(run.returncode, 1, run.stderr)
        self.assertIn("missing.jpg", run.stderr)

    def test_on_windows_all_modules_lie_in_one_folder_and_find_theirs_there(self):
        if not self.kivhost.is_windows:
            self.assertEqual(list(self.prefix.rglob("*.dll")), [])
            return
        modules = {path.name: path for path in (self.prefix / "bin").glob("*.dll")}
        self.assertEqual(sorted(modules), sorted([f"{name}.dll" for name in OURS] + OTHERS))
        for path in modules.values():
            tables = self.call("x86_64-w64-mingw32-objdump", "-p", path).stdout
            imports = re.findall(r"DLL Name: (\S+)", tables)
            self.assertNotEqual(imports, [], path.name)
            foreign = [name for name in imports if re.match(r"(kiv|lib|wx)", name, re.IGNORECASE)]
            self.assertLessEqual(set(foreign), set(modules), path.name)

    def test_terms_of_what_is_passed_on_come_along(self):
        [own] = self.prefix.rglob("LICENSE")
        self.assertIn("MIT License", own.read_text())
        if self.kivhost.is_windows:
            folder = own.parent / "licences"
            told = (folder / "README.txt").read_text()
            named = re.findall(r"[\w.-]+\.txt", told)
            self.assertGreater(len(named), 4)
            for name in named:
                self.assertTrue((folder / name).is_file(), name)


if __name__ == "__main__":
    BUILD = pathlib.Path(sys.argv[1]).resolve()
    OPTIONS = sys.argv[2:]
    unittest.main(argv=sys.argv[:1])
