"""The default layout of the service's JSON serializer, which every reply has to the byte."""
import json


def write(value, indent=""):
    """Returns `value` as the service writes it. Lists hold objects, as all lists of replies do."""
    inner = indent + "\t"
    if isinstance(value, dict) and value:
        members = (f"{inner}{json.dumps(key)} : {_nested(value[key], inner)}" for key in sorted(value))
        return "{\n" + ",\n".join(members) + f"\n{indent}}}"
    if isinstance(value, list) and value:
        return "[\n" + ",\n".join(inner + write(entry, inner) for entry in value) + f"\n{indent}]"
    return json.dumps(value)


def _nested(value, indent):
    starts_a_line = isinstance(value, (dict, list)) and value
    return (f"\n{indent}" if starts_a_line else "") + write(value, indent)
