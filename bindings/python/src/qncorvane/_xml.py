"""Elements of an XML text, with their places."""

from __future__ import annotations

import dataclasses
from xml.parsers import expat

_MOST_DEPTH = 200


@dataclasses.dataclass(slots=True)
class Element:
    """An element, with what stands in it but texts.

    Attributes:
        name: its name.
        attributes: in their order.
        place: "line 3, column 5", both from 1.
        children: the elements in it.
    """

    name: str
    attributes: dict[str, str]
    place: str
    children: list[Element] = dataclasses.field(default_factory=list)


def parse(xml: str) -> Element:
    """The root of an XML text.

    Raises:
        ValueError: no XML, a document type, or elements nested more than 200 deep; with line and column.
    """
    parser = expat.ParserCreate()
    top = Element("", {}, "")
    open_elements = [top]

    def place() -> str:
        return f"line {parser.CurrentLineNumber}, column {parser.CurrentColumnNumber + 1}"

    def start(name: str, attributes: dict[str, str]) -> None:
        element = Element(name, attributes, place())
        if len(open_elements) > _MOST_DEPTH:
            raise ValueError(f"{element.place}: elements are nested more than {_MOST_DEPTH} deep")
        open_elements[-1].children.append(element)
        open_elements.append(element)

    def end(_name: str) -> None:
        open_elements.pop()

    def doctype(*_of: object) -> None:
        raise ValueError(f"{place()}: a document type is not read")

    parser.StartElementHandler = start
    parser.EndElementHandler = end
    parser.StartDoctypeDeclHandler = doctype
    try:
        parser.Parse(xml, True)
    except expat.ExpatError as error:
        raise ValueError(f"line {error.lineno}, column {error.offset + 1}: {expat.ErrorString(error.code)}") from None
    return top.children[0]
