"""The small changes that can be made to a C++ source, each of which breaks a rule of the program.

Operators and constants are found among the tokens, the rest among the statements and expressions
that the compiler's parser (libclang) finds. The sources are formatted: a comparison has blanks on
both sides, and brackets of a template have none.
"""

import bisect
import collections
import dataclasses
import re

from clang import cindex
from clang.cindex import CursorKind, TypeKind

OPERATORS = {
    "==": ("!=",),
    "!=": ("==",),
    "<": ("<=", ">="),
    ">": (">=", "<="),
    "<=": ("<", ">"),
    ">=": (">", "<"),
    "&&": ("||",),
    "||": ("&&",),
}
CONSTANTS = {"true": "false", "false": "true", "TRUE": "FALSE", "FALSE": "TRUE"}
INTEGER = re.compile(r"(0[xX][0-9a-fA-F']+|0[bB][01']+|[0-9][0-9']*)([uUlLzZ]*)")
# Prefix, base, format.
BASES = (("0x", 16, "x"), ("0b", 2, "b"), ("0", 8, "o"), ("", 10, "d"))
FLOAT = re.compile(r"([0-9]+\.[0-9]*)([fF]?)")
CHARACTER = re.compile(r"'([^\\'])'|'\\0'")
TEXT = re.compile(r'(?:u8)?"(.*)"', re.DOTALL)
# Escape sequences and format conversions, whose letters must stay. The group is a letter outside of
# them, which may be replaced.
TEXT_PARTS = re.compile(r"%[^a-zA-Z%]*(?:hh|h|ll|l|z|j|t)?[a-zA-Z%]|\\x[0-9a-fA-F]+|\\.|([a-zA-Z])")
DIRECTIVE = re.compile(r"^[ \t]*#(?:.*\\\n)*.*$", re.MULTILINE)

CONDITIONS = (CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.CONDITIONAL_OPERATOR)
FUNCTIONS = (
    CursorKind.FUNCTION_DECL,
    CursorKind.FUNCTION_TEMPLATE,
    CursorKind.CXX_METHOD,
    CursorKind.CONSTRUCTOR,
    CursorKind.DESTRUCTOR,
)
OTHER_DECLARATIONS = (
    CursorKind.STRUCT_DECL,
    CursorKind.CLASS_DECL,
    CursorKind.CLASS_TEMPLATE,
    CursorKind.ENUM_DECL,
    CursorKind.VAR_DECL,
)
SCOPES = (CursorKind.TRANSLATION_UNIT, CursorKind.NAMESPACE)
INTEGERS = (TypeKind.INT, TypeKind.UINT, TypeKind.LONG, TypeKind.ULONG, TypeKind.SHORT)
NOTHING = ("nullptr", "{}")


@dataclasses.dataclass(frozen=True)
class Change:
    """Bytes of a file and what takes their place. The lines are those touched, without blanks
    around them: `removed` as they are, `added` as they become. The ordinal counts, from 1,
    the changes of the declaration that have the same lines; it is 0 when there is only one."""

    file: str
    declaration: str  # the function, variable or type that it is in
    kind: str
    start: int
    end: int
    text: str
    line: int
    removed: tuple
    added: tuple
    ordinal: int = 0

    def identity(self):
        """Is the same for the same change after lines were moved."""
        return self.file, self.declaration, self.ordinal, self.removed, self.added

    def diff(self):
        return described(self.identity())

    def applied_to(self, source):
        return source[: self.start] + self.text.encode() + source[self.end :]


def described(identity):
    """The change with that identity as it is printed and listed."""
    file, declaration, ordinal, removed, added = identity
    lines = [f"{file} {declaration}" + (f" #{ordinal}" if ordinal else "")]
    lines += [f"-{line}" for line in removed]
    lines += [f"+{line}" for line in added]
    return "\n".join(lines)


def altered_integer(text):
    digits, suffix = INTEGER.fullmatch(text).groups()
    digits = digits.replace("'", "").lower()
    prefix, base, form = next(row for row in BASES if digits.startswith(row[0]))
    value = int(digits.removeprefix(prefix) or "0", base)
    if digits == "0":
        prefix = ""
    return [f"{prefix}{other:{form}}{suffix}" for other in (value + 1, value - 1) if other >= 0]


def altered_text(text):
    contents = TEXT.fullmatch(text).group(1)
    for part in TEXT_PARTS.finditer(contents):
        if part.group(1):
            other = "y" if part.group() == "x" else "x"
            at = text.index('"') + 1 + part.start()
            return [text[:at] + other + text[at + 1 :]]
    return [text[:-1] + 'x"']


