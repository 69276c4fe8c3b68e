#!/usr/bin/env python3
"""Checks that sources include the standard headers whose names they use.

usage: std_includes.py PROJECT_FOLDER

The build reads the headers of cmake/QuorinTargets.cmake ahead, so a compiler there misses none of
them. Here each name of the table must be declared by a header that the source includes, by itself
or through headers of the project.
"""
import functools
import pathlib
import re
import sys

FOLDERS = ("kit", "script", "host", "app/shell", "app/linux", "tools")
NAMES = {
    "algorithm": "adjacent_find all_of any_of binary_search clamp copy copy_if count count_if "
                 "equal_range fill find find_end find_if find_if_not for_each generate includes "
                 "inplace_merge is_sorted lexicographical_compare lower_bound max max_element merge "
                 "min min_element minmax minmax_element mismatch none_of nth_element partial_sort "
                 "partition remove remove_if replace replace_if reverse rotate search "
                 "set_difference set_intersection set_union sort stable_partition stable_sort "
                 "transform unique upper_bound",
    "array": "array to_array",
    "atomic": "atomic atomic_bool atomic_flag atomic_int",
    "charconv": "chars_format from_chars from_chars_result to_chars",
    "chrono": "chrono",
    "cmath": "ceil exp fabs floor fmod frexp hypot isfinite isinf isnan ldexp llround log log10 "
             "lround modf nearbyint nextafter pow rint round signbit sqrt trunc",
    "condition_variable": "condition_variable condition_variable_any cv_status",
    "cstdint": "int16_t int32_t int64_t int8_t intptr_t uint16_t uint32_t uint64_t uint8_t "
               "uintptr_t",
    "filesystem": "filesystem",
    "fstream": "fstream ifstream ofstream",
    "functional": "bind bind_front cref equal_to function greater hash invoke less minus not_fn "
                  "plus ref reference_wrapper",
    "map": "map multimap",
    "memory": "addressof default_delete dynamic_pointer_cast enable_shared_from_this make_shared "
              "make_unique shared_ptr static_pointer_cast unique_ptr weak_ptr",
    "mutex": "call_once lock_guard mutex once_flag recursive_mutex scoped_lock timed_mutex "
             "unique_lock",
    "optional": "make_optional nullopt nullopt_t optional",
    "set": "multiset set",
    "sstream": "istringstream ostringstream stringstream",
    "string": "char_traits getline stod stoi stol string to_string u16string u32string",
    "string_view": "string_view u16string_view u32string_view",
    "thread": "this_thread thread",
    "utility": "as_const declval exchange forward in_place in_place_t index_sequence make_pair "
               "move pair swap",
    "variant": "bad_variant_access get_if holds_alternative monostate variant "
               "variant_alternative_t visit",
    "vector": "vector",
}
# What has pairs to give, or is given what is moved, brings them along.
BRING_UTILITY = {"algorithm", "array", "deque", "functional", "list", "map", "memory", "optional",
                 "set", "string", "string_view", "thread", "tuple", "variant", "vector"}
DECLARED_BY = {name: {header} for header, names in NAMES.items() for name in names.split()}
for each in NAMES["utility"].split():
    DECLARED_BY[each] |= BRING_UTILITY

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
NO_CODE = re.compile(r'R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|//[^\n]*', re.DOTALL)


@functools.cache
def included(root, path):
    """The names in angle brackets, and the files of the project."""
    found = INCLUDE.findall(path.read_text())
    return ({name for bracket, name in found if bracket == "<"},
            {root / name for bracket, name in found if bracket == '"' and (root / name).exists()})


def reached(root, path):
    """All headers in angle brackets that the file includes through the project's."""
    headers, seen, pending = set(), set(), {path}
    while pending:
        current = pending.pop()
        seen.add(current)
        named, files = included(root, current)
        headers |= named
        pending |= files - seen
    return headers


def missing(root, path):
    """Header -> the names that the file has of it."""
    headers = reached(root, path)
    result = {}
    for name in sorted(set(re.findall(r"\bstd::(\w+)", NO_CODE.sub("", path.read_text())))):
        if name in DECLARED_BY and not DECLARED_BY[name] & headers:
            header = next(header for header, names in NAMES.items() if name in names.split())
            result.setdefault(header, []).append(name)
    return result


def findings(root):
    targets = root / "cmake/QuorinTargets.cmake"
    ahead = re.search(r"set\(QUORIN_HEADERS([^)]*)\)", targets.read_text())
    for header in re.findall(r"<(\w+)>", ahead[1]) if ahead else []:
        if header not in NAMES:
            yield f"<{header}> is read ahead, but none of its names is in std_includes.py"
    sources = [path for folder in FOLDERS for path in sorted((root / folder).rglob("*"))
               if path.suffix in {".h", ".cpp"}]
    if not ahead or not sources:
        yield "found nothing to check"
    for path in sources:
        for header, names in missing(root, path).items():
            yield f"{path.relative_to(root)}: no <{header}> for std::{', std::'.join(names)}"


def main():
    found = list(findings(pathlib.Path(sys.argv[1]).resolve()))
    print("\n".join(found) if found else "standard headers are included where they are used")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
