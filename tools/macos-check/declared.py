"""What only the compiler's own account of a source shows.

Every method that an adapter implements must be declared somewhere: in its class's interface, in a
superclass or in a protocol that the class adopts. An optional delegate method or an override with a
letter wrong is declared nowhere; the compiler accepts it and the system never calls it.

And no message goes to an object of unknown class, for there any selector compiles.

Classes of the program begin with QX and everything else is in the namespace quorin, so that the
compiler can be asked for them alone.
"""
import copy
import json
import re

from jobs import Job
from surface_index import add_methods, sign

PREFIX = "QX"
NAMESPACE = "quorin"
TYPES = ("ObjCInterfaceDecl", "ObjCCategoryDecl", "ObjCProtocolDecl")
ASKED_OF_ANYTHING = {"isKindOfClass:", "respondsToSelector:", "conformsToProtocol:", "isEqual:"}


def jobs(compiler, source):
    """One dump for the classes, one for the functions. Both say the same for either processor; the
    classes' is made for the one that no object is made for, and so checks the types for it."""
    return [dump(compiler.check_syntax(source, "x86_64"), PREFIX),
            dump(compiler.check_syntax(source, "arm64"), NAMESPACE)]


def dump(checked, name):
    """The job that checks a source's syntax, with an account of what the name stands in."""
    return Job(checked.label.replace("syntax", f"dump of {name}"),
               [*checked.command[:-1], "-Xclang", "-ast-dump=json", "-Xclang",
                f"-ast-dump-filter={name}", checked.command[-1]],
               checked.inputs, checked.dependencies)


def documents(text):
    """The JSON documents of a filtered dump, one after the other."""
    decoder, position = json.JSONDecoder(), text.find("{")
    while position >= 0:
        node, end = decoder.raw_decode(text, position)
        yield node
        position = text.find("{", end)


def findings(source, text, index):
    """What the dumps of one source say against it."""
    yield from undeclared_methods(source, text, index)
    yield from messages_to_anything(source, text)


def undeclared_methods(source, text, index):
    index = copy.deepcopy(index)
    implementations = []
    for node in documents(text):
        if node["kind"] in TYPES and node.get("name") is not None:
            add_methods(index, node)
        elif node["kind"] in ("ObjCImplementationDecl", "ObjCCategoryImplDecl"):
            implementations.append(node)
    for node in implementations:
        owner = node.get("interface", {}).get("name", node["name"])
        for child in node.get("inner", []):
            if child["kind"] != "ObjCMethodDecl" or child.get("isImplicit"):
                continue
            method = sign(child)
            if not index.declares(owner, method):
                yield f"{source}: {method[0]}[{owner} {method[1:]}] is declared nowhere"


def receiver_type(message):
    """The type of the object that a message goes to, without nullability."""
    children = message.get("inner", [])
    if message.get("receiverKind") != "instance" or not children:
        return ""
    return re.sub(r"\s*\b_N\w+\b|\b__strong\b|\b__weak\b|\bconst\b", "",
                  children[0].get("type", {}).get("qualType", "")).strip()


def messages_to_anything(source, text):
    pending = list(documents(text))
    while pending:
        node = pending.pop()
        if node.get("kind") == "ObjCMessageExpr" and receiver_type(node) == "id" \
                and node["selector"] not in ASKED_OF_ANYTHING:
            yield f"{source}: {node['selector']} is sent to an object of unknown class"
        pending += [child for child in node.get("inner", []) if isinstance(child, dict)]


def undumped_classes(source, text):
    """A step that sees nothing finds nothing: every class must be in the dump."""
    dumped = {node["name"] for node in documents(text) if node["kind"] == "ObjCImplementationDecl"}
    for name in re.findall(r"^@implementation\s+(\w+)", source.read_text(), re.M):
        if name not in dumped:
            yield f"{source.name}: the class {name} does not begin with {PREFIX}"
