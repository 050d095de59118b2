"""The program under test, as a shell finds it, and what it and the system are capable of."""

import os
import pathlib
import re
import shlex
import shutil
import signal
import stat
import subprocess
import tempfile

TIME_LIMIT = 120  # seconds; a program that waits is a failure
NOBODY = 65534

# What a case can require, each with commands that succeed where it is there. The statements are as
# small as they can be: a fault of the program must fail a case rather than skip it.
FEATURES = {
    # Names with any character but '/'.
    "posix-names": """
        mkdir 'a:"*\\?|<>.' && echo atoms.1.q=1 >'a:"*\\?|<>./.vorq.result.kv'
        vqvec atom --dsl 'r = a:"*\\?|<>..atoms[].q' --values-out ''""",
    # Names and arguments that are no UTF-8.
    "any-bytes": """
        byte=$(printf '\\377')
        mkdir "$byte" && echo "atoms.1.$byte=1" >"$byte/.vorq.result.kv"
        vqvec atom --dsl "r = $byte:$byte" --values-out ''""",
    # Names that differ in letter case only.
    "letter-case": """
        mkdir a && echo atoms.1.q=1 >a/.vorq.result.kv
        status=0; vqvec atom --dsl 'r = A:q' --values-out '' || status=$?; [ "$status" = 1 ]""",
    # '/' between the parts of a path that the program puts together.
    "slashes": """
        mkdir -p a/b && vqvec atom --dsl 'r = first(a/?:q)' 2>&1 | grep -q a/b""",
    "symlinks": """
        mkdir a && echo atoms.1.q=1 >a/.vorq.result.kv && ln -s a b && [ -L b ]
        vqvec atom --dsl 'r = b:q' --values-out ''""",
    # A case that requires them is run by an ordinary user.
    "posix-permissions": """
        echo atoms.1.q=1 >.vorq.result.kv && vqvec atom --dsl 'r = :q' --values-out ''
        chmod 0 .vorq.result.kv && [ ! -r .vorq.result.kv ]
        status=0; vqvec atom --dsl 'r = :q' --values-out '' || status=$?; [ "$status" = 1 ]""",
    # Files such as /dev/full.
    "devices": """
        echo atoms.1.q=1 >.vorq.result.kv && [ -c /dev/full ]
        vqvec atom --dsl 'r = :q' --values-out /dev/stdout | grep -q '^atoms'""",
    "fifos": """
        mkfifo a && vqvec atom --dsl 'r = a:q' 2>&1 | grep -q 'task'""",
    # Streams that are closed, full or without a reader.
    "posix-streams": """
        vqvec --help >&- && vqvec --help >/dev/full""",
    # The system's reasons for failures, in the words of POSIX systems.
    "posix-messages": """
        echo atoms.1.q=1 >.vorq.result.kv
        vqvec atom --dsl 'r = :q' --values-out .vorq.result.kv/a/b 2>&1 | grep -q 'Not a dir'""",
    # A limit on the size of files that doesn't end the program by its signal.
    "file-size-limit": """
        echo atoms.1.q=1 >.vorq.result.kv
        (ulimit -f 0; vqvec atom --dsl 'r = :q' >/dev/null 2>&1) || [ "$?" -lt 128 ]""",
    # Arguments of 2 MB in all.
    "long-arguments": """
        words=$(printf '%100000s' '')
        set -- atom --help
        for _ in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20; do set -- "$@" "$words"; done
        vqvec "$@" """,
    # The program is told the name by which it is started.
    "own-name": """
        ln -s "$(command -v vqvec)" name && ./name --help | grep -q ' ./name atom'""",
    # Links that lead only to themselves can't be looked at.
    "link-loops": """
        ln -s loop loop && vqvec atom --dsl 'r = first(run*:q)' 2>&1 | grep -q loop""",
    "environment": """
        echo atoms.1.q=1 >.vorq.result.kv
        VORQUIL_TASKNAME=t vqvec atom --dsl 'r = :q' --snapshot-kv s.kv && grep -q =t s.kv""",
}


def make_scratch():
    """A new directory; by its real path, which is what a program shows."""
    return os.fsencode(os.path.realpath(tempfile.mkdtemp(prefix="vqvec-case-")))


def remove(path):
    """Removes a file, or a directory and all below it, also what the case made unreadable."""
    if stat.S_ISDIR(os.lstat(path).st_mode):
        os.chmod(path, 0o700)
        for entry in os.listdir(path):
            remove(path + b"/" + entry)
        os.rmdir(path)
    else:
        os.remove(path)


def write_files(files, directory):
    os.makedirs(directory)
    for name, data in files.items():
        path = directory + b"/" + name
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(data)


def contents_at(path, name):
    """The name and contents of a file, or of all files below a directory: bytes, or a text that
    says why there are none."""
    try:
        mode = os.lstat(path).st_mode
        if stat.S_ISDIR(mode):
            for entry in sorted(os.listdir(path)):
                yield from contents_at(path + b"/" + entry, name + b"/" + entry)
        elif stat.S_ISREG(mode):
            with open(path, "rb") as file:
                yield name, file.read()
        else:
            yield name, f"(no regular file: {stat.filemode(mode)})"
    except OSError as error:
        yield name, f"({error.strerror})"


def give_away(path, user):
    for directory, _, names in os.walk(path):
        for name in (b"", *names):
            os.chown(os.path.join(directory, name), user, user, follow_symlinks=False)


def brought_near(word, directory):
    """The file itself, or a copy in the directory if another user has no way to it."""
    if not os.path.isfile(word):
        return word
    parents = pathlib.Path(word).resolve().parents
    if all(parent.stat().st_mode & stat.S_IXOTH for parent in parents):
        return word
    return shutil.copy(word, os.fsdecode(directory) + "/copy-of-" + os.path.basename(word))


