"""The table of rewrites: which small faults can be made in a text, and in which order they are drawn."""
import bisect
import dataclasses
import hashlib
import math
import re

import source

OPERATORS = {
    "comparison": {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="},
    "logic": {"&&": "||", "||": "&&"},
    "arithmetic": {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "+=": "-=", "-=": "+=",
                   "*=": "/=", "/=": "*=", "&": "|", "|": "&", "|=": "&=", "&=": "|="},
}
# The formatter sets blanks around what takes two operands, and none in templates and references.
OPERATOR = re.compile(r"(?<=\S )(?:&&|\|\||[<>=!]=|[-+*/|&]=|[-<>+*/%&|])(?= \S)")

WORDS = {
    "bool": {"true": "false", "false": "true"},
    "other": {"std::min": "std::max", "std::max": "std::min", "lower_bound": "upper_bound",
              "upper_bound": "lower_bound", "floor": "ceil", "ceil": "floor", "front": "back",
              "back": "front", "break": "continue", "continue": "break", "rbegin": "begin",
              "any_of": "all_of", "all_of": "any_of", "none_of": "any_of", "find": "rfind",
              "rfind": "find", "npos": "npos - 1"},
}
WORD = re.compile(r"(?<![\w:])(?:" + "|".join(map(re.escape, [word for words in WORDS.values()
                                                                for word in words])) + r")\b(?!_)"
                  r"|(?<=::)(?:lower_bound|upper_bound|floor|ceil|any_of|all_of|none_of|npos)\b"
                  r"|(?<!:)\bstd::(?:min|max)\b")

NUMBER = re.compile(r"(?<![\w.'\x01])(?:0x[0-9a-fA-F']+|\d[\d']*(?:\.\d*)?(?:e[-+]?\d+)?)"
                    r"(?=[uUlLzZ]*(?![\w.'\x01]))")
# Sizes of pieces and buffers, primes and hashes: one more or less of them is as good.
TUNED = re.compile(r"\bconstexpr\b[^;={(]*=[^;\n]*")
# A larger array is as good, and a parameter's length is not looked at.
LENGTH = re.compile(r"\b(?:double|float|char|bool|int|long|unsigned|std::\w+|u?int\d+_t) \w+(?:\[\d+\])+")

CONDITION = re.compile(r"\bif \(")
NOT = re.compile(r"(?<=[(\s])!(?=[\w(:])")
# A statement that is a call or an assignment; what declares something has two names in a row.
STATEMENT = re.compile(r"(?:(?<=[;{})])|(?<=[^:]:)|\A)(?P<space>\s*)(?P<what>(?:\+\+|--|\*)?(?!(?:return|if|for|"
                       r"else|while|do|case|default|goto|throw|using|namespace|public|private|"
                       r"protected|struct|class|template|delete|switch|try|static|const|constexpr|"
                       r"auto|std::swap)\b)[A-Za-z_][\w:.]*(?:->[\w.]+|\[[^\]\n;]*\])*"
                       r"(?:\(|\.|->| [-+*/|&]?= |\+\+|--)[^;{}]*;)")
# A constructor's declaration has types and names between its brackets.
DECLARED = re.compile(r"\w+\((?:const )?[\w:<>]+[*&]* \w+\s*[,)=]")
LEAVING = re.compile(r"(?<=[;{}) ])(?:return|break|continue);")
CALL = re.compile(r"\b(?P<name>[\w:]+)\((?P<inner>[^(){};]*(?:\([^(){};]*\)[^(){};]*)*)\)")
SYMMETRIC = re.compile(r"(?:min|max|swap|equal|Same\w*|if|for|while|switch|sizeof|hypot)$")
CHOICE = re.compile(r"(?<= )\? (?P<yes>[\w.:\-'\"\x01]+) : (?P<no>[\w.:\-'\"\x01]+)(?=[;),])")

# The rows of the material tables are texts that state bounds.
TABLE_BOUND = re.compile(r">=|>")
TABLE_WORDS = {"Once": "Many", "Many": "Once", "Table": "Plain", "Plain": "Table"}
TABLE_WORD = re.compile(r"(?<=, )(?:Once|Many|Table|Plain)(?=,)")


@dataclasses.dataclass(frozen=True)
class Mutant:
    path: str
    rule: str
    start: int  # of the place in the text, and behind it
    end: int
    replacement: str
    line: int
    before: str  # the lines it touches, blanks at the sides taken away, joined with a blank
    after: str
    key: float = 0.0  # the smaller, the earlier it is drawn

    def text(self, whole):
        return whole[:self.start] + self.replacement + whole[self.end:]


def _operators(masked):
    for match in OPERATOR.finditer(masked):
        beside = masked[match.start() - 2] + masked[match.end() + 1]
        if '"' in beside and match[0] in ("+", "+="):  # texts are joined, not added
            continue
        for rule, table in OPERATORS.items():
            if match[0] in table:
                yield rule, match.start(), match.end(), table[match[0]]


def _words(masked):
    for match in WORD.finditer(masked):
        for rule, table in WORDS.items():
            if match[0] in table:
                yield rule, match.start(), match.end(), table[match[0]]


def _numbers(masked):
    tuned = [(*match.span(), "<<" in match[0]) for match in TUNED.finditer(masked)]
    lengths = {at for match in LENGTH.finditer(masked) for at in range(*match.span())}
    for match in NUMBER.finditer(masked):
        if match.start() in lengths:
            continue
        digits = match[0].replace("'", "")
        if not re.fullmatch(r"\d+|0x[0-9a-fA-F]+", digits):
            if float(digits) != 0:
                yield "constant", match.start(), match.end(), f"({match[0]} * 2)"
            continue
        value = int(digits, 0) if digits.startswith("0x") else int(digits)
        if value > 0xFFFF or any(start <= match.start() < end and (value >= 16 or shifted)
                                 for start, end, shifted in tuned):
            continue
        for other in (value + 1, value - 1):
            if other >= 0:
                yield "constant", match.start(), match.end(), str(other)


def _conditions(masked):
    for match in CONDITION.finditer(masked):
        opening = match.end() - 1
        end = source.closing(masked, opening)
        inner = masked[opening + 1:end - 1]
        if ";" in inner or re.match(r"(?:const )?auto\b|(?:const )?[\w:]+[*&]? \w+ = ", inner):
            continue  # it declares something
        yield "condition", opening + 1, end - 1, None
    for match in NOT.finditer(masked):
        yield "condition", match.start(), match.end(), ""
    for match in CHOICE.finditer(masked):
        if match["yes"] != match["no"]:
            exchanged = (*match.span("yes"), *match.span("no"))
            yield "choice", match.start("yes"), match.end("no"), exchanged


def _statements(masked):
    for match in STATEMENT.finditer(masked):
        what = match["what"]
        if what.count("\n") > 5 or what.count("(") != what.count(")") or DECLARED.match(what):
            continue
        yield "dropped", match.start("what"), match.end("what"), ";" + re.sub(r"[^\n]", "", what)
    for match in LEAVING.finditer(masked):
        yield "dropped", match.start(), match.end(), ";"


def _calls(masked):
    for match in CALL.finditer(masked):
        if SYMMETRIC.search(match["name"]):
            continue
        spans, depth, at = [], 0, match.start("inner")
        for place in range(match.start("inner"), match.end("inner")):
            depth += (masked[place] in "([<") - (masked[place] in ")]>")
            if masked[place] == "," and depth == 0:
                spans.append((at, place))
                at = place + 2
        spans.append((at, match.end("inner")))
        for (first, behind), (second, end) in zip(spans, spans[1:]):
            one, other = masked[first:behind], masked[second:end]
            if one != other and _alike(one, other):
                yield "swapped", first, end, (first, behind, second, end)


def _alike(one, other):
    """Whether two arguments may be of one type, and no parameters of a declaration."""
    kinds = [r"-?[\d.']+[uUlL]*", r"[a-z]\w*(?:(?:\.|->)\w+)*(?:\(\))?", r"m_\w+",
             r"[\w.]+\[[^\]]+\]", r"[A-Z]\w*\([^()]*\)"]
    return any(re.fullmatch(kind, one) and re.fullmatch(kind, other) for kind in kinds)


def _table_rows(text, masked):
    with_texts = source.code(text, keep_texts=True)
    for match in TABLE_BOUND.finditer(with_texts):
        if masked[match.start()] == "\x01":
            yield "comparison", match.start(), match.end(), ">" if match[0] == ">=" else ">="
    for match in TABLE_WORD.finditer(masked):
        yield "other", match.start(), match.end(), TABLE_WORDS[match[0]]


def _replacement(text, start, end, made):
    if made is None:
        return f"!({text[start:end]})"
    if isinstance(made, str):
        return made
    first, behind, second, last = made
    return text[second:last] + text[behind:second] + text[first:behind]


def _joined(lines):
    return " ".join(filter(None, (line.strip() for line in lines.split("\n"))))


def of(path, text):
    """All mutants of a file, in the order of their places."""
    masked = source.code(text)
    made = []
    # Of the tables only the bounds in materials are code: all else is held against frozen lists.
    rows = path.endswith(".def")
    for rule in () if rows else (_operators, _words, _numbers, _conditions, _statements, _calls):
        made += list(rule(masked))
    if rows and path.startswith("inpS/materials/"):
        made += list(_table_rows(text, masked))
    found = []
    lines = [match.start() for match in re.finditer("\n", text)]
    for rule, start, end, what in sorted(made, key=lambda one: (one[1], one[2], one[0])):
        replacement = _replacement(text, start, end, what)
        first, last = text.rfind("\n", 0, start) + 1, text.find("\n", end)
        last = len(text) if last < 0 else last
        found.append(Mutant(path, rule, start, end, replacement,
                            bisect.bisect_left(lines, start) + 1,
                            _joined(text[first:last]),
                            _joined(text[first:start] + replacement + text[end:last])))
    return [mutant for mutant in found if mutant.before != mutant.after]


def draw(texts, seed):
    """All mutants of all files, in the order in which the seed draws them: at random, without
    putting back, a line as likely as the use of its file, its mutants alike. A change of one line
    changes what is drawn of this line alone, and where it stands in the order."""
    weights = source.use(texts)
    drawn = []
    for path, text in sorted(texts.items()):
        mutants = of(path, text)
        on_line = {}
        for mutant in mutants:
            on_line[mutant.line] = on_line.get(mutant.line, 0) + 1
        times = {}
        for mutant in mutants:
            same = (mutant.before, mutant.after)
            times[same] = times.get(same, 0) + 1
            digest = hashlib.sha256("\0".join(
                [str(seed), path, *same, str(times[same])]).encode()).digest()
            chance = (int.from_bytes(digest[:8], "big") + 1) / (2**64 + 1)
            drawn.append(dataclasses.replace(
                mutant, key=-math.log(chance) * on_line[mutant.line] / weights[path]))
    return sorted(drawn, key=lambda mutant: (mutant.key, mutant.path, mutant.start))
