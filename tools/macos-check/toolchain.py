"""The compiler, linker and headers of the check, as tools/dev/packages.sh installs them.

A compiler for a Darwin target needs no more than this: clang and lld as they are, libc++'s headers,
and some C library's headers whose integer types are made those of Darwin (there a 64-bit integer is
a long long, on Linux a long).
"""
import hashlib
import pathlib
import shutil

LLVM = pathlib.Path("/usr/lib/llvm-19")
INCLUDES = pathlib.Path("/usr/include")
LAYOUT = "6"  # changes when what prepare() makes changes


class MissingTool(Exception):
    """Something that this system may not have at all."""


class ToolchainError(Exception):
    pass


def edited(text, changes):
    for old, new in changes:
        if old not in text:
            raise ToolchainError(f"the C library's headers have changed: no {old!r}")
        text = text.replace(old, new)
    return text


def copy_c_headers(source, target):
    """musl's headers with Darwin's integer types, so that what only Darwin refuses is seen."""
    shutil.copytree(source, target)
    types = target / "bits" / "alltypes.h"
    types.write_text(edited(types.read_text(), [
        ("#define _Int64 long", "#define _Int64 long long"),
        ("typedef _Int64 time_t;", "typedef long time_t;"),
        ("typedef signed _Int64   intmax_t", "typedef signed long intmax_t"),
        ("typedef unsigned _Int64 uintmax_t", "typedef unsigned long uintmax_t"),
        ("typedef _Int64 suseconds_t", "typedef int suseconds_t"),
        ("typedef unsigned _Int64 dev_t", "typedef int dev_t"),
        ("typedef unsigned mode_t", "typedef unsigned short mode_t"),
    ]))
    limits = target / "stdint.h"
    limits.write_text(edited(limits.read_text(), [
        ("#if UINTPTR_MAX == UINT64_MAX", "#if 0"),
        ("(0xffffffffffffffffu)", "(0xffffffffffffffffull)"),
    ]))


def copy_library_settings(source, target):
    """libc++'s settings as Apple has them: with the versions in which its parts appeared, so that
    what the oldest macOS lacks is refused."""
    target.mkdir()
    (target / "__config_site").write_text(edited(source.read_text(), [
        ("#define _LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS", ""),
    ]))


def digest(*files):
    """Of the tools' kind and version."""
    made = hashlib.sha256(LAYOUT.encode())
    for file in files:
        made.update(file.resolve().name.encode())
        made.update(hashlib.sha256(file.read_bytes()).digest())
    return made.hexdigest()


class Toolchain:
    """The installed tools, and in one folder what is made of their headers. `stamp` names both."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.c_headers = self.folder / "c-headers"
        self.library_settings = self.folder / "libc++-settings"
        self.third_party = self.folder / "third-party"
        self.marker = self.folder / "made"

    def prepare(self):
        """Makes what is not there yet. A half-made folder, or one of other tools, is made anew."""
        settings = LLVM / "include/c++/v1/__config_site"
        musl = next(INCLUDES.glob("*-linux-musl"), None)
        for needed in (self.clang, self.linker, settings, musl, INCLUDES / "rapidjson",
                       INCLUDES / "utf8proc.h", INCLUDES / "gtest", INCLUDES / "gmock"):
            if needed is None or not needed.exists():
                raise MissingTool(f"{needed or 'musl'} is not there: ./test installs "
                                  "packages_macos and packages_test of "
                                  "tools/dev/packages.sh")
        self.stamp = digest(self.clang, settings, musl / "stdio.h", musl / "bits/alltypes.h")
        if self.marker.exists() and self.marker.read_text() == self.stamp:
            return
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        copy_c_headers(musl, self.c_headers)
        copy_library_settings(settings, self.library_settings)
        self.third_party.mkdir()
        for name in ("rapidjson", "utf8proc.h", "gtest", "gmock"):
            (self.third_party / name).symlink_to(INCLUDES / name)
        self.marker.write_text(self.stamp)

    @property
    def library(self):
        return LLVM / "include/c++/v1"

    @property
    def cache(self):
        """What commands that make an object begin with."""
        found = shutil.which("ccache")
        return [found] if found else []

    @property
    def clang(self):
        return LLVM / "bin/clang++"

    @property
    def linker(self):
        return LLVM / "bin/ld64.lld"

    def shared_library(self, name):
        return LLVM / f"lib/{name}.so.1"

    def include_flags(self, surface):
        """For code whose only headers are the project's, libc++'s, a C library's, the surface's."""
        flags = ["-nostdinc", "-nostdinc++", "-D_GNU_SOURCE"]
        for folder in (self.library_settings, surface / "shim", self.library,
                       next(LLVM.glob("lib/clang/*/include")), self.c_headers, surface,
                       self.third_party):
            flags += ["-isystem", str(folder)]
        return flags
