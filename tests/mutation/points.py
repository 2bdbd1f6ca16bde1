"""Where C++ sources can be changed by a single operator, found on clang's AST.

All places are offsets in bytes. Sources are held as Latin-1 texts, in which a byte is a character.
"""

import re
import sys
from dataclasses import dataclass, field

# Debian's bindings, also where another interpreter stands in front.
sys.path.append("/usr/lib/python3/dist-packages")
from clang.cindex import CursorKind as Kind, Index, TokenKind, TypeKind, TranslationUnit  # noqa: E402

SWAPS = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"],
    "&&": ["||"], "||": ["&&"], "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="],
}
RELATIONS = {"<", "<=", ">", ">=", "==", "!="}
NUMBERS = {TypeKind.INT, TypeKind.UINT, TypeKind.LONG, TypeKind.ULONG, TypeKind.LONGLONG, TypeKind.ULONGLONG,
           TypeKind.SHORT, TypeKind.USHORT, TypeKind.DOUBLE, TypeKind.FLOAT}
# Texts of streams and strings have a "+" but no "-".
COUNTED = NUMBERS | {TypeKind.DEPENDENT}
FUNCTIONS = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR, Kind.FUNCTION_TEMPLATE,
             Kind.CONVERSION_FUNCTION}
TYPES = {Kind.STRUCT_DECL, Kind.CLASS_DECL, Kind.CLASS_TEMPLATE, Kind.CLASS_TEMPLATE_PARTIAL_SPECIALIZATION}
# What only the compiler sees.
COMPILED = {Kind.ENUM_DECL, Kind.STATIC_ASSERT, Kind.TYPE_ALIAS_DECL, Kind.TYPEDEF_DECL,
            Kind.TEMPLATE_NON_TYPE_PARAMETER, Kind.USING_DECLARATION}
OTHER_WAY = {"min": "max", "max": "min", "any_of": "all_of", "all_of": "any_of", "lower_bound": "upper_bound",
             "upper_bound": "lower_bound", "front": "back", "back": "front", "ceil": "floor", "floor": "ceil",
             "FindRow": "FindLastRow", "FindLastRow": "FindRow"}
# Functions to which the order of their arguments is the same.
EVEN = {"Same", "SameIgnoringCase"}
COMMENT = re.compile(r'("(?:\\.|[^"\\])*")|//[^\n]*|/\*.*?\*/', re.DOTALL)


def flat(text):
    """A piece of source on one line, without comments."""
    return " ".join(COMMENT.sub(lambda found: found.group(1) or " ", text).split())


@dataclass
class Change:
    """One mutant: what stands at a point, and what stands there instead."""
    before: str
    after: str
    operator: str


@dataclass
class Point:
    """A piece of source with its mutants. `how` tells how they are compiled in beside it, see schemata.py."""
    file: str
    start: int
    end: int
    how: str
    changes: list
    function: str = ""
    type: str = ""
    order: int = field(default=0)


