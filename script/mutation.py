"""Finds the places of a C++ source where one small change makes another program. Used by
script/mutate.

Works on tokens, so that remarks, texts, `#include` and the like stay as they are. Relies on the
layout that .clang-format gives: a binary operator has blanks around it, and nothing else has.
"""

import re
from dataclasses import dataclass

TOKEN = re.compile(
    r"""(?P<remark>//[^\n]*|/\*.*?\*/)
      | (?P<text>(?:u8|[uUL])?"(?:\\.|[^"\\])*"|'(?:\\.|[^'\\])+')
      | (?P<number>0[xX][0-9a-fA-F'.pP+]+|\.?[0-9](?:[eE][+-]|['.\w])*)
      | (?P<word>[A-Za-z_]\w*)
      | (?P<sign><=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|&&|\|\||[-+*/%&|^!=<>]=|<<|>>|\#\#?|[^\s\w])
    """, re.VERBOSE | re.DOTALL)

DIRECTIVE = re.compile(r"^[ \t]*#(?:[^\n\\]|\\.)*", re.MULTILINE | re.DOTALL)
DEFINITION = re.compile(r"[ \t]*#[ \t]*define[ \t]+\w+(?:\([^)]*\))?")

COMPARISONS = {"<": ["<="], "<=": ["<"], ">": [">="], ">=": [">"], "==": ["!="], "!=": ["=="]}
ARITHMETIC = {"+": ["-"], "-": ["+"], "*": ["+"], "/": ["*"], "%": ["+"], "<<": [">>"],
              ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["&"], "+=": ["-="], "-=": ["+="],
              "*=": ["+="], "/=": ["*="], "|=": ["&="], "&=": ["|="], "^=": ["|="],
              ">>=": ["<<="], "<<=": [">>="]}
STEPS = {"++": ["--"], "--": ["++"]}
BOOLEAN = {"&&": ["||"], "||": ["&&"]}
LITERALS = {"true": ["false"], "false": ["true"]}

OPENING = {"(": ")", "[": "]", "{": "}"}
NO_STATEMENT = set("""alignas auto bool case char class const constexpr consteval constinit default
    delete do double else enum explicit extern float for friend if inline int long mutable namespace
    new operator private protected public return short signed sizeof static static_assert struct
    switch template this try typedef typename union unsigned using virtual void volatile while
    """.split())
