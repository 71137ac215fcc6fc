"""The mutants that are no faults (equivalent.txt): each with the reason why nobody can see it."""
import os

import rewrites

TABLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "equivalent.txt")
NAMES = ["file", "before", "after", "reason"]


def rows(path=TABLE):
    """Of blocks of lines "name: words" with empty lines between them; # begins a comment."""
    found, block = [], {}
    with open(path, encoding="utf-8") as file:
        lines = file.read().split("\n") + [""]
    for number, line in enumerate(lines, 1):
        name, colon, words = line.partition(": ")
        if line.startswith("#"):
            continue
        if line.strip():
            if name not in NAMES or not colon or not words.strip() or name in block:
                raise ValueError(f"{os.path.basename(path)}:{number}: cannot read: {line}")
            block[name] = words.strip()
        elif block:
            if sorted(block) != sorted(NAMES):
                raise ValueError(f"{os.path.basename(path)}:{number}: a row needs {', '.join(NAMES)}")
            found.append(block)
            block = {}
    return found


def unmatched(table, texts):
    """The rows that no mutant of the sources is any more."""
    of = {path: {(mutant.before, mutant.after) for mutant in rewrites.of(path, texts[path])}
          for path in {row["file"] for row in table} if path in texts}
    return [row for row in table if (row["before"], row["after"]) not in of.get(row["file"], ())]
