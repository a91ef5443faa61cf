"""Runs a shell script in a copy of its folder, with every tool it calls replaced by one that writes down how it was
called."""

import shutil
import subprocess
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
REAL_TOOLS = ["awk", "basename", "bash", "cat", "chmod", "dirname", "env", "grep", "mkdir", "mktemp", "rm", "sed", "sh",
              "tail", "xargs"]

# A stand-in logs its name and arguments, and of its environment what PRINT_<name> names, does what DURING_<name> says
# when it installs, prints what STDOUT_<name> says and ends with STATUS_<name>.
STAND_IN = """
name=$(basename "$0" | tr -c 'a-z0-9\\n' _)
echo "$(basename "$0") $*" >> "$CALLS"
out=STDOUT_$name status=STATUS_$name during=DURING_$name print=PRINT_$name
for variable in ${!print:-}; do echo "$variable=${!variable}" >> "$CALLS"; done
[ "${1:-}" != install ] || eval "${!during:-}"
[ -z "${!out:-}" ] || echo "${!out}"
exit "${!status:-0}"
"""
SPECIAL = {
    "dpkg-query": """
[[ " ${UNKNOWN:-} " == *" ${@: -1} "* ]] && exit 1
[[ " ${REMOVED:-} " == *" ${@: -1} "* ]] && echo config-files || echo installed
""",
    "sudo": 'echo "sudo $*" >> "$CALLS"; exec "$@"',
    "id": 'echo "${FAKE_UID:-0}"',
    "nproc": "echo 3",
}
STAND_INS = ["apt-get", "update-rc.d", "cmake", "cpack", "ctest", "git", "clang-format-14", "clang-tidy-14", "shellcheck", "gcovr"]
DEMO = """
echo "tavlo $*" | sed "s|${@: -1}|DIR|" >> "$CALLS"
[ -d "${@: -1}" ] && echo "container is there" && echo "${@: -1}" > container
exit "${STATUS_tavlo:-0}"
"""

TABLE = """
import os, sys
with open(os.environ["CALLS"], "a") as calls: print("table.py", *sys.argv[1:], file=calls)
sys.exit(int(os.environ.get("STATUS_table", "0")))
"""

# A fuzz target logs its arguments, with the folder of its temporary files out of them, and says what it would.
TARGETS = ["png", "session"]
TARGET = """
[ -d "$TMPDIR" ] || exit 7
echo "$(basename "$0") $*" >> "$CALLS"
echo "#2 INITED cov: 5 ft: 6 corp: 1/1b"
echo "#9 DONE   cov: 70 ft: 80 corp: 3/9b"
[ "${BREAKS:-}" != "$(basename "$0")" ] || { echo "a; Test unit written to build/fuzz/found/png/crash-1"; exit 77; }
[ "${DIES:-}" != "$(basename "$0")" ] || exit 127
echo "stat::number_of_executed_units: 1234"
echo "stat::new_units_added:          12"
"""

class Run:
    """One run of a script, from another folder than the tree's."""

    def __init__(self, script, *arguments, without=(), **environment):
        with tempfile.TemporaryDirectory() as folder:
            tree, tools = Path(folder, "tree"), Path(folder, "tools")
            shutil.copytree(ROOT / "scripts", tree / "scripts")
            shutil.copytree(ROOT / ".ci", tree / ".ci")
            for name in {*STAND_INS, *SPECIAL}.difference(without):
                self.write(tools / name, SPECIAL.get(name, STAND_IN))
            for name in REAL_TOOLS:
                (tools / name).symlink_to(shutil.which(name, path="/usr/bin:/bin"))
            self.write(tree / "build/release/cli/tavlo", DEMO)
            for name in TARGETS:
                self.write(tree / "build/fuzz/fuzz" / f"tavlo_fuzz_{name}", TARGET)
                self.write(tree / "fuzz" / f"{name}.dict", "")
            (tree / "bench").mkdir()
            (tree / "bench/table.py").write_text(TABLE, encoding="utf-8")
            calls = Path(folder, "calls")
            calls.touch()
            done = subprocess.run(
                ["/bin/bash", tree / script, *arguments], cwd="/", stdin=subprocess.DEVNULL, capture_output=True,
                text=True, env={"PATH": str(tools), "CALLS": str(calls), "TMPDIR": folder, **environment})
            self.status, self.out, self.err = done.returncode, done.stdout, done.stderr
            self.calls = calls.read_text(encoding="utf-8").splitlines()
            container = tree / "container"
            self.container_left = container.exists() and Path(container.read_text(encoding="utf-8").strip()).exists()

    @staticmethod
    def write(path, text):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(f"#!/bin/bash\nPATH=$PATH:/usr/bin:/bin\n{text}", encoding="utf-8")
        path.chmod(0o755)
