"""The compiler, linker and headers of the check, unpacked from the distribution's packages.

Nothing is installed on the machine: the packages are downloaded with apt and unpacked into the
check's own folder, once. A compiler for a Darwin target needs no more than this: clang and lld as
they are, libc++'s headers, and some C library's headers whose integer types are made those of
Darwin (there a 64-bit integer is a long long, on Linux a long).
"""
import os
import pathlib
import re
import shutil
import subprocess

VERSIONS = ("19", "18", "17", "16", "15", "14")
LAYOUT = "4"  # changes when what prepare() makes changes


class ToolchainError(Exception):
    pass


def run(command, **options):
    done = subprocess.run(command, capture_output=True, text=True, check=False, **options)
    if done.returncode != 0:
        raise ToolchainError(f"{' '.join(map(str, command))}\n{done.stdout}{done.stderr}")
    return done.stdout


def candidate(package):
    """Whether apt could download the package."""
    policy = subprocess.run(["apt-cache", "policy", package], capture_output=True, text=True,
                            check=False).stdout
    return re.search(r"Candidate: (?!\(none\))\S", policy) is not None


def newest_version():
    for update in (False, True):
        if update:
            root = [] if os.geteuid() == 0 else ["sudo", "-n"]
            run([*root, "apt-get", "update", "-qq"])
        for version in VERSIONS:
            if all(candidate(name) for name in
                   (f"clang-{version}", f"libc++-{version}-dev", f"lld-{version}")):
                return version
    raise ToolchainError("apt has no clang, libc++ and lld of one version")


def installed(package):
    status = subprocess.run(["dpkg-query", "-W", "-f=${Status}", package], capture_output=True,
                            text=True, check=False).stdout
    return status.endswith(" installed")


def missing_libraries(packages):
    """What the packages need at run time and this machine does not have."""
    listing = run(["apt-cache", "depends", "--recurse", "--no-recommends", "--no-suggests",
                   "--no-conflicts", "--no-breaks", "--no-replaces", "--no-enhances", *packages])
    names = set(re.findall(r"^(lib[\w.+-]+)$", listing, re.M))
    return sorted(name for name in names - set(packages)
                  if not installed(name) and candidate(name))


def packages_of(version):
    libraries = [f"libllvm{version}", f"libclang-cpp{version}"]
    return [f"clang-{version}", f"libclang-common-{version}-dev", f"lld-{version}",
            f"libc++-{version}-dev", f"libc++1-{version}", f"libc++abi1-{version}", "musl-dev",
            "rapidjson-dev", "libutf8proc-dev", *libraries, *missing_libraries(libraries)]


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


class Toolchain:
    """The unpacked tools in one folder. `stamp` names what was unpacked."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.root = self.folder / "root"
        self.c_headers = self.folder / "c-headers"
        self.library_settings = self.folder / "libc++-settings"
        self.third_party = self.folder / "third-party"
        self.marker = self.folder / "unpacked"

    @property
    def stamp(self):
        return self.marker.read_text()

    def prepare(self):
        """Downloads and unpacks what is not there yet. A half-made folder is made anew."""
        if self.marker.exists() and self.stamp.startswith(LAYOUT + "\n"):
            return
        shutil.rmtree(self.folder, ignore_errors=True)
        archives = self.folder / "archives"
        archives.mkdir(parents=True)
        packages = packages_of(newest_version())
        print(f"downloading {', '.join(packages)}", flush=True)
        run(["apt-get", "download", "-q", *packages], cwd=archives)
        names = sorted(path.name for path in archives.glob("*.deb"))
        for name in names:
            run(["dpkg", "-x", archives / name, self.root])
        shutil.rmtree(archives)
        copy_c_headers(next(self.root.glob("usr/include/*-linux-musl")), self.c_headers)
        copy_library_settings(self.library / "__config_site", self.library_settings)
        self.third_party.mkdir()
        for name in ("rapidjson", "utf8proc.h"):
            (self.third_party / name).symlink_to(self.root / "usr" / "include" / name)
        self.marker.write_text("\n".join([LAYOUT, *names]))

    @property
    def llvm(self):
        return next(self.root.glob("usr/lib/llvm-*"))

    @property
    def library(self):
        return self.llvm / "include" / "c++" / "v1"

    @property
    def environment(self):
        folders = [*self.root.glob("usr/lib/*-linux-gnu"), *self.root.glob("lib/*-linux-gnu"),
                   self.llvm / "lib"]
        return {**os.environ, "LD_LIBRARY_PATH": ":".join(map(str, folders))}

    @property
    def clang(self):
        return self.llvm / "bin" / "clang++"

    @property
    def linker(self):
        return self.llvm / "bin" / "ld64.lld"

    def shared_library(self, name):
        return next(self.llvm.glob(f"lib/{name}.so.1"))

    def include_flags(self, surface):
        """For code whose only headers are the project's, libc++'s, a C library's, the surface's."""
        flags = ["-nostdinc", "-nostdinc++", "-D_GNU_SOURCE"]
        for folder in (self.library_settings, surface / "shim", self.library,
                       next(self.llvm.glob("lib/clang/*/include")), self.c_headers, surface,
                       self.third_party):
            flags += ["-isystem", str(folder)]
        return flags
