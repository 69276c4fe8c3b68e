"""The mistakes that compile, link and fail on a Mac. Each rule is a function over all sources of
the adapters; its comment says what goes wrong where the rule is broken."""
import re

from bodies import body_findings
from names import name_findings
from sourcetext import Source, arguments

LONGEST = 300
WORKSPACE = r"NSWorkspace\w+Notification"


def panel_rules(source):
    for kind, name, parent, body, start in source.classes():
        if kind == "interface" and parent in ("NSPanel", "NSWindow"):
            # A panel that may not become key never gets the keyboard; typing goes elsewhere.
            override = re.search(r"- \(BOOL\)canBecomeKeyWindow\s*\{\s*return YES;\s*\}", source.text)
            if not override:
                yield source.at(start, f"{name} does not override canBecomeKeyWindow with YES")
    for made in source.find(r"initWithContentRect:(.*?)styleMask:(.*?)backing:"):
        mask = made.group(2)
        # Given later, the non-activating style is kept by the window and ignored by the server.
        for needed in ("Titled", "Closable", "Resizable", "UtilityWindow", "NonactivatingPanel"):
            if f"NSWindowStyleMask{needed}" not in mask:
                yield source.at(made.start(), f"the style mask at init has no {needed}")
        # The default of a window made in code is to free itself when it is closed.
        if not source.has(r"releasedWhenClosed = NO"):
            yield source.at(made.start(), "releasedWhenClosed is not set to NO")
        # The default of a panel is to hide when the application is not active, as ours never is.
        if not source.has(r"hidesOnDeactivate = NO"):
            yield source.at(made.start(), "hidesOnDeactivate is not set to NO")
        if not source.has(r"\.level = NSFloatingWindowLevel"):
            yield source.at(made.start(), "the level is not NSFloatingWindowLevel")
        for needed in ("CanJoinAllSpaces", "FullScreenAuxiliary"):
            if not source.has(rf"collectionBehavior =[^;]*{needed}"):
                yield source.at(made.start(), f"the collection behaviour lacks {needed}")
    for late in source.find(r"\.styleMask\s*[|&]?=[^=]|setStyleMask:"):
        yield source.at(late.start(), "the style mask is changed after init")
    for named in source.find(r"setFrameAutosaveName:"):
        # It saves every frame, also those that we set; a saved frame means that the user moved it.
        yield source.at(named.start(), "AppKit saves the frame by itself")


def notification_rules(source):
    for name in source.find(WORKSPACE):
        call = source.statement(name.start())
        # The default centre never posts the workspace's notifications.
        if "addObserver" in call and ("defaultCenter" in call or
                                      "sharedWorkspace.notificationCenter" not in call):
            yield source.at(name.start(), "awaited at another centre than the workspace's")


def index_rules(source):
    """Items of descriptors are counted from 1; item 0 is none, or an insertion at the end."""
    uses = (r"\bdescriptorAtIndex:([^\]]+)\]", r"\bkeywordForDescriptorAtIndex:([^\]]+)\]",
            r"\binsertDescriptor:[^;]*?\batIndex:([^\]]+)\]")
    for use in (found for pattern in uses for found in source.find(pattern)):
        index = use.group(1).strip()
        before = source.text[:use.start()]
        name, added = re.fullmatch(r"(?:static_cast<\w+>\()?(\w+)\)?(?:\+\+)?(?:\s*\+\s*(\d+))?",
                                   index).groups() if re.match(r"[\w(<>) +]+$", index) else ("", "")
        if name.isdigit():
            first = int(name)
        else:
            starts = re.findall(rf"\b{name}\s*=\s*(\d+)", before) if name else []
            first = int(starts[-1]) + int(added or 0) if starts else 0
            until = re.findall(rf"\b{name}\s*(<=?|!=)\s", before) if name else []
            if first == 1 and not added and until and until[-1] != "<=":
                yield source.at(use.start(), f"'{name}' stops before the last item")
        if first < 1:
            yield source.at(use.start(), f"descriptor items are counted from 1, not by '{index}'")


def untyped_rules(source):
    """An `id` may be of any class, and a message that its class lacks ends the program: it is asked
    for its class, and cast, before anything else is asked of it."""
    asked = "isKindOfClass|respondsToSelector|isEqual|description"
    for variable in source.find(r"\bid (\w+) = "):
        sent = rf"\[{variable.group(1)} (?!(?:{asked})\b)\w+"
        for message in re.finditer(sent, source.text[variable.end():]):
            yield source.at(variable.end() + message.start(),
                            f"'{variable.group(1)}' may be of a class that has no such message")


def thread_rules(source):
    for call in source.find(r"\bdispatch_(?:async|sync|after)\s*\("):
        given = arguments(source.text, call.start())
        queue = given[1] if "after" in call.group() else given[0]
        # Other queues have no business in adapters: AppKit and scripts belong to one thread each.
        if queue != "dispatch_get_main_queue()":
            yield source.at(call.start(), f"work on the queue {queue}")
        if "sync" in call.group() and "async" not in call.group():
            yield source.at(call.start(), "dispatch_sync waits for the main thread")
    for other in source.find(r"dispatch_queue_create|detachNewThread|NSOperationQueue alloc|std::thread|"
                             r"dispatch_get_global_queue|performSelectorInBackground"):
        yield source.at(other.start(), f"{other.group()}: adapters start no thread but the script's")
    if source.has(r"NSThread alloc") and source.has(r"<(AppKit|WebKit|Cocoa)/"):
        yield f"{source.name}: the file that starts a thread must not see AppKit"


