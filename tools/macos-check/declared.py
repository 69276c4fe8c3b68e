"""Every method that an adapter implements must be declared somewhere: in its class's interface, in
a superclass or in a protocol that the class adopts. An optional delegate method or an override with
a letter wrong is declared nowhere; the compiler accepts it and the system never calls it.

Classes of the program begin with QX, so that the compiler can be asked for them alone.
"""
import copy
import json
import re

from jobs import Job
from surface_index import add_methods, sign

PREFIX = "QX"
TYPES = ("ObjCInterfaceDecl", "ObjCCategoryDecl", "ObjCProtocolDecl")


def job(compiler, source):
    made = compiler.check_syntax(source, "arm64")
    command = [*made.command[:-1], "-Xclang", "-ast-dump=json", "-Xclang",
               f"-ast-dump-filter={PREFIX}", made.command[-1]]
    return Job(made.label.replace("syntax", "methods"), command, made.inputs, made.dependencies)


def documents(text):
    """The JSON documents of a filtered dump, each after a line "Dumping NAME:"."""
    decoder = json.JSONDecoder()
    for found in re.finditer(r"^Dumping [^\n]*:\n(?=\{)", text, re.M):
        yield decoder.raw_decode(text, found.end())[0]


def findings(source, text, index):
    """What the dump of one source says against it."""
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


def undumped_classes(source):
    """Classes that the filter would miss."""
    for name in re.findall(r"^@implementation\s+(\w+)", source.read_text(), re.M):
        if not name.startswith(PREFIX):
            yield f"{source.name}: the class {name} does not begin with {PREFIX}"