REMOVABLE = {"break", "continue", "throw"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    in_macro: bool

    @property
    def end(self):
        return self.start + len(self.text)


@dataclass(frozen=True)
class Place:
    """Where one thing can be changed, and the texts that can stand there instead."""
    kind: str
    start: int
    end: int
    choices: tuple


def tokenize(source):
    """The tokens of the code; of what the preprocessor reads, only what macros stand for."""
    directives = {}
    for directive in DIRECTIVE.finditer(source):
        definition = DEFINITION.match(directive[0])
        code = definition.end() if definition else len(directive[0])
        directives[directive.start()] = (directive.start() + code, directive.end())
    tokens = []
    position = macro_end = 0
    while position < len(source):
        if position in directives:
            position, macro_end = directives[position]
            continue
        if source[position].isspace() or source[position] == "\\":
            position += 1
            continue
        match = TOKEN.match(source, position)
        if match.lastgroup != "remark":
            tokens.append(Token(match.lastgroup, match[0], position, position < macro_end))
        position = match.end()
    return tokens


def closing(tokens, index):
    """The index of the bracket that closes the one at `index`, or None."""
    depth = 0
    for at in range(index, len(tokens)):
        if tokens[at].text in OPENING:
            depth += 1
        elif tokens[at].text in OPENING.values():
            depth -= 1
            if depth == 0:
                return at
    return None


def body_braces(tokens):
    """For each token, whether the innermost brace around it is that of a body of statements."""
    result, open_braces = [], []
    for index, token in enumerate(tokens):
        if token.text == "{":
            before = tokens[index - 1].text if index else ""
            open_braces.append(before in {")", "{", "}", ";", ":", "]", "else", "do", "try", "const",
                                          "noexcept", "override"})
        elif token.text == "}" and open_braces:
            open_braces.pop()
        result.append(bool(open_braces) and open_braces[-1])
    return result


def left_out(tokens):
    """The indexes of tokens that only the compiler looks at: static assertions, attributes."""
    result = set()
    for index, token in enumerate(tokens):
        is_attribute = token.text == "[" and tokens[index + 1].text == "["
        if is_attribute or token.text in {"static_assert", "alignas", "requires"}:
            end = closing(tokens, index if is_attribute else index + 1)
            result.update(range(index, (end or index) + 1))
    return result


def next_number(text):
    """The texts of the numbers beside this one."""
    digits = text.replace("'", "")
    match = re.fullmatch(r"(0[xX][0-9a-fA-F]+|[0-9]+)([uUlLzZ]*)", digits)
    if match:
        number = int(match[1], 0) if match[1] == "0" or not match[1].startswith("0") else \
            int(match[1], 16 if match[1][:2].lower() == "0x" else 8)
        return [f"{other}{match[2]}" for other in (number + 1, number - 1) if other >= 0]
    match = re.fullmatch(r"([0-9.]+(?:[eE][-+]?[0-9]+)?)([fFlL]?)", digits)
    return [f"({match[1]} + 1.0{match[2]})"] if match else []


def is_binary(source, token):
    """Whether the sign has blanks around it, or stands at the end or beginning of a line."""
    return source[token.start - 1].isspace() and source[token.end:token.end + 1].isspace()


def sign_places(source, tokens, index):
    token = tokens[index]
    if token.text in STEPS:
        yield Place("step", token.start, token.end, tuple(STEPS[token.text]))
    elif token.text == "!":
        yield Place("boolean operator", token.start, token.end, ("",))
    elif is_binary(source, token):
        for kind, table in (("comparison", COMPARISONS), ("arithmetic operator", ARITHMETIC),
                            ("boolean operator", BOOLEAN)):
            if token.text in table:
                yield Place(kind, token.start, token.end, tuple(table[token.text]))
        if token.text == "?":
            yield Place("branch", token.start, token.end, ("|| true ?", "&& false ?"))


def condition_places(source, tokens, index):
    """The condition of an `if` or `while`, which becomes always or never true."""
    if tokens[index + 1].text != "(":
        return
    end = closing(tokens, index + 1)
    inside = tokens[index + 2:end]
    if not inside or any(token.text in {";", "="} for token in inside):
        return
    start, stop = inside[0].start, inside[-1].end
    condition = source[start:stop]
    choices = [f"({condition}) && false"]
    if tokens[index].text == "if":
        choices.append(f"({condition}) || true")
    yield Place("branch", start, stop, tuple(choices))


def starts_statement(tokens, index, is_body):
    if not is_body[index] or index == 0:
        return False
    before = tokens[index - 1]
    if before.text in {";", "{", "}", "else", "do"}:
        return True
    if before.text == ":":
        return any(token.text in {"case", "default"} for token in tokens[max(0, index - 8):index])
    if before.text == ")":
        depth = 0
        for at in range(index - 1, -1, -1):
            depth += (tokens[at].text == ")") - (tokens[at].text == "(")
            if depth == 0:
                return tokens[at - 1].text in {"if", "while", "for"}
    return False


def is_removable(tokens, index):
    """Whether a statement that starts here calls, assigns, throws or jumps; no declaration does."""
    if tokens[index].text in REMOVABLE:
        return True
    while tokens[index].text in {"*", "++", "--", "("}:
        index += 1
    if tokens[index].kind != "word" or tokens[index].text in NO_STATEMENT:
        return False
    while tokens[index + 1].text == "::":
        index += 2
    return tokens[index + 1].text in {"(", ".", "->", "[", "=", "++", "--", ";", ")"} | \
        {sign for sign in ARITHMETIC if sign.endswith("=")}


def statement_places(source, tokens, index, is_body):
    """A statement that can be left out; its line ends stay, so that all lines keep their numbers."""
    if not starts_statement(tokens, index, is_body) or not is_removable(tokens, index):
        return
    at = index
    while tokens[at].text != ";":
        if tokens[at].text in OPENING:
            at = closing(tokens, at)
            if at is None:
                return
        elif tokens[at].text in OPENING.values():
            return
        at += 1
        if at == len(tokens):
            return
    start, end = tokens[index].start, tokens[at].end
    if tokens[index].in_macro and "\n" in source[start:end]:
        return
    yield Place("statement", start, end, (";" + "\n" * source.count("\n", start, end),))


def places(source):
    """All places of a source where it can be changed, in their order."""
    tokens = tokenize(source)
    is_body = body_braces(tokens)
    skipped = left_out(tokens)
    found = []
    for index, token in enumerate(tokens[:-2]):
        if index in skipped:
            continue
        if token.kind == "sign":
            found += sign_places(source, tokens, index)
        elif token.kind == "number":
            found.append(Place("constant", token.start, token.end, tuple(next_number(token.text))))
        elif token.text in LITERALS:
            found.append(Place("constant", token.start, token.end, tuple(LITERALS[token.text])))
        elif token.text in {"if", "while"} and not token.in_macro:
            found += condition_places(source, tokens, index)
        if token.kind in {"word", "sign"}:
            found += statement_places(source, tokens, index, is_body)
    return sorted((place for place in found if place.choices),
                  key=lambda place: (place.start, place.end))
