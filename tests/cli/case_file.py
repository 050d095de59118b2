r"""The text of a case: sections, each below a header with its name.

    What the case shows, if its name doesn't say so.
    -- requires --
    symlinks
    -- cmd --
    vqvec atom --dsl 'r = neg(a:q)'
    -- in/a/.vorq.result.kv --
    atoms.1.q=1
    -- stdout --
    atomvec wrote 1 atom values for 'r'
    -- out/.vorq.values.kv --
    atoms.1.r=-1

    cmd                     shell commands; the program is `vqvec`
    in/PATH                 a file before the run
    out/PATH                a file that the run adds or changes
    stdout, stderr, status  what is expected; if missing: nothing, nothing, 0
    requires                words: what not every system or program has, see target.py

The commands run in a directory that holds the files of in/ and is the only entry of its parent, so
that a search among siblings finds it and nothing else. @DIR@ in stdout and stderr is its path. A
file that no section names is a difference; an empty directory isn't. $CASES is the directory of
the cases.

A section holds printable UTF-8, and none of its lines ends in a space. Anything else is written
with escapes in a section marked `-- in/a.xyz (escaped) --`, in its name as in its text:

    \t \r \0 \\    tab, carriage return, NUL, backslash
    \xHH           any byte; also the first one of a line that looks like a header
    \              at the end of a line: the line feed is left out
"""

from difflib import unified_diff

MARK = " (escaped)"
MEANINGS = {
    **{f"x{byte:02x}": bytes([byte]) for byte in range(256)},
    **{"t": b"\t", "r": b"\r", "0": b"\0", "\\": b"\\", "\n": b""},
}
SPELLINGS = {meaning: spelling for spelling, meaning in MEANINGS.items()}
NO_FILE = "(no such file)"
ALONE = (b"requires", b"cmd", b"stdout", b"stderr", b"status")


def parse_header(line):
    """The name in a header, as it is written, and whether its section is escaped, or None."""
    if not (line.startswith("-- ") and line.endswith(" --\n")):
        return None
    name = line[3:-4]
    return name.removesuffix(MARK), name.endswith(MARK)


def is_printable(line):
    try:
        text = line.decode()
    except UnicodeDecodeError:
        return False
    return text.endswith("\n") and text[:-1].isprintable() and not text.endswith(" \n")


def is_plain(data):
    """Whether a section can hold the bytes as they are."""
    return all(
        is_printable(line) and not parse_header(line.decode())
        for line in data.splitlines(keepends=True)
    )


def escaped_character(character):
    if character.isprintable() and character != "\\":
        return character
    data = character.encode("utf-8", "surrogateescape")
    return "".join("\\" + SPELLINGS[bytes([byte])] for byte in data)


def escaped_line(text):
    """The text of one line, without its line feed, as an escaped section spells it."""
    spelled = "".join(map(escaped_character, text))
    if parse_header(spelled + "\n"):
        return "\\x2d" + spelled[1:]
    return spelled[:-1] + "\\x20" if spelled.endswith(" ") else spelled


def escaped(data):
    """The lines of an escaped section with these bytes."""
    lines = data.decode("utf-8", "surrogateescape").split("\n")
    *whole, rest = map(escaped_line, lines)
    return [*whole, rest + "\\"] if rest else whole


def unescaped(text):
    """The bytes that an escaped text spells."""
    found = b""
    while text:
        plain, backslash, text = text.partition("\\")
        found += plain.encode()
        if backslash:
            length = 3 if text.startswith("x") else 1
            escape, text = text[:length], text[length:]
            if escape not in MEANINGS:
                raise ValueError(f"bad escape '\\{escape.strip()}'")
            found += MEANINGS[escape]
    return found


def is_section(name):
    kind, *path = name.split(b"/")
    if kind in (b"in", b"out"):
        return path != [] and not {b"", b".", b".."} & set(path)
    return name in ALONE


def read_case(path):
    """The bytes of each section, by name."""
    sections = {}
    with open(path, "rb") as file:
        for line in file:
            if not is_printable(line):
                raise ValueError(f"must be escaped: {escaped(line)[0]}")
            header = parse_header(line.decode())
            if header:
                written, is_escaped = header
                meaning = unescaped if is_escaped else str.encode
                name = meaning(written)
                if not is_section(name):
                    raise ValueError(f"unknown section '{written}'")
                if name in sections:
                    raise ValueError(f"second section '{written}'")
                sections[name] = b""
            elif sections:
                sections[name] += meaning(line.decode())
    if b"cmd" not in sections:
        raise ValueError("no section 'cmd'")
    return sections


def label(name, is_escaped):
    """What stands in the header of a section."""
    return escaped_line(name.decode("utf-8", "surrogateescape")) + (MARK if is_escaped else "")


def write_case(sections):
    """The text of a case with these sections."""
    lines = []
    for name, data in sections.items():
        is_escaped = not is_plain(name + b"\n") or not is_plain(data) or b"\\" in name
        lines.append(f"-- {label(name, is_escaped)} --")
        lines += escaped(data) if is_escaped else data.decode().split("\n")[:-1]
    return "\n".join(lines)


def lines_of(contents, is_escaped):
    if isinstance(contents, str):
        return [contents]
    return escaped(contents) if is_escaped else contents.decode().split("\n")[:-1]


def diff(name, expected, found):
    """The lines of a unified diff, each text as a section would spell it."""
    is_escaped = not all(isinstance(one, str) or is_plain(one) for one in (expected, found))
    lines = (lines_of(contents, is_escaped) for contents in (expected, found))
    heading = label(name, is_escaped)
    return unified_diff(*lines, f"expected {heading}", heading, lineterm="")


def differences(expected, found):
    """The lines that show how two outcomes differ."""
    lines = []
    for name in {**expected, **found}:
        pair = expected.get(name, NO_FILE), found.get(name, NO_FILE)
        if pair[0] != pair[1]:
            lines += diff(name, *pair)
    return lines
