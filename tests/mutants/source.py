"""The product's sources as the rewrites see them: what is no code is blanked out, place by place."""
import math
import os
import re

FOLDERS = ["base", "parser", "database", "inpS", "host"]
KINDS = (".cpp", ".h", ".def")

# Never compiled here, so that a fault in it cannot be seen.
ABSENT = re.compile(r"_WIN32|_MSC_VER|FUZZING_BUILD_MODE|UTL_SANITIZED|__SANITIZE_|__has_feature")
DIRECTIVE = re.compile(r"^[ \t]*#[ \t]*(\w+)((?:[^\n]*\\\n)*[^\n]*)", re.M)

# Blanked whole, to the closing bracket: what only tells of our own faults, what only makes room,
# and the enumerators' own numbers, which nobody but the compiler sees.
WITHOUT_EFFECT = re.compile(r"\b(?:utl_ASSERT|static_assert|alignas|__attribute__|defined"
                            r"|[\w.\->\[\]]+(?:\.|->)(?:reserve|Reserve|shrink_to_fit))\s*\("
                            r"|\benum\b[^;{()]*\{")
OPENING = {"(": ")", "{": "}", "[": "]"}


def files(root):
    """Paths below root of all code of the product, in order."""
    found = []
    for folder in FOLDERS:
        for place, _, names in os.walk(os.path.join(root, folder)):
            found += [os.path.relpath(os.path.join(place, name), root).replace(os.sep, "/")
                      for name in names if name.endswith(KINDS)]
    return sorted(found)


def read(root, path):
    with open(os.path.join(root, path), encoding="utf-8", newline="") as file:
        return file.read()


def use(texts):
    """How much weighs a fault in a file: more when many include it, or the header of its name."""
    includers = {}
    for text in texts.values():
        for name in set(re.findall(r'^\s*#\s*include "([^"]+)"', text, re.M)):
            includers[name] = includers.get(name, 0) + 1
    header = {path: os.path.splitext(path)[0] + ".h" for path in texts}
    return {path: 1 + math.log10(1 + max(includers.get(path, 0), includers.get(header[path], 0)))
            for path in texts}


def blank(text):
    """As many blanks; lines end where they ended."""
    return re.sub(r"[^\n]", " ", text)


def code(text, keep_texts=False):
    """The text with comments, directives, assertions and what is between quotes blanked out, each
    byte of code in its place. Quotes stay, with \\x01 between them unless keep_texts."""
    masked = _without_comments(text, keep_texts)
    masked = _without_directives(masked)
    pieces, at = [], 0
    for match in WITHOUT_EFFECT.finditer(masked):
        if match.start() < at:
            continue
        end = closing(masked, match.end() - 1)
        pieces += [masked[at:match.start()], blank(masked[match.start():end])]
        at = end
    return "".join(pieces) + masked[at:]


def closing(masked, opening):
    """The place behind the bracket that closes the one at opening; the end if none does."""
    pair, depth = masked[opening] + OPENING[masked[opening]], 0
    for match in re.compile("[" + re.escape(pair) + "]").finditer(masked, opening):
        depth += 1 if match[0] == pair[0] else -1
        if depth == 0:
            return match.end()
    return len(masked)


def _without_comments(text, keep_texts):
    token = re.compile(r'//[^\n]*|/\*.*?\*/|R"([^(\s]*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"'
                       r"|(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])*'", re.S)

    def masked(match):
        found = match[0]
        if found.startswith("/"):
            return blank(found)
        if keep_texts:
            return found
        return found[0] + re.sub(r"[^\n]", "\x01", found[1:-1]) + found[-1]
    return token.sub(masked, text)


def _without_directives(masked):
    """Blanks directives, and what they switch off on this system."""
    pieces, at, active = [], 0, []
    for match in DIRECTIVE.finditer(masked):
        between = masked[at:match.start()]
        pieces.append(between if all(active) else blank(between))
        word, rest = match[1], match[2]
        if word in ("if", "ifdef", "ifndef"):
            active.append(not ABSENT.search(rest) or word == "ifndef" or "||" in rest)
        elif word == "elif" and active:
            active[-1] = not ABSENT.search(rest)
        elif word == "else" and active:
            active[-1] = True
        elif word == "endif" and active:
            active.pop()
        pieces.append(blank(match[0]))
        at = match.end()
    return "".join(pieces) + masked[at:]
