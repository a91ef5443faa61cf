"""Asks real shells what they complete. A line is what is before the cursor; the answer is the set of what is offered."""

import os
import pty
import signal
import subprocess
import tempfile
import threading
from pathlib import Path

BASH = r"""
source "$1"
while IFS= read -r line; do
  read -ra COMP_WORDS <<< "${line//=/ = }"
  [[ $line != *' ' ]] || COMP_WORDS+=('')
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  _tavlo
  for word in "${COMPREPLY[@]}"; do printf '%s\n' "$word"; done
  printf '\n'
done
"""
FISH = """
source $argv[1]
while read --local line
    for each in (complete --do-complete $line)
        string split \\t -- $each | head -n 1
    end
    echo
end
"""
# What is added to the list of matches is told to the pipe in place of the terminal.
ZSH = r"""
autoload -Uz compinit && compinit -u -D
zstyle ':completion:*' insert-tab false
exec {told}>$TOLD
compadd() {
  if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then builtin compadd "$@"; return; fi
  local -a hits
  builtin compadd -O hits "$@"
  (( $#hits )) && print -rl -u $told -- $hits
  builtin compadd "$@"
}
ended() { print -u $told; comppostfuncs=(ended) }  # it is forgotten each time
comppostfuncs=(ended)
unsetopt automenu autolist
bindkey -e
bindkey '^I' complete-word
print -u $told
"""


def groups(lines):
    """Sets of lines; an empty line ends each."""
    found = set()
    for line in lines:
        if line == "\n":
            yield found
            found = set()
        else:
            found.add(line.rstrip("\n").rstrip())


def ask(shell, script, completion, lines, folder):
    done = subprocess.run([shell, "-c", script, *(["bash"] if shell == "bash" else []), completion], cwd=folder, text=True,
                          input="".join(line + "\n" for line in lines), capture_output=True)
    if done.stderr or done.returncode != 0:
        raise AssertionError(f"{shell}: {done.stderr}")
    return list(groups(done.stdout.splitlines(keepends=True)))


def bash(completion, lines, folder):
    return ask("bash", BASH, completion, lines, folder)


def fish(completion, lines, folder):
    return ask("fish", FISH, completion, lines, folder)


def zsh(completion, lines, folder):
    """It completes on a terminal only, so it gets one."""
    with tempfile.TemporaryDirectory() as home:
        told = Path(home, "told")
        os.mkfifo(told)
        Path(home, ".zshrc").write_text(f"fpath=({Path(completion).parent} $fpath)\n{ZSH}", encoding="utf-8")
        master, terminal = pty.openpty()
        child = subprocess.Popen(["zsh", "-i"], stdin=terminal, stdout=terminal, stderr=terminal, cwd=folder,
                                 start_new_session=True,
                                 env={"PATH": os.environ["PATH"], "HOME": home, "ZDOTDIR": home, "TOLD": str(told),
                                      "TERM": "dumb", "LC_ALL": "C.UTF-8"})
        os.close(terminal)
        threading.Thread(target=drain, args=(master,), daemon=True).start()
        signal.alarm(120)  # rather than wait for what never comes
        try:
            with open(told, encoding="utf-8") as pipe:
                found = groups(pipe)
                next(found)  # it is there
                result = []
                for line in lines:
                    os.write(master, f"\x15{line}\t".encode())  # in place of the line before
                    result.append(next(found))
                return result
        finally:
            signal.alarm(0)
            child.kill()
            child.wait()


def drain(terminal):
    try:
        while os.read(terminal, 4096):
            pass
    except OSError:
        pass


SHELLS = {"bash": bash, "fish": fish, "zsh": zsh}
