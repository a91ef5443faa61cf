"""What tests of what is installed have in common: a run, and a folder that something is installed to."""

import os
import subprocess
import tempfile
from pathlib import Path


def run(*command, **environment):
    return subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          env={**os.environ, **environment})


def output_of(*command, **environment):
    done = run(*command, **environment)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


class Installed:
    """The libraries that the build has, moved to a folder that nothing was told of."""

    def __init__(self, build):
        self.build = Path(build)
        self._folder = tempfile.TemporaryDirectory()
        self.prefix = Path(self._folder.name, "moved here")

    def install(self):
        installed = Path(self._folder.name, "installed")
        for component in "runtime", "dev":
            output_of("cmake", "--install", self.build, "--prefix", installed, "--component", component)
        installed.rename(self.prefix)

    def remove(self):
        self._folder.cleanup()

    def folder(self):
        return Path(tempfile.mkdtemp(dir=self._folder.name))

    @property
    def include(self):
        return self.prefix / "include/tavlo"

    @property
    def lib(self):
        return next(self.prefix.glob("lib*/**/pkgconfig")).parent

    def built(self, project, *options):
        """The build folder of a project of somebody else's."""
        build = self.folder()
        output_of("cmake", "-S", project, "-B", build, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={self.prefix}", *options)
        output_of("cmake", "--build", build, "--parallel", "2")
        return build

    def flags(self, *modules, **options):
        words = [f"--{option}" for option in options.get("of", ("cflags", "libs"))]
        return output_of("pkg-config", *words, *modules, PKG_CONFIG_PATH=str(self.lib / "pkgconfig")).strip()