def run_shell(commands, directory, environment, output, user):
    """The exit status of a shell whose standard output and error go to two files."""
    # Files, since a server that the program starts may keep a pipe open.
    process = subprocess.Popen(
        ["sh", "-c", commands], cwd=directory, env=environment, stdin=subprocess.DEVNULL,
        stdout=output[0], stderr=output[1], start_new_session=True,
        user=user, group=user, extra_groups=None if user is None else [],
    )  # fmt: skip
    try:
        status = process.wait(TIME_LIMIT)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        return b"still running after %d s\n" % TIME_LIMIT
    return b"%d\n" % (status if status >= 0 else 128 - status)  # of a signal, as shells show it


class Target:
    def __init__(self, program):
        """The program is a file, or a command as a shell splits it."""
        words = [program] if os.path.isfile(program) else shlex.split(program)
        self.words = [os.path.realpath(word) if os.path.isfile(word) else word for word in words]
        if not self.words or shutil.which(self.words[0]) is None:
            raise ValueError(f"cannot be started: {program}")
        self.features = {}
        self.name = b"vqvec"
        self.root, self.separator = b"", b"/"  # what it shows before a path, and within
        self.name = self._own_name()
        self.root, self.separator = self._form_of_paths()

    def has(self, feature):
        if feature not in self.features:
            sections = {b"cmd": b"set -e" + FEATURES[feature].encode()}
            is_found = self.run(sections, {feature})[b"status"] == b"0\n"
            self.features[feature] = is_found
        return self.features[feature]

    def run(self, sections, required=()):
        """The outcome of a case: the contents of stdout, stderr, status and out/PATH for each
        file."""
        scratch = make_scratch()
        try:
            return self._run(sections, scratch, scratch + b"/parent/dir", required)
        finally:
            remove(scratch)

    def _run(self, sections, scratch, directory, required):
        inputs = {name[3:]: data for name, data in sections.items() if name.startswith(b"in/")}
        write_files(inputs, directory)
        environment = {
            name: value for name, value in os.environb.items() if not name.startswith(b"VORQUIL_")
        }
        user = NOBODY if "posix-permissions" in required and os.getuid() == 0 else None
        environment[b"CASES"] = os.fsencode(os.path.dirname(os.path.realpath(__file__)))
        # A program built to measure coverage leaves its profile outside of the case.
        if not environment.get(b"LLVM_PROFILE_FILE"):
            environment[b"LLVM_PROFILE_FILE"] = scratch + b"/profile"
        self._put_on_path(scratch + b"/bin", environment, is_copy=user is not None)
        if user:
            give_away(scratch, user)
        streams = scratch + b"/stdout", scratch + b"/stderr"
        with open(streams[0], "wb") as stdout, open(streams[1], "wb") as stderr:
            output = stdout, stderr
            status = run_shell(sections[b"cmd"], directory, environment, output, user)
        outcome = {b"status": status, **dict(contents_at(directory, b"out"))}
        for name, path in zip((b"stdout", b"stderr"), streams):
            with open(path, "rb") as file:
                outcome[name] = self._with_placeholders(file.read(), directory)
        return outcome

    def _put_on_path(self, directory, environment, is_copy):
        """Makes the program what `vqvec` starts."""
        os.mkdir(directory)
        path = directory + b"/vqvec"
        if len(self.words) > 1:
            words = self.words
            if is_copy:
                words = [brought_near(word, directory) for word in words]
            with open(path, "w", encoding="utf-8") as file:
                file.write(f'#!/bin/sh\nexec {shlex.join(words)} "$@"\n')
            os.chmod(path, 0o755)
        elif is_copy:  # another user may have no way to the program
            shutil.copy(shutil.which(self.words[0]), path)
        else:
            os.symlink(shutil.which(self.words[0]), path)
        environment[b"PATH"] = directory + b":" + environment[b"PATH"]

    def _with_placeholders(self, text, directory):
        """@DIR@ for the directory, as given to the program and as shown by it, and in the usage
        `vqvec` for the name of a program that doesn't know how it is started."""
        if self.root or self.separator != b"/":
            shown = self.root + directory.replace(b"/", self.separator)
            text = re.sub(
                re.escape(shown) + rb"([^'\n]*)",
                lambda match: b"@DIR@" + match[1].replace(self.separator, b"/"),
                text,
            )
        text = text.replace(directory, b"@DIR@")
        return text.replace(b"  " + self.name + b" atom --dsl '", b"  vqvec atom --dsl '")

    def _own_name(self):
        """The name in the usage; that of one file is the name by which it is started."""
        if len(self.words) > 1:
            usage = self.run({b"cmd": b"vqvec --help"})[b"stdout"]
            found = re.search(rb"^  (.*) atom --dsl '<", usage, re.MULTILINE)
            if found:
                return found[1]
        return b"vqvec"

    def _form_of_paths(self):
        """How the program shows the path of a directory."""
        sections = {
            b"cmd": b"vqvec atom --dsl 'r = :q --geom . --chg r.chg' --values-out ''",
            b"in/.vorq.result.kv": b"atoms.1.q=1\n",
        }
        message = self.run(sections)[b"stderr"]
        found = re.search(rb"in task directory (.*)@DIR@\n", message)
        if found:
            return found[1], b"/"
        found = re.search(rb"in task directory ([^\\\n]*)\\.*\\parent\\dir\n", message)
        return (found[1], b"\\") if found else (b"", b"/")
