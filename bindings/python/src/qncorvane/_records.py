"""Records that stand in a row of XML or of JSON: which field has which name there, and what may stand in it."""

from __future__ import annotations

import dataclasses
import enum
import re
from collections.abc import Mapping, Sequence
from decimal import Decimal
from typing import Any, ClassVar, TypeVar

_INT32 = range(-(2**31), 2**31)
_WHOLE = re.compile(r"[+-]?[0-9]{1,20}")
_NUMBER = re.compile(r"[+-]?([0-9]+(\.[0-9]*)?|\.[0-9]+)([eE][+-]?[0-9]{1,4})?")
_NO_XML = re.compile("[^\t\n\r\x20-\ud7ff\ue000-\ufffd\U00010000-\U0010ffff]")
# What would not come back as it is: a reader makes one blank of each in an attribute.
_ESCAPES = str.maketrans({"&": "&amp;", "<": "&lt;", ">": "&gt;", '"': "&quot;", "\t": "&#9;", "\n": "&#10;",
                          "\r": "&#13;"})
_MOST_DIGITS = 13  # before the point; with two behind it as many as the engine's binary numbers keep apart
_MOST_DECIMALS = 30


class Kind(enum.Enum):
    """What stands in a field."""

    TEXT = "a text"
    WHOLE = "a whole number"
    NUMBER = "a number"
    MONEY = "an amount of money"  # in JSON it has its cents beside it


@dataclasses.dataclass(frozen=True)
class Column:
    """A field of a record.

    Attributes:
        field: its name in Python.
        name: its name in XML and JSON.
        kind: what stands in it.
    """

    field: str
    name: str
    kind: Kind = Kind.TEXT


def named(kind: Kind, **names: str) -> tuple[Column, ...]:
    """Fields of one kind, each with its name in XML."""
    return tuple(Column(field, name, kind) for field, name in names.items())


AnyRecord = TypeVar("AnyRecord", bound="Record")


class Record:
    """The base of the records: fields are checked and converted when one is made."""

    __slots__ = ()
    _columns: ClassVar[tuple[Column, ...]] = ()
    _groups: ClassVar[dict[str, type[Any]]] = {}  # the fields that hold records

    def __post_init__(self) -> None:
        for column in self._columns:
            value = getattr(self, column.field)
            if value is not None:
                object.__setattr__(self, column.field, self._converted(column, value))
            elif self._required(column):
                raise TypeError(f"{type(self).__name__}.{column.field}: {column.kind.value} is wanted, not None")
        for field, kind in self._groups.items():
            object.__setattr__(self, field, self._rows(field, kind))

    def _required(self, column: Column) -> bool:
        field: dataclasses.Field[object] = type(self).__dataclass_fields__[column.field]  # type: ignore[attr-defined]
        return field.default is dataclasses.MISSING

    def _converted(self, column: Column, value: object) -> object:
        if column.kind is Kind.TEXT and isinstance(value, str):
            return value
        if column.kind is not Kind.TEXT and isinstance(value, int) and not isinstance(value, bool):
            return value if column.kind is Kind.WHOLE else Decimal(value)
        if column.kind in (Kind.NUMBER, Kind.MONEY) and isinstance(value, Decimal):
            return value
        wanted = "a decimal.Decimal or an int" if column.kind in (Kind.NUMBER, Kind.MONEY) else column.kind.value
        raise TypeError(f"{type(self).__name__}.{column.field}: {wanted} is wanted, not {type(value).__name__}")

    def _rows(self, field: str, kind: type[Any]) -> tuple[Any, ...]:
        rows = getattr(self, field)
        if not isinstance(rows, Sequence) or not all(isinstance(row, kind) for row in rows):
            raise TypeError(f"{type(self).__name__}.{field}: a sequence of {kind.__name__} is wanted")
        return tuple(rows)


def attributes(record: Record, place: str) -> str:
    """The record's fields as attributes of an XML element, each with a blank before it; those that are None are left out.

    Raises:
        ValueError: a value can't stand there; the text begins with its place.
    """
    written = []
    for column in record._columns:
        value = getattr(record, column.field)
        if value is not None:
            written.append(attribute(column.name, _text_of(column.kind, value, _place(place, column.field))))
    return "".join(written)