class Finder:
    """Collects the points of the wanted files over several translation units."""

    def __init__(self, wanted, root):
        """`wanted` holds the texts of the files that may be changed, by the names under which clang meets them; `root` is
        the folder of the project."""
        self.texts = wanted
        self.root = str(root) + "/"
        self.function = ""
        self.points = {}
        self.index = Index.create()

    def look(self, path, arguments):
        """Looks at a translation unit. What a header holds is found once."""
        unit = self.index.parse(path, args=arguments, options=TranslationUnit.PARSE_NONE)
        errors = [str(problem) for problem in unit.diagnostics if problem.severity >= 3]
        if errors:
            raise RuntimeError(f"{path}: {errors[0]}")
        for cursor in unit.cursor.get_children():
            place = cursor.location.file
            if place is not None and place.name in self.texts:
                self.visit(cursor, None, "")

    def all(self):
        """Every point, in the order of files and places."""
        return sorted(self.points.values(), key=lambda point: (point.file, point.start, -point.end, point.order))

    def visit(self, cursor, parent, function):
        if cursor.kind in COMPILED or self.is_compiled(cursor, function):
            return
        if cursor.kind in FUNCTIONS or (cursor.kind in TYPES and not function):
            function = cursor.spelling
        self.points_of(cursor, parent, function)
        children = list(cursor.get_children())
        if cursor.kind is Kind.CASE_STMT:
            children = children[1:]
        for child in children:
            self.visit(child, cursor, function)

    @staticmethod
    def is_compiled(cursor, function):
        """Constants: of a variable outside of functions, or one that is `constexpr`, the compiler works out the value."""
        if cursor.kind is not Kind.VAR_DECL:
            return False
        if not function:
            return True
        words = [token.spelling for token, _ in zip(cursor.get_tokens(), range(3))]
        return "constexpr" in words

    # --- Points ------------------------------------------------------------------------------------------------------

    def points_of(self, cursor, parent, function):
        self.function = function
        kind = cursor.kind
        if kind in (Kind.COMPOUND_STMT, Kind.IF_STMT, Kind.FOR_STMT, Kind.CXX_FOR_RANGE_STMT, Kind.WHILE_STMT,
                    Kind.CASE_STMT, Kind.DEFAULT_STMT):
            self.statements(cursor)
        if kind in (Kind.IF_STMT, Kind.WHILE_STMT, Kind.CONDITIONAL_OPERATOR):
            self.condition(cursor)
        elif kind is Kind.CXX_FOR_RANGE_STMT:
            self.walk(cursor)
        elif kind in (Kind.BINARY_OPERATOR, Kind.COMPOUND_ASSIGNMENT_OPERATOR):
            children = list(cursor.get_children())
            if len(children) == 2:
                self.binary(cursor, *children)
        elif kind is Kind.UNARY_OPERATOR:
            self.unary(cursor)
        elif kind is Kind.CALL_EXPR:
            self.call(cursor)
        elif kind in (Kind.INTEGER_LITERAL, Kind.FLOATING_LITERAL):
            self.number(cursor, parent)
        elif kind is Kind.CXX_BOOL_LITERAL_EXPR:
            text = self.text(cursor)
            if text in ("true", "false"):
                self.add(cursor, "either", [Change(text, "false" if text == "true" else "true", "constant")])
        elif kind is Kind.DECL_REF_EXPR:
            self.name(cursor)
        elif kind is Kind.RETURN_STMT:
            self.answer(cursor)

    def binary(self, cursor, left, right):
        text = self.texts.get(self.file(cursor), "")
        between = text[self.end(left):self.start(right)].strip()
        if between not in SWAPS:
            return
        if between not in RELATIONS and between not in ("&&", "||"):
            if left.type.get_canonical().kind not in COUNTED or right.type.get_canonical().kind not in COUNTED:
                return
        before = [self.text(left), self.text(right)]
        if not all(before):
            return
        changes = [Change(self.text(cursor), f"{before[0]} {instead} {before[1]}",
                          "relation" if between in RELATIONS else "logic" if between in ("&&", "||") else "arithmetic")
                   for instead in SWAPS[between]]
        self.add(cursor, "either", changes)

    def unary(self, cursor):
        text = self.text(cursor)
        inner = list(cursor.get_children())
        if len(inner) != 1 or not text:
            return
        operand = self.text(inner[0])
        if text.startswith(("++", "--")):
            self.add(cursor, "either", [Change(text, ("--" if text[0] == "+" else "++") + text[2:], "increment")])
        elif text.startswith("!"):
            self.add(cursor, "either", [Change(text, f"static_cast<bool>({operand})", "logic")])
        elif text.startswith("-"):
            self.add(cursor, "either", [Change(text, operand, "arithmetic")])

    def number(self, cursor, parent):
        text = self.text(cursor)
        kind = cursor.type
        if parent is not None and parent.kind is Kind.UNEXPOSED_EXPR and self.span(parent) == self.span(cursor):
            kind = parent.type
        kind = kind.get_canonical()
        if kind.kind not in NUMBERS or not re.fullmatch(r"[0-9.]+(e[-+]?[0-9]+)?[uUlL]*", text):
            return
        digits = text.rstrip("uUlL")
        more = repr(float(digits) + 1) if not digits.isdigit() else str(int(digits) + 1) + text[len(digits):]
        self.add(cursor, "either", [Change(text, more, "constant")], type=kind.spelling.replace("const ", ""))

    def name(self, cursor):
        meant = cursor.referenced
        text = self.text(cursor)
        if meant is None or not text:
            return
        if meant.kind is Kind.ENUM_CONSTANT_DECL:
            names = [each.spelling for each in meant.semantic_parent.get_children()
                     if each.kind is Kind.ENUM_CONSTANT_DECL]
            if len(names) > 1 and text.endswith(meant.spelling):
                other = names[(names.index(meant.spelling) + 1) % len(names)]
                self.add(cursor, "either", [Change(text, text[:-len(meant.spelling)] + other, "enumerator")])
        elif meant.kind is Kind.VAR_DECL and meant.type.get_canonical().kind in NUMBERS:
            words = [token.spelling for token, _ in zip(meant.get_tokens(), range(3))]
            if "constexpr" in words:
                self.add(cursor, "either", [Change(text, f"{text} + 1", "constant")])

    def call(self, cursor):
        arguments = list(cursor.get_arguments())
        name = cursor.spelling
        if name.startswith("operator") and len(arguments) == 2:
            self.binary(cursor, *arguments)
            return
        text = self.text(cursor)
        if not text:
            return
        if name in OTHER_WAY:
            changed, count = re.subn(rf"\b{name}(?=[(<])", OTHER_WAY[name], text, count=1)
            if count:
                self.add(cursor, "either", [Change(text, changed, "other way")])
        self.arguments(cursor, arguments)

    def arguments(self, cursor, arguments):
        """Swaps the first two neighbours of one type, for functions of the project that tell them apart."""
        meant = cursor.referenced
        if meant is None or meant.location.file is None or not meant.location.file.name.startswith(self.root):
            return
        if meant.spelling in EVEN:
            return
        whole = self.raw(cursor)
        start = self.start(cursor)
        for one, two in zip(arguments, arguments[1:]):
            if one.type.get_canonical().spelling != two.type.get_canonical().spelling or not self.inside(cursor, two):
                continue
            left, right = self.raw(one), self.raw(two)
            if not left or not right or flat(left) == flat(right) or not self.inside(cursor, one):
                continue
            changed = (whole[:self.start(one) - start] + right + whole[self.end(one) - start:self.start(two) - start] +
                       left + whole[self.end(two) - start:])
            self.add(cursor, "either", [Change(flat(whole), flat(changed), "arguments")])
            return

    def condition(self, cursor):
        condition = next(iter(cursor.get_children()), None)
        if condition is None or not condition.kind.is_expression():
            return
        text = self.text(condition)
        if not text or self.is_relation(condition) or text.startswith("!"):
            return
        self.add(condition, "not", [Change(text, f"!({text})", "logic")])

    def answer(self, cursor):
        value = next(iter(cursor.get_children()), None)
        if value is None or value.type.get_canonical().kind is not TypeKind.BOOL:
            return
        text = self.text(value)
        if not text or self.is_relation(value) or text in ("true", "false") or text.startswith("!"):
            return
        self.add(value, "not", [Change(f"return {text}", f"return !({text})", "logic")])

    def is_relation(self, cursor):
        """Whether the swapped operator already says the opposite."""
        while cursor.kind is Kind.UNEXPOSED_EXPR:
            inner = list(cursor.get_children())
            if len(inner) != 1:
                break
            cursor = inner[0]
        operands = list(cursor.get_children()) if cursor.kind is Kind.BINARY_OPERATOR else []
        if cursor.kind is Kind.CALL_EXPR and cursor.spelling.startswith("operator"):
            operands = list(cursor.get_arguments())
        if len(operands) != 2:
            return False
        text = self.texts.get(self.file(cursor), "")
        return text[self.end(operands[0]):self.start(operands[1])].strip() in RELATIONS

    def walk(self, cursor):
        text = self.texts.get(self.file(cursor), "")
        for child in cursor.get_children():
            if child.kind.is_expression() and text[:self.start(child)].rstrip().endswith(":"):
                listed = self.text(child)
                self.add(child, "walk", [Change(f": {listed}", f": {listed}, walked the other way", "walk")])
                return

    def statements(self, cursor):
        for child in cursor.get_children():
            self.statement(cursor, child)

    def statement(self, parent, cursor):
        kind = cursor.kind
        inner = cursor
        while inner.kind is Kind.UNEXPOSED_EXPR and len(list(inner.get_children())) == 1:
            inner = next(iter(inner.get_children()))
        isolated = inner.kind in (Kind.CALL_EXPR, Kind.COMPOUND_ASSIGNMENT_OPERATOR, Kind.UNARY_OPERATOR,
                                  Kind.BINARY_OPERATOR, Kind.CXX_UNARY_EXPR)
        leaving = kind in (Kind.CONTINUE_STMT, Kind.BREAK_STMT) or (
            kind is Kind.RETURN_STMT and not list(cursor.get_children()))
        if not isolated and not leaving:
            return
        text = self.texts.get(self.file(cursor), "")
        start, end = self.span(cursor)
        behind = re.match(r"\s*;", text[end:])
        # A condition, or the middle of a loop's head, is no statement.
        if not behind or not re.search(r"(?:[;{}:)]|\belse|\*/|//[^\n]*)\s*$", text[:start]) or not text[start:end]:
            return
        if parent.kind is Kind.FOR_STMT and self.in_head(parent, text, start):
            return
        if kind is Kind.BREAK_STMT and self.ends_group(text, end + behind.end()):
            return
        said = flat(text[start:end])
        self.put(Point(self.file(cursor), start, end + behind.end(), "statement",
                       [Change(f"{said};", "(nothing)", "statement")], self.function))

    @staticmethod
    def ends_group(text, end):
        """Whether the last group of a switch ends here: leaving it out changes nothing."""
        return re.match(r"\s*}", text[end:]) is not None

    def in_head(self, loop, text, start):
        depth = 0
        for letter in text[self.start(loop):start]:
            depth += {"(": 1, ")": -1}.get(letter, 0)
        return depth > 0

    # --- Places ------------------------------------------------------------------------------------------------------

    @staticmethod
    def file(cursor):
        place = cursor.extent.start.file
        return place.name if place is not None else ""

    @staticmethod
    def start(cursor):
        return cursor.extent.start.offset

    @staticmethod
    def end(cursor):
        return cursor.extent.end.offset

    @staticmethod
    def span(cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def inside(self, whole, part):
        return self.start(whole) <= self.start(part) and self.end(part) <= self.end(whole)

    def raw(self, cursor):
        return self.texts.get(self.file(cursor), "")[self.start(cursor):self.end(cursor)]

    def text(self, cursor):
        return flat(self.raw(cursor))

    def add(self, cursor, how, changes, type=""):
        start, end = self.span(cursor)
        self.put(Point(self.file(cursor), start, end, how, changes, self.function, type))

    def put(self, point):
        if point.file not in self.texts or point.start >= point.end:
            return
        key = (point.file, point.start, point.end, point.how, tuple(change.after for change in point.changes))
        if key not in self.points:
            point.order = len(self.points)
            self.points[key] = point
