"""Places in a C++ source where one operator, constant or condition can be changed.

The sources are formatted: binary operators have a blank on both sides, which template brackets,
pointers and references have not.
"""

import dataclasses
import re

OPERATORS = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
    "&&": "||", "||": "&&", "+": "-", "-": "+", "*": "/", "/": "*", "%": "*",
    "+=": "-=", "-=": "+=", "&": "|", "|": "&",
}
BINARY = re.compile(r"(?<= )(" + "|".join(sorted(map(re.escape, OPERATORS), key=len, reverse=True)) +
                    r")(?=[ \n])")
NEGATION = re.compile(r"(?<![\w)\]])!(?=[A-Za-z_(])")
STEP = re.compile(r"\+\+|(?<!-)--(?!-)")
TRUTH = re.compile(r"\b(true|false)\b")
WHOLE = re.compile(r"(?<![\w.'])(\d+)(?=[uU]?[lL]{0,2}\b)(?![.'\w]*[.'xX])")
FRACTION = re.compile(r"(?<![\w.'])(\d+\.\d+)(?=F?\b)")
CONDITION = re.compile(r"\bif \((?!constexpr)")
ASSIGNMENT = re.compile(r"(?<![=!<>+\-*/%&|^])=(?!=)")

RAW = re.compile(r'R"([^()\\ ]*)\(.*?\)\1"', re.DOTALL)
HIDDEN = re.compile(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])+'",
                    re.DOTALL)
DIRECTIVE = re.compile(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*|\bstatic_assert\(.*?\);|^[ \t]*template <[^\n]*",
                       re.DOTALL | re.MULTILINE)


@dataclasses.dataclass(frozen=True)
class Site:
    """One change: the text from `begin` to `end` becomes `after`."""

    begin: int
    end: int
    after: str
    kind: str  # "operator", "constant" or "condition"

    def apply(self, text):
        return text[:self.begin] + self.after + text[self.end:]

    def line(self, text):
        """The number of its line, from 1."""
        return text.count("\n", 0, self.begin) + 1


def _blank(match):
    return re.sub(r"[^\n]", " ", match.group())


def visible(text):
    """The text with blanks for comments, literals of characters, and what is not run."""
    return DIRECTIVE.sub(_blank, HIDDEN.sub(_blank, RAW.sub(_blank, text)))


def _end_of_parentheses(text, begin):
    """Behind the bracket that closes the one before `begin`; -1 if there is none."""
    depth = 1
    for place in range(begin, len(text)):
        depth += {"(": 1, ")": -1}.get(text[place], 0)
        if depth == 0:
            return place
    return -1


def _conditions(text, shown):
    for match in CONDITION.finditer(shown):
        end = _end_of_parentheses(shown, match.end())
        condition = shown[match.end():end]
        if end >= 0 and ";" not in condition and not ASSIGNMENT.search(condition):
            inner = text[match.end():end]
            yield Site(match.end(), end, f"!({inner})", "condition")


def sites(text):
    """All of a source, in order of their places."""
    shown = visible(text)
    found = list(_conditions(text, shown))

    def add(pattern, kind, after):
        for match in pattern.finditer(shown):
            found.append(Site(match.start(), match.end(), after(match.group()), kind))

    add(BINARY, "operator", OPERATORS.get)
    add(NEGATION, "operator", lambda _: "")
    add(STEP, "operator", {"++": "--", "--": "++"}.get)
    add(TRUTH, "constant", {"true": "false", "false": "true"}.get)
    add(WHOLE, "constant", lambda number: str(int(number) + 1))
    add(FRACTION, "constant",
        lambda number: "1.0" if float(number) == 0 else repr(2 * float(number)))
    return sorted(found, key=lambda site: (site.begin, site.end))
