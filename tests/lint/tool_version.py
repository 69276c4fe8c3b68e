"""Which versions of clang's tools the sources are held to. Others lay out and warn differently."""
import re
import subprocess

VERSION = 14  # Debian 12's
NOT_APPLICABLE = 77  # the status of a check that says nothing here


def is_other(tool):
    """True if the program is of another version; then it has been said."""
    told = subprocess.run([tool, "--version"], capture_output=True, text=True, check=True).stdout
    found = re.search(r"\bversion (\d+)\.", told)
    if found and int(found[1]) == VERSION:
        return False
    print(f"checked with version {VERSION} on Debian 12 only; this is "
          f"{found[0] if found else told.strip()}")
    return True
