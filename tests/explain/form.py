"""Checks JSON against a JSON schema, quickly: the schema is turned into functions once. It knows the words that
docs/explanation.schema.json uses and refuses a schema with others."""

KNOWN = {"$schema", "$id", "title", "description", "definitions", "type", "additionalProperties", "required",
         "properties", "items", "$ref", "enum", "const", "oneOf", "minimum", "if", "then", "else"}
# What the words for types mean of values that were read from JSON.
TYPES = {"object": {dict}, "array": {list}, "string": {str}, "null": {type(None)}, "boolean": {bool}, "integer": {int},
         "number": {int, float}}


def checker(schema, root=None):
    """A function that says what of a value is not in its form, or None."""
    root = schema if root is None else root
    if set(schema) - KNOWN:
        raise ValueError(f"words that this check does not know: {set(schema) - KNOWN}")
    if "$ref" in schema:
        return reference(schema["$ref"], root)
    checks = [make(schema, root) for word, make in MAKERS.items() if word in schema]

    def check(value):
        for one in checks:
            wrong = one(value)
            if wrong:
                return wrong
        return None

    return check


def reference(name, root):
    """The check of a definition, made once and when it is first needed."""
    made = root.setdefault("definitions", {})
    key = name.rsplit("/", 1)[1]
    kept = CACHE.setdefault(id(root), {})

    def check(value):
        if key not in kept:
            kept[key] = checker(made[key], root)
        return kept[key](value)

    return check


CACHE = {}


def of_type(schema, _):
    kinds = schema["type"] if isinstance(schema["type"], list) else [schema["type"]]
    allowed = set().union(*(TYPES[kind] for kind in kinds))
    return lambda value: None if type(value) in allowed else f"{value!r} is no {kinds}"


def of_enum(schema, _):
    words = set(schema["enum"])
    return lambda value: None if isinstance(value, str) and value in words else f"{value!r} is none of the words"


def of_const(schema, _):
    return lambda value: None if value == schema["const"] else f"{value!r} is not {schema['const']!r}"


def of_minimum(schema, _):
    least = schema["minimum"]
    return lambda value: f"{value!r} is below {least}" if type(value) in TYPES["number"] and value < least else None


def of_properties(schema, root):
    checks = {name: checker(own, root) for name, own in schema["properties"].items()}
    required = set(schema.get("required", ()))
    closed = schema.get("additionalProperties", True) is False

    def check(value):
        if not isinstance(value, dict):
            return None
        if not required <= value.keys():
            return f"lacks {required - value.keys()}"
        for name, own in value.items():
            if name in checks:
                wrong = checks[name](own)
                if wrong:
                    return f"{name}: {wrong}"
            elif closed:
                return f"has {name}"
        return None

    return check


def of_items(schema, root):
    own = checker(schema["items"], root)

    def check(value):
        if not isinstance(value, list):
            return None
        for place, item in enumerate(value):
            wrong = own(item)
            if wrong:
                return f"[{place}] {wrong}"
        return None

    return check


def of_one(schema, root):
    checks = [checker(own, root) for own in schema["oneOf"]]

    def check(value):
        wrongs = [own(value) for own in checks]
        return None if wrongs.count(None) == 1 else f"fits {wrongs.count(None)} forms: {wrongs}"

    return check


def of_if(schema, root):
    condition = checker(schema["if"], root)
    then, other = checker(schema.get("then", {}), root), checker(schema.get("else", {}), root)
    return lambda value: (then if condition(value) is None else other)(value)


MAKERS = {"type": of_type, "enum": of_enum, "const": of_const, "minimum": of_minimum, "properties": of_properties,
          "items": of_items, "oneOf": of_one, "if": of_if}