def run_loop_rules(source):
    for loop in source.find(r"runMode:\w+\s+beforeDate:|currentRunLoop\] run\b|CFRunLoopRun\("):
        before = source.text[:loop.start()]
        # A run loop without a source returns at once, again and again, and takes no work.
        if "addPort:" not in before:
            yield source.at(loop.start(), "the run loop is run before a port was added")
        turn = before.rfind("while")
        if turn < 0 or "@autoreleasepool" not in before[turn:]:
            yield source.at(loop.start(), "no autorelease pool for each turn of the run loop")
        if "beforeDate" not in loop.group():
            yield source.at(loop.start(), "the loop is run in a way that never gives a turn back")


def script_rules(source):
    if not source.has(r"\bNSAppleScript\b"):
        return
    for position, body in source.methods():
        if "executeAppleEvent:" in body and "[NSAppleScript alloc]" in body:
            yield source.at(position, "the script is made anew for each call")
    if not source.has(r"performSelector:[^;]*onThread:"):
        yield f"{source.name}: nothing hands calls to the script's own thread"
    for call in source.find(r"executeAppleEvent:|compileAndReturnError:"):
        enclosing = [body for at, body in source.methods()
                     if at < call.start() < at + len(body) + 400 and call.group() in body]
        # NSAppleScript works on the thread that compiled it, or crashes.
        if not enclosing:
            yield source.at(call.start(), f"{call.group()} outside the script thread's methods")
        elif any("dispatch_" in body for body in enclosing):
            yield source.at(call.start(), f"{call.group()} on a dispatch queue")


def event_rules(source):
    for made in source.find(r"appleEventWithEventClass:(.*?)transactionID:(\s*\w+)"):
        for needed in ("currentProcessDescriptor", "kAutoGenerateReturnID", "kAnyTransactionID"):
            if needed not in made.group():
                yield source.at(made.start(), f"the script's event is made without {needed}")


def web_rules(source):
    for load in source.find(r"loadFileURL:(.*?)allowingReadAccessToURL:(.*?)\];"):
        if load.group(1).strip() == load.group(2).strip():
            yield source.at(load.start(), "read access to the file; the page needs its folder")
    added = list(source.find(r"addScriptMessageHandler:\s*(\S+)"))
    for handler in added:
        if handler.group(1) == "self":
            yield source.at(handler.start(), "the content controller keeps its handler for ever")
    if len(added) > 1:
        # The second one of the same name raises an exception.
        yield source.at(added[1].start(), "a second script message handler")
    if added and not source.has(r"removeScriptMessageHandlerForName:"):
        yield source.at(added[0].start(), "the script message handler is never removed")
    for kind, name, _, body, start in source.classes():
        if kind == "interface" and re.match(r"[^@]*<[^>]*WKScriptMessageHandler", body):
            for held in re.finditer(r"@property\(([^)]*)\)", body):
                if not re.search(r"\b(weak|assign)\b", held.group(1)):
                    yield source.at(start, f"{name} is kept for ever and keeps something itself")


def capture_rules(source):
    for kind, name, _, body, start in source.classes():
        if re.search(r"@property[^;]*std::function", body):
            yield source.at(start, f"{name} holds a std::function, whose captures nobody sees")
        if kind != "implementation":
            continue
        for introducer in re.finditer(r"(?<![\w\])])\[[=&\w, ]*\]\s*(?:\([^)]*\)\s*)?(?:mutable\s*)?\{", body):
            rest = Source.block(_Body(body), introducer.start())
            if re.search(r"\bself\b|(?<![\w>.])_\w+", introducer.group() + rest):
                yield source.at(start + introducer.start(), "a C++ lambda keeps self")


class _Body:
    """Just enough of a Source for Source.block."""

    def __init__(self, text):
        self.text = text


def hot_key_rules(source):
    calls = list(source.find(r"\bRegisterEventHotKey\s*\("))
    installed = {arguments(source.text, each.start())[0]
                 for each in source.find(r"\bInstallEventHandler\s*\(")}
    for call in calls:
        target = arguments(source.text, call.start())[3]
        if target not in installed:
            yield source.at(call.start(), f"registered at {target}, handled at {sorted(installed)}")
        if source.statement(call.start()).startswith("RegisterEventHotKey"):
            yield source.at(call.start(), "the status of RegisterEventHotKey is dropped")


def service_rules(source):
    for test in source.find(r"[!=]=\s*SMAppServiceStatusNot(?:Found|Registered)"):
        # Before the first registration the answer may be either of the two.
        yield source.at(test.start(), "only 'enabled' may be asked for; all else means off")


def updater_rules(source):
    for direct in source.find(r"\[\[?SPU\w+\s+(?:alloc|class)\b|\bSPU\w+\.class\b"):
        yield source.at(direct.start(), "names Sparkle's class; the program would not start "
                                        "without the framework")
    if source.has(r"initWithStartingUpdater:") and not source.has(
            r"\b(controller_|_controller|self\.controller)\s*=[^=]"):
        yield f"{source.name}: the updater's controller is not kept"


PER_SOURCE = (panel_rules, notification_rules, index_rules, untyped_rules, thread_rules,
              run_loop_rules, script_rules, event_rules, web_rules, capture_rules, hot_key_rules,
              service_rules, updater_rules)


def whole_rules(sources):
    if not any(source.has(r"setActivationPolicy:NSApplicationActivationPolicyAccessory")
               for source in sources):
        yield "app/macos: nobody makes the application an accessory"
    for source in sources:
        if source.raw.count("\n") > LONGEST:
            yield f"{source.name}: longer than {LONGEST} lines"


def findings(project, folder):
    sources = [Source(path, path.relative_to(project)) for path in sorted(folder.rglob("*"))
               if path.suffix in (".mm", ".h")]
    found = [text for source in sources for rule in PER_SOURCE for text in rule(source)]
    return [*found, *whole_rules(sources), *name_findings(project), *body_findings(project)]
