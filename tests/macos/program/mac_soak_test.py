#!/usr/bin/env python3
"""The macOS program at work for a while: it grows by no object and by little memory.

usage: mac_soak_test.py QUORIN [SECONDS]

Round after round a user does everything that he can do; after each one the panel is at rest on the
same cell, and what is alive then is compared with what was alive after the first rounds. The second
argument, or QUORIN_SOAK_SECONDS, says how long; without both a minute.
"""
import json
import os
import sys
import time

from mac_desk import A, CONTROL_OPTION, D, LEFT, OPTION_SHIFT, RIGHT, S, Desk, Mac, Trouble, wait_for

# Rounds, until what is made once has been made and the runtime keeps as many dead objects as it may.
WARM_UP = 10
# What may be in use more after the rounds that follow; README.md says what was measured.
MOST_BYTES = 256 * 1024
MOST_BYTES_A_ROUND = 8 * 1024


def go_to(mac, cells, formula):
    mac.do("goTo", cells)
    mac.do("front", "Excel")
    wait_for(f"the panel to show {cells}", lambda: mac.panel.shown()["formula"] == formula)


def follow(mac):
    go_to(mac, "Model!B2", "=Inputs!B1*Inputs!B2")
    go_to(mac, "Model!B6", '=IF(B4>100,"good","bad")')
    go_to(mac, "Model!B7", "=B2/Inputs!B9")


def mark(mac):
    mac.do("hideRows", "Inputs!2:2")
    go_to(mac, "Model!B2", "=Inputs!B1*Inputs!B2")
    mac.take_keys()
    mac.key("End")
    wait_for("the mark", lambda: mac.marks() == ["Inputs!$B$2"])
    wait_for("the row", lambda: not mac.do("rowsHidden", "Inputs!2:2"))
    mac.key("Escape")
    wait_for("the marks to go", lambda: mac.marks() == [])
    wait_for("the row to go", lambda: mac.do("rowsHidden", "Inputs!2:2"))


def press_hot_keys(mac):
    for key, modifiers in ((S, OPTION_SHIFT), (D, OPTION_SHIFT), (A, OPTION_SHIFT),
                           (RIGHT, CONTROL_OPTION), (LEFT, CONTROL_OPTION)):
        mac.do("hotkey", [key, modifiers])
    mac.do("front", "other")
    mac.is_hidden()
    mac.do("reopen")
    mac.is_shown()


def use_menu(mac):
    mac.choose("Pause Follow")
    mac.choose("Resume Follow")
    mac.choose("Clear Stuck Highlights")
    mac.alert()
    mac.press("OK")
    wait_for("the alert to go", lambda: mac.do("alert") is None)


def lose_excel(mac):
    mac.do("permit", False)
    go_to_anything(mac, "Model!B3")
    wait_for("the refusal", lambda: "not allowed" in said(mac))
    mac.do("permit", True)
    go_to(mac, "Model!B4", "=B2-B3")
    mac.do("endExcel")
    mac.is_hidden()
    mac.do("startExcel")
    go_to(mac, "Model!B6", '=IF(B4>100,"good","bad")')


def go_to_anything(mac, cells):
    mac.do("goTo", cells)
    mac.do("front", "Excel")


def said(mac):
    return mac.panel.eval("document.body.innerText")


def rest(mac):
    """The same in each round: the panel stands on one cell, nothing is asked but where the user is."""
    go_to(mac, "Model!B3", "=B2*Share")
    time.sleep(0.7)
    # Of two looks the one with less: a poll may be on its way.
    return min((mac.do("counted") for _ in range(8)), key=lambda each: each["all"])


def soak(mac, seconds):
    start = time.monotonic()
    rounds, first, last = 0, None, None
    while rounds <= WARM_UP or time.monotonic() - start < seconds:
        for act in (follow, mark, press_hot_keys, use_menu, lose_excel):
            act(mac)
        last = rest(mac)
        rounds += 1
        if rounds == WARM_UP:
            first = last
        if rounds % 10 == 0:
            print(f"round {rounds}: {last['all']:.0f} objects, {last['memory'] / 1024:.0f} KB, "
                  f"{last['used'] / 1024:.0f} in use", flush=True)
    return rounds, first, last


def main():
    Mac.program = sys.argv[1]
    seconds = float(sys.argv[2] if len(sys.argv) > 2 else os.environ.get("QUORIN_SOAK_SECONDS", 60))
    Mac.desk = Desk()
    mac = None
    try:
        mac = Mac()
        rounds, first, last = soak(mac, seconds)
        more = {kind: count - first["alive"].get(kind, 0) for kind, count in last["alive"].items()
                if count > first["alive"].get(kind, 0)}
        grown = last["used"] - first["used"]
        print(f"{rounds} rounds; grown by {grown / 1024:.0f} KB in use since round {WARM_UP}, alive more: "
              f"{json.dumps(more)}")
        end = mac.quit()
        if more or grown > MOST_BYTES + MOST_BYTES_A_ROUND * (rounds - WARM_UP):
            raise Trouble("the program grows")
        if (end["raised"], end["logged"], end["strayEvents"], end["conditions"]) != (0, [], 0, []):
            raise Trouble(f"the program did not end well: {end}")
    finally:
        if mac:
            mac.end()
        Mac.desk.end()


if __name__ == "__main__":
    main()