def attribute(name: str, text: str) -> str:
    """An attribute whose text has been checked, with a blank before it."""
    return f' {name}="{text.translate(_ESCAPES)}"'


def checked_text(text: str, place: str) -> str:
    """The text itself; ValueError where XML can't hold one of its characters."""
    bad = _NO_XML.search(text)
    if bad:
        raise ValueError(f"{place}: U+{ord(bad[0]):04X} at {bad.start()} can't stand in XML")
    return text


def _place(place: str, field: str) -> str:
    return f"{place}.{field}" if place else field


def _text_of(kind: Kind, value: Any, place: str) -> str:
    if kind is Kind.TEXT:
        return checked_text(value, place)
    if kind is Kind.WHOLE:
        if value not in _INT32:
            shown = f"{value}" if value.bit_length() < 128 else f"a number of {value.bit_length()} bits"
            raise ValueError(f"{place}: {shown} is outside -2147483648 to 2147483647")
        return str(value)
    fault = _fault(value)
    if fault:
        raise ValueError(f"{place}: {value} {fault}")
    return format(value, "f") if value else "0"


def _fault(number: Decimal) -> str | None:
    """Why a number can't be told to the engine; None when it can."""
    if not number.is_finite():
        return "is no number"
    exponent = number.as_tuple().exponent
    if number and isinstance(exponent, int) and exponent < -_MOST_DECIMALS:
        return f"has more than {_MOST_DECIMALS} decimals"
    if number and number.adjusted() >= _MOST_DIGITS:
        return f"has more than {_MOST_DIGITS} digits before the point"
    return None


def from_attributes(kind: type[AnyRecord], texts: Mapping[str, str], place: str, **more: object) -> AnyRecord:
    """The record of an XML element.

    Args:
        kind: the record's class.
        texts: the element's attributes.
        place: what errors begin with.
        more: fields that stand elsewhere.
    Raises:
        ValueError: a field without which there is no such record is missing, or a text is none of its kind.
    """
    values: dict[str, object] = dict(more)
    for column in kind._columns:
        if column.name in texts:
            values[column.field] = _value_of(column, texts[column.name], place)
        elif kind.__dataclass_fields__[column.field].default is dataclasses.MISSING:  # type: ignore[attr-defined]
            raise ValueError(f"{place}: {column.name} is missing")
        else:
            values[column.field] = None
    return kind(**values)


def _value_of(column: Column, text: str, place: str) -> object:
    if column.kind is Kind.TEXT:
        return text
    here = f"{place}: {column.name} '{text}'"
    if column.kind is Kind.WHOLE:
        if not _WHOLE.fullmatch(text) or int(text) not in _INT32:
            raise ValueError(f"{here} is no whole number of 32 bits")
        return int(text)
    if not _NUMBER.fullmatch(text):
        raise ValueError(f"{here} is no number")
    number = Decimal(text)
    fault = _fault(number)
    if fault:
        raise ValueError(f"{here} {fault}")
    return number


def from_json(kind: type[AnyRecord], row: Mapping[str, Any], **more: object) -> AnyRecord:
    """The record of a JSON object, whose numbers were read as Decimal and int. What is absent there is None."""
    values: dict[str, object] = dict(more)
    for column in kind._columns:
        values[column.field] = _json_value(column, row)
    return kind(**values)


def cents(row: Mapping[str, Any], name: str) -> Decimal:
    """An amount of money in currency units, exact and with two decimals, from its whole cents."""
    return Decimal(int(row[name + "Cents"])).scaleb(-2)


def _json_value(column: Column, row: Mapping[str, Any]) -> object:
    value = row.get(column.name)
    if value is None:
        return None
    if column.kind is Kind.TEXT:
        return str(value)
    if column.kind is Kind.MONEY and column.name + "Cents" in row:
        return cents(row, column.name)
    if isinstance(value, str) and not _NUMBER.fullmatch(value):
        return Decimal(0)
    return int(value) if column.kind is Kind.WHOLE else Decimal(value)
