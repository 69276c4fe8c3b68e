"""What the system's declarations offer, read once through the compiler: for every framework its
classes, functions and constants, and for every class and protocol its methods and ancestors.
"""
import dataclasses
import json

from jobs import Job

TARGET = "arm64"  # the declarations are the same for both processors
PLACES = ("loc", "begin", "end", "spellingLoc", "expansionLoc")


@dataclasses.dataclass
class Methods:
    """One class or protocol: its methods with their sign, and where it inherits from."""
    names: set
    ancestors: set


@dataclasses.dataclass
class Index:
    classes: dict    # framework -> class names
    symbols: dict    # framework -> names of functions and constants
    methods: dict    # class or protocol -> Methods, "@" before a protocol's name

    def declares(self, owner, method):
        """True if the class or protocol, or one that it inherits from, has the method."""
        pending, seen = [owner], set()
        while pending:
            name = pending.pop()
            if name in seen or name not in self.methods:
                continue
            seen.add(name)
            if method in self.methods[name].names:
                return True
            pending += self.methods[name].ancestors
        return False


def all_headers(surface):
    return sorted(path for path in surface.glob("*/*.h") if path.parent.name != "shim")


def dump(compiler, runner):
    """The compiler's own account of every declaration, as JSON."""
    source = compiler.folder / "surface.mm"
    text = "".join(f'#import "{path}"\n' for path in all_headers(compiler.surface))
    if not source.exists() or source.read_text() != text:
        source.write_text(text)
    command = [*compiler.base(TARGET), "-x", "objective-c++", "-std=c++20", "-fobjc-arc",
               "-fblocks", "-fsyntax-only", "-Wno-four-char-constants", "-Xclang",
               "-ast-dump=json", source]
    result = runner.run(Job("declarations", command, [source, *all_headers(compiler.surface)]))
    if not result.ok:
        raise SystemExit(f"the declarations do not compile:\n{result.text[-4000:]}")
    tree, _ = json.JSONDecoder().raw_decode(result.text, result.text.index("{"))
    return tree


class FileTracker:
    """The dump names a declaration's file only where it differs from the one before."""

    def __init__(self):
        self.current = ""

    def visit(self, node):
        if not isinstance(node, dict):
            return
        for key, value in node.items():
            if key == "file":
                self.current = value
            elif key in PLACES:
                self.visit(value)
            elif key == "range":
                self.visit(value)


def sign(method):
    return ("-" if method.get("instance") else "+") + method["name"]


def add_methods(index, node):
    """Notes the methods of an interface, a category or a protocol, properties as accessors."""
    kind = node["kind"]
    if kind == "ObjCCategoryDecl":
        owner = node["interface"]["name"]
    else:
        owner = ("@" if kind == "ObjCProtocolDecl" else "") + node["name"]
    entry = index.methods.setdefault(owner, Methods(set(), set()))
    if node.get("super", {}).get("name"):
        entry.ancestors.add(node["super"]["name"])
    entry.ancestors |= {"@" + each["name"] for each in node.get("protocols", [])}
    for child in node.get("inner", []):
        if child["kind"] == "ObjCMethodDecl":
            entry.names.add(sign(child))
        elif child["kind"] == "ObjCPropertyDecl":
            start = "+" if child.get("class") else "-"
            name = child["name"]
            getter = child.get("getter", {}).get("name", name)
            setter = child.get("setter", {}).get("name", f"set{name[0].upper()}{name[1:]}:")
            entry.names |= {start + getter, start + setter}


def declarations(node, files):
    """Every declaration of the translation unit with the file that holds it."""
    for child in node.get("inner", []):
        files.visit(child.get("loc", {}))
        where = files.current
        files.visit(child.get("range", {}))
        yield child, where
        if child["kind"] in ("LinkageSpecDecl", "NamespaceDecl"):
            yield from declarations(child, files)
        else:
            visit_inside(child, files)


def visit_inside(node, files):
    for child in node.get("inner", []):
        if isinstance(child, dict):
            files.visit(child.get("loc", {}))
            files.visit(child.get("range", {}))
            visit_inside(child, files)


def read(compiler, runner):
    index = Index({}, {}, {})
    for node, where in declarations(dump(compiler, runner), FileTracker()):
        kind, name = node["kind"], node.get("name", "")
        framework = where.rsplit("/", 2)[-2] if str(compiler.surface) in where else ""
        if kind in ("ObjCInterfaceDecl", "ObjCCategoryDecl", "ObjCProtocolDecl"):
            if kind != "ObjCCategoryDecl" and not name:
                continue
            add_methods(index, node)
            # A forward declaration (@class) has neither a superclass nor members.
            defined = node.get("super", {}).get("name") or node.get("inner")
            if kind == "ObjCInterfaceDecl" and framework and defined:
                index.classes.setdefault(framework, set()).add(name)
        elif framework and kind == "FunctionDecl" and node.get("storageClass") != "static":
            index.symbols.setdefault(framework, set()).add(name)
        elif framework and kind == "VarDecl" and node.get("storageClass") == "extern":
            index.symbols.setdefault(framework, set()).add(name)
    return index