def altered_literal(text):
    if INTEGER.fullmatch(text):
        return "constant", altered_integer(text)
    if match := FLOAT.fullmatch(text):
        return "constant", ["1.0f" if float(match.group(1)) == 0 else "0.0f"]
    if match := CHARACTER.fullmatch(text):
        return "constant", [f"'{chr(ord(match.group(1)) + 1)}'" if match.group(1) else "'\\1'"]
    if TEXT.fullmatch(text):
        return "text", altered_text(text)
    return "", []


class Source:
    """One parsed file; `changes` has a list of the possible changes for each place."""

    def __init__(self, file, contents, unit):
        self.file = file
        self.contents = contents
        self.declarations = []
        self.attributes = []
        self.places = {}
        self.visit(unit.cursor, unit.spelling, None)
        self.declarations.sort()
        self.add_tokens(unit)

    @property
    def changes(self):
        return with_ordinals([self.places[place] for place in sorted(self.places)])

    def text(self, cursor):
        return self.contents[cursor.extent.start.offset : cursor.extent.end.offset].decode()

    def add(self, kind, start, end, *texts):
        if texts:
            self.places.setdefault((start, end, kind), []).extend(
                self.change(kind, start, end, text) for text in texts
            )

    def change(self, kind, start, end, text):
        first = self.contents.rfind(b"\n", 0, start) + 1
        last = self.contents.find(b"\n", end)
        before = self.contents[first:last]
        after = self.contents[first:start] + text.encode() + self.contents[end:last]
        return Change(
            file=self.file,
            declaration=self.declaration_at(start),
            kind=kind,
            start=start,
            end=end,
            text=text,
            line=self.contents.count(b"\n", 0, start) + 1,
            removed=stripped_lines(before),
            added=stripped_lines(after),
        )

    def declaration_at(self, offset):
        """The innermost one."""
        at = bisect.bisect(self.declarations, (offset, len(self.contents), ""))
        around = (name for _, end, name in reversed(self.declarations[:at]) if offset < end)
        return next(around, "-")

    # ---- Tokens ---------------------------------------------------------------------------------

    def add_tokens(self, unit):
        directives = [match.span() for match in DIRECTIVE.finditer(self.contents.decode("latin-1"))]
        skipped = directives + self.attributes
        for token in unit.get_tokens(extent=unit.cursor.extent):
            start, end = token.extent.start.offset, token.extent.end.offset
            if any(first <= start < last for first, last in skipped):
                continue
            text = token.spelling
            if token.kind.name == "LITERAL":
                kind, texts = altered_literal(text)
                self.add(kind, start, end, *texts)
            elif text in CONSTANTS:
                self.add("constant", start, end, CONSTANTS[text])
            elif text in OPERATORS and self.contents[start - 1 : start] == b" ":
                if self.contents[end : end + 1].isspace():
                    kind = "condition" if text in ("&&", "||") else "comparison"
                    self.add(kind, start, end, *OPERATORS[text])

    # ---- Statements and expressions -------------------------------------------------------------

    def visit(self, cursor, main, result):
        for child in cursor.get_children():
            if cursor.kind == CursorKind.TRANSLATION_UNIT and str(child.location.file) != main:
                continue
            inner = result
            is_function = child.kind in FUNCTIONS and child.is_definition()
            if is_function and "{" not in self.text(child):
                continue  # made by a macro, or defaulted
            if is_function:
                inner = child.result_type
            elif child.kind in FUNCTIONS:
                self.attributes.append(self.span_after_parameters(child))
            elif child.kind == CursorKind.LAMBDA_EXPR:
                inner = None
            if is_function or (cursor.kind in SCOPES and child.kind in OTHER_DECLARATIONS):
                extent = child.extent
                self.declarations.append((extent.start.offset, extent.end.offset, child.spelling))
            self.add_of(child, inner)
            self.visit(child, main, inner)

    def span_after_parameters(self, declaration):
        """The bytes of the attributes and the "= 0" of a function that is only declared."""
        extents = [each.extent for each in declaration.get_arguments()]
        start = extents[-1].end if extents else declaration.extent.start
        return start.offset, self.contents.find(b";", declaration.extent.end.offset)

    def add_of(self, cursor, result):
        if cursor.kind in CONDITIONS:
            self.add_condition(cursor)
        elif cursor.kind == CursorKind.COMPOUND_STMT:
            self.add_statements(cursor)
        elif cursor.kind == CursorKind.CALL_EXPR:
            self.add_arguments(cursor)
        elif cursor.kind == CursorKind.DECL_REF_EXPR:
            self.add_enum(cursor)
        elif cursor.kind == CursorKind.RETURN_STMT and result is not None:
            self.add_result(cursor, result.get_canonical())

    def add_condition(self, cursor):
        condition = next(cursor.get_children(), None)
        if condition is not None and condition.kind.is_expression():
            self.add_wrapped("condition", condition, "!({})")

    def add_wrapped(self, kind, cursor, form):
        """An expression that begins or ends inside a macro is left alone."""
        text = self.text(cursor)
        if text and text.count("(") == text.count(")"):
            extent = cursor.extent
            self.add(kind, extent.start.offset, extent.end.offset, form.format(text))

    def add_statements(self, block):
        calls = [self.call_span(child) for child in block.get_children()]
        for span, following in zip(calls, calls[1:] + [None]):
            if span is None:
                continue
            self.add("call", *span, ";")
            if following is not None and not self.contents[span[1] : following[0]].strip():
                one, other = (self.contents[slice(*each)].decode() for each in (span, following))
                if one != other:
                    between = self.contents[span[1] : following[0]].decode()
                    self.add("order", span[0], following[1], other + between + one)

    def call_span(self, cursor):
        """The bytes of a statement that is a call, with its semicolon."""
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        is_call = cursor.kind in (CursorKind.CALL_EXPR, CursorKind.UNEXPOSED_EXPR)
        if is_call and self.contents[end - 1 : end + 1] == b");":
            return start, end + 1
        return None

    def add_arguments(self, call):
        if call.spelling.startswith("operator"):
            return
        arguments = list(call.get_arguments())
        for one, other in zip(arguments, arguments[1:]):
            first, second = one.extent, other.extent
            between = self.contents[first.end.offset : second.start.offset].decode()
            texts = self.text(one), self.text(other)
            if between.strip() == "," and all(texts) and texts[0] != texts[1]:
                if one.type.get_canonical().spelling == other.type.get_canonical().spelling:
                    swapped = texts[1] + between + texts[0]
                    self.add("argument", first.start.offset, second.end.offset, swapped)

    def add_enum(self, cursor):
        constant = cursor.referenced
        if constant is None or constant.kind != CursorKind.ENUM_CONSTANT_DECL:
            return
        text = self.text(cursor)
        constants = list(constant.semantic_parent.get_children())
        names = [other.spelling for other in constants]
        if not re.fullmatch(r"(\w+::)*" + re.escape(constant.spelling), text):
            return
        at = names.index(constant.spelling)
        siblings = [
            text.removesuffix(constant.spelling) + other.spelling
            for other in constants[max(at - 1, 0) : at + 2]
            if other.enum_value != constant.enum_value
        ]
        self.add("enum", cursor.extent.start.offset, cursor.extent.end.offset, *siblings)

    def add_result(self, statement, result):
        value = next(statement.get_children(), None)
        if value is None or altered_literal(self.text(value))[1] or self.text(value) in CONSTANTS:
            return
        if result.kind == TypeKind.BOOL or value.type.spelling == "gboolean":
            self.add_wrapped("result", value, "!({})")
        elif result.kind in INTEGERS:
            self.add_wrapped("result", value, "({}) + 1")
        elif result.kind != TypeKind.VOID and self.text(value) not in NOTHING:
            self.add_wrapped("result", value, "{{}}")


def with_ordinals(places):
    totals = collections.Counter(change.identity() for place in places for change in place)
    counts = collections.Counter()

    def numbered(change):
        identity = change.identity()
        counts[identity] += 1
        return dataclasses.replace(change, ordinal=counts[identity] if totals[identity] > 1 else 0)

    return [[numbered(change) for change in place] for place in places]


def stripped_lines(text):
    return tuple(line.strip() for line in text.decode().splitlines() if line.strip())


def changes_in(path, file, arguments):
    """The changes of each place in the file at the path, in their order. `file` is its name in
    what is printed; the arguments are those of the compiler."""
    contents = path.read_bytes()
    unit = cindex.Index.create().parse(str(path), args=["-xc++", *arguments])
    errors = [str(each) for each in unit.diagnostics if each.severity >= cindex.Diagnostic.Error]
    if errors:
        raise ValueError("\n".join(errors))
    return Source(file, contents, unit).changes
