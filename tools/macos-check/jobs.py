"""Commands that need not run again while nothing that they read has changed.

A job's record holds the digests of all the files that its command read, as the compiler lists
them, so that a second run of the check costs little more than reading those files.
"""
import concurrent.futures
import dataclasses
import hashlib
import json
import os
import pathlib
import subprocess


@dataclasses.dataclass
class Job:
    label: str                   # for people: "kit/value/Marshal.cpp (arm64)"
    command: list
    inputs: list                 # files that it is known to read
    dependencies: pathlib.Path = None  # file where the compiler lists more of them
    output: pathlib.Path = None  # file that it makes


@dataclasses.dataclass
class Result:
    job: Job
    ok: bool
    text: str


class Runner:
    def __init__(self, folder, stamp):
        self.records = pathlib.Path(folder) / "records"
        self.records.mkdir(parents=True, exist_ok=True)
        self.stamp = stamp
        self.digests = {}
        self.executed = 0

    def digest(self, path):
        """Of the file's bytes; a file is read once per run of the check."""
        key = str(path)
        if key not in self.digests:
            try:
                content = pathlib.Path(path).read_bytes()
                self.digests[key] = hashlib.sha256(content).hexdigest()
            except OSError:
                self.digests[key] = "absent"
        return self.digests[key]

    def run_all(self, jobs):
        """The results in the order of the jobs."""
        workers = os.cpu_count() or 1
        with concurrent.futures.ThreadPoolExecutor(workers) as pool:
            return list(pool.map(self.run, jobs))

    def run(self, job):
        name = hashlib.sha256("\0".join([self.stamp, *map(str, job.command)]).encode()).hexdigest()
        record = self.records / name
        known = self.known(record, job)
        if known is not None:
            return known
        self.executed += 1
        done = subprocess.run([str(part) for part in job.command],
                              capture_output=True, text=True, check=False)
        # What failed says so first; before an account of the source it would not be found.
        said = [done.stdout, done.stderr]
        text = "".join(said if done.returncode == 0 else reversed(said))
        read = set(map(str, job.inputs)) | set(listed_dependencies(job.dependencies))
        record.write_text(json.dumps({
            "files": {path: self.digest(path) for path in sorted(read)},
            "ok": done.returncode == 0, "text": text}))
        return Result(job, done.returncode == 0, text)

    def known(self, record, job):
        try:
            found = json.loads(record.read_text())
        except (OSError, ValueError):
            return None
        if job.output is not None and found["ok"] and not job.output.exists():
            return None
        if any(self.digest(path) != digest for path, digest in found["files"].items()):
            return None
        return Result(job, found["ok"], found["text"])


def listed_dependencies(path):
    """The files of a makefile rule as compilers write them."""
    if path is None or not path.exists():
        return []
    _, _, files = path.read_text().replace("\\\n", " ").partition(": ")
    # A compiler cache may tell them as they are seen from the folder that the command runs in.
    return [os.path.abspath(name.replace("\0", " "))
            for name in files.replace("\\ ", "\0").split()]
