"""The project's own build files for macOS, executed here: configures and builds Quorin.app with
cmake/darwin.cmake as ./run does on a Mac, then looks at what came out."""
import os
import pathlib
import plistlib
import re
import shutil
import subprocess

import linking
import stubs
from toolchain import MissingTool

ARCHITECTURES = ("arm64", "x86_64")
# As tools/dev/run_mac.sh configures it.
OPTIONS = ("-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", "-DQUORIN_CALC=OFF", "-DQUORIN_TESTS=OFF")
OF_THE_SYSTEM = ("/usr/lib/", "/System/Library/Frameworks/")


def llvm_tools():
    """The folder of llvm's archiver and its like; any version reads Mach-O."""
    for folder in sorted(pathlib.Path("/usr/lib").glob("llvm-*/bin"), reverse=True):
        if all((folder / f"llvm-{name}").exists() for name in
               ("ar", "ranlib", "otool", "install-name-tool", "strip", "objdump")):
            return folder
    raise MissingTool("llvm's own binary utilities are not there (the package llvm)")


def write_packages(session, architecture, tools):
    """What Homebrew has on a Mac: headers, a static utf8proc of empty functions, and the files by
    which CMake finds them."""
    root = session.folder / "packages" / architecture
    library, settings = root / "lib", root / "lib/cmake"
    shutil.rmtree(root, ignore_errors=True)
    headers = root / "include"
    headers.mkdir(parents=True)
    (library / "pkgconfig").mkdir(parents=True)
    third_party = session.toolchain.third_party
    for name in ("rapidjson", "utf8proc.h"):
        (headers / name).symlink_to((third_party / name).resolve())
    cli = pathlib.Path("/usr/include/CLI")
    if not cli.exists():
        raise MissingTool(f"{cli} is not there: ./test installs it")
    (headers / "CLI").symlink_to(cli)
    for name, text in (
            ("RapidJSON", f"set(RapidJSON_INCLUDE_DIRS {headers})\n"),
            ("CLI11", "add_library(CLI11::CLI11 INTERFACE IMPORTED)\n"
                      f"target_include_directories(CLI11::CLI11 INTERFACE {headers})\n")):
        (settings / name).mkdir(parents=True)
        (settings / name / f"{name}Config.cmake").write_text(text)
    (library / "pkgconfig/libutf8proc.pc").write_text(
        f"Name: libutf8proc\nDescription: UTF8 processing\nVersion: 2.9.0\n"
        f"libdir={library}\nLibs: -L{library} -lutf8proc\nCflags: -I{headers}\n")
    functions = stubs.utf8proc_functions(third_party / "utf8proc.h")
    source = root / "utf8proc.s"
    source.write_text("".join(f".globl _{name}\n_{name}:\n .byte 0\n" for name in sorted(functions)))
    subprocess.run([session.toolchain.clang, "-target", f"{architecture}-apple-macos13", "-c",
                    source, "-o", root / "utf8proc.o"], check=True)
    subprocess.run([tools / "llvm-ar", "rcs", library / "libutf8proc.a", root / "utf8proc.o"],
                   check=True)
    return root


def run(command, environment):
    done = subprocess.run(command, env=environment, capture_output=True, text=True, check=False)
    return None if done.returncode == 0 else (done.stdout + done.stderr)[-6000:]


def build(session, architecture, tools):
    """What failed, and the folder of the build."""
    packages = write_packages(session, architecture, tools)
    folder = session.folder / "cmake" / architecture
    here = pathlib.Path(__file__).resolve().parent
    assert session.stubs  # written now
    environment = {**os.environ, "PKG_CONFIG_LIBDIR": str(packages / "lib/pkgconfig")}
    configured = run(["cmake", "-S", session.project, "-B", folder, *OPTIONS,
                      f"-DCMAKE_TOOLCHAIN_FILE={here / 'cmake/darwin.cmake'}",
                      f"-DQUORIN_CHECK_STATE={session.folder}",
                      f"-DQUORIN_PACKAGES={packages}",
                      f"-DQUORIN_DARWIN_PROCESSOR={architecture}",
                      f"-DQUORIN_LLVM_TOOLS={tools}"], environment)
    failed = configured or run(["cmake", "--build", folder, "--", "--quiet", "Quorin"], environment)
    return failed, folder


def command_output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def examined(folder, architecture, tools):
    """What is wrong with the bundle."""
    app = folder / "app/macos/Quorin.app"
    files = {path.relative_to(app).as_posix() for path in app.rglob("*") if path.is_file()}
    wanted = {"Contents/Info.plist", "Contents/MacOS/Quorin", "Contents/Resources/Quorin.icns",
              "Contents/Resources/MenuBarIcon.png", "Contents/Resources/MenuBarIcon@2x.png",
              "Contents/Resources/web/index.html"}
    for name in sorted(wanted ^ files):
        yield f"the bundle {'lacks' if name in wanted else 'has'} {name}"
    if not wanted <= files:
        return
    values = plistlib.loads((app / "Contents/Info.plist").read_bytes())
    for key, value in values.items():
        if "@" in str(value).replace("support@", ""):
            yield f"Info.plist: {key} was not filled in: {value}"
    if values.get("CFBundleIdentifier") != "com.quorin.app":
        yield "Info.plist: the identifier is another one"
    program = app / "Contents/MacOS/Quorin"
    yield from linking.openings(program)
    if architecture not in command_output(tools / "llvm-objdump", "--macho", "--private-header",
                                          program).lower().replace("x86_64h", ""):
        yield f"the program is not for {architecture}"
    for line in command_output(tools / "llvm-otool", "-L", program).splitlines()[1:]:
        library = line.split()[0]
        if not library.startswith(OF_THE_SYSTEM):
            yield f"the program loads {library}, which is not the system's"
    commands = command_output(tools / "llvm-otool", "-l", program)
    if re.search(r"cmd LC_RPATH", commands):
        yield "the program has a search path for libraries"
    oldest = re.findall(r"minos (\S+)", commands)
    if oldest != ["13.0"]:
        yield f"the oldest macOS is {oldest}"


def run_all(session):
    """Both processors. Prints what is wrong."""
    tools = llvm_tools()
    status = 0
    for architecture in ARCHITECTURES:
        failed, folder = build(session, architecture, tools)
        found = [failed] if failed else list(examined(folder, architecture, tools))
        print(f"build ({architecture}): {'ok' if not found else 'FAILED'}", flush=True)
        for text in found:
            print("  " + text.replace("\n", "\n  "))
            status = 1
    return status
