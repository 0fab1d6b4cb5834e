#!/usr/bin/env python3
"""Two installations share one notebook through real sync tools on 127.0.0.1 and add notes at the
same time, in the same second and with clocks an hour apart; both must end with the same tree
holding every note. With the app given (and Xvfb installed), one side also has the notebook open
in the app, which must show a note the other side adds within two seconds of its arrival.
Usage: sync.py QUILLERY_CLI [QUILLERY]"""

import glob
import json
import os
import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree as ET

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "e2e"))
import screen  # noqa: E402  (the end-to-end run's look at the window)

CLI = os.path.abspath(sys.argv[1])
APP = os.path.abspath(sys.argv[2]) if len(sys.argv) > 2 and os.path.exists(sys.argv[2]) else None
WAIT_SECONDS = 60
# From a journal's arrival in the package to its note on screen.
LIVE_SECONDS = 2.0
ROOT = tempfile.mkdtemp(prefix="quillery-sync-")


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


class Installation:
    """One machine's quillery-cli: its own home, preferences and runtime folder."""

    def __init__(self, root, name, notebook):
        self.name = name
        self.home = os.path.join(root, name)
        self.notebook = notebook
        self.env = dict(os.environ)
        for key, sub in (("HOME", "home"), ("XDG_CONFIG_HOME", "config"),
                         ("XDG_CACHE_HOME", "cache"), ("XDG_RUNTIME_DIR", "run")):
            path = os.path.join(self.home, sub)
            os.makedirs(path, exist_ok=True)
            os.chmod(path, 0o700)
            self.env[key] = path

    def start(self, arguments, clock=None):
        command = [CLI] + arguments
        if clock:
            command = ["faketime", "-f", clock] + command
        return subprocess.Popen(command, env=self.env, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, text=True)

    def run(self, arguments, clock=None):
        process = self.start(arguments, clock)
        out, err = process.communicate()
        if process.returncode != 0:
            raise SystemExit(f"{self.name}: quillery-cli {' '.join(arguments)} failed:\n{err}")
        return out.strip()

    def add(self, text, parent=None, clock=None):
        arguments = ["add", self.notebook, "--text", text]
        if parent:
            arguments += ["--parent", parent]
        return self.run(arguments, clock)

    def export(self):
        process = self.start(["export", self.notebook])
        out, _ = process.communicate()
        return out if process.returncode == 0 else None


def texts(tree_json):
    def walk(node):
        yield node["text"]
        for child in node.get("children", []):
            yield from walk(child)

    return list(walk(json.loads(tree_json)["root"]))


def wait_for(condition, what, sync=None, poll=0.5):
    deadline = time.time() + WAIT_SECONDS
    while time.time() < deadline:
        if sync:
            sync()
        if condition():
            return
        time.sleep(poll)
    raise SystemExit(f"timed out waiting for {what}")


def pair(folders):
    """Installations A and B sharing the notebook in their folders, made by A."""
    a = Installation(ROOT, "A", os.path.join(folders["a"], "Notes.quillery"))
    b = Installation(ROOT, "B", os.path.join(folders["b"], "Notes.quillery"))
    a.run(["new", a.notebook])
    return a, b


def converge(a, b, expected, sync=None):
    def same():
        ta = a.export()
        return ta and ta == b.export() and sorted(filter(None, texts(ta))) == sorted(expected)

    wait_for(same, "both sides to hold every note", sync)


def share(a, b, sync=None):
    """Adds notes from both sides at once, in one second and with skewed clocks."""
    expected = []
    # At the same time, many each.
    running = []
    for side in (a, b):
        script = [f"{CLI} add {side.notebook} --text '{side.name} {i}'" for i in range(8)]
        running.append(subprocess.Popen(["bash", "-c", " && ".join(script)], env=side.env,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE))
        expected += [f"{side.name} {i}" for i in range(8)]
    for process in running:
        if process.wait() != 0:
            raise SystemExit(process.stderr.read().decode())
    # A child under the other machine's note, stamped in the same second; and children under a
    # note made by a clock an hour ahead or behind.
    for label, clock_of_parent, clock_of_child in (("same second", "@2031-05-06 07:08:09",
                                                    "@2031-05-06 07:08:09"),
                                                   ("parent ahead", "+1h", None),
                                                   ("parent behind", "-1h", None)):
        parent = a.add(f"parent {label}", clock=clock_of_parent)
        expected.append(f"parent {label}")
        wait_for(lambda: b.export() and f"parent {label}" in texts(b.export()),
                 f"{label} parent on the other side", sync)
        b.add(f"child {label}", parent=parent, clock=clock_of_child)
        a.add(f"sibling {label}", parent=parent, clock=clock_of_child)
        expected += [f"child {label}", f"sibling {label}"]
    converge(a, b, expected, sync)
    return expected


class WatchingApp:
    """One installation's app, on an X display of its own, with the notebook open."""

    def __init__(self, side):
        self.xvfb = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1024x700x24",
                                      "-nolisten", "tcp"], stdout=subprocess.PIPE,
                                     stderr=subprocess.DEVNULL, text=True)
        self.env = dict(side.env, DISPLAY=":" + self.xvfb.stdout.readline().strip(),
                        QT_QPA_PLATFORM="xcb", LC_ALL="C.UTF-8")
        for key in ("WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "SESSION_MANAGER"):
            self.env.pop(key, None)
        for key, sub in (("XDG_DATA_HOME", "data"), ("XDG_STATE_HOME", "state")):
            self.env[key] = os.path.join(side.home, sub)
        self.log = open(os.path.join(ROOT, f"app-{side.name}.log"), "w")
        self.app = subprocess.Popen([APP, side.notebook], env=self.env, stdout=self.log,
                                    stderr=subprocess.STDOUT)
        self.window = None
        wait_for(self.found_window, "the app's window")
        self.xdotool(["windowfocus", "--sync", self.window])

    def xdotool(self, arguments):
        return subprocess.run(["xdotool"] + arguments, env=self.env, capture_output=True,
                              text=True, timeout=20).stdout.strip()

    def found_window(self):
        if self.app.poll() is not None:
            raise SystemExit(f"the app exited with status {self.app.returncode}")
        found = self.xdotool(["search", "--onlyvisible", "--name", "^Notes"]).split()
        self.window = found[0] if found else None
        return self.window is not None

    def selected_row(self):
        """The top of the focused column's selected row, or None."""
        os.environ["DISPLAY"] = self.env["DISPLAY"]
        box = screen.highlight_box(screen.capture(self.window))
        return box and box[1]

    def quit(self):
        self.xdotool(["key", "ctrl+q"])
        status = self.app.wait(timeout=WAIT_SECONDS)
        self.xvfb.terminate()
        self.xvfb.wait()
        if status != 0:
            raise SystemExit(f"the app exited with status {status} after Ctrl+Q")


def shows_live(a, b, expected):
    """B has the notebook open in the app; a note A adds above the selected one must push the
    selection down a row on B's screen within LIVE_SECONDS of the journal reaching B."""
    app = WatchingApp(b)
    try:
        wait_for(lambda: app.selected_row() is not None, "the first note selected in the app")
        top = app.selected_row()
        text = "live from A"
        a.run(["add", a.notebook, "--text", text, "--at", "0"])
        expected.append(text)

        def arrived():
            return any(text.encode() in pathlib.Path(journal).read_bytes()
                       for journal in glob.glob(os.path.join(b.notebook, "*.journal")))

        wait_for(arrived, "A's note to reach B's package", poll=0.05)
        arrival = time.monotonic()
        while (app.selected_row() or top) <= top:
            if time.monotonic() - arrival > LIVE_SECONDS:
                raise SystemExit(f"the app on B did not show A's note within {LIVE_SECONDS} s")
            time.sleep(0.05)
        shown = time.monotonic() - arrival
    finally:
        app.quit()
    return shown


def syncthing_config(home, listen_port, gui_port, other_id, other_port, folder):
    path = os.path.join(home, "config.xml")
    tree = ET.parse(path)
    root = tree.getroot()
    own_id = root.find("device").get("id")
    options = root.find("options")
    settings = {"listenAddress": f"tcp://127.0.0.1:{listen_port}",
                "globalAnnounceEnabled": "false", "localAnnounceEnabled": "false",
                "relaysEnabled": "false", "natEnabled": "false", "urAccepted": "-1",
                "startBrowser": "false", "crashReportingEnabled": "false",
                "autoUpgradeIntervalH": "0"}
    for key, value in settings.items():
        element = options.find(key)
        if element is None:
            element = ET.SubElement(options, key)
        element.text = value
    root.find("gui").find("address").text = f"127.0.0.1:{gui_port}"
    device = ET.SubElement(root, "device", id=other_id, name="other", compression="metadata",
                           introducer="false")
    ET.SubElement(device, "address").text = f"tcp://127.0.0.1:{other_port}"
    shared = ET.SubElement(root, "folder", id="notes", label="notes", path=folder,
                           type="sendreceive", rescanIntervalS="2", fsWatcherEnabled="true",
                           fsWatcherDelayS="1")
    for device_id in (own_id, other_id):
        ET.SubElement(shared, "device", id=device_id)
    tree.write(path)


def with_syncthing():
    homes, ids, listen = {}, {}, {}
    for name in ("a", "b"):
        homes[name] = os.path.join(ROOT, "syncthing-" + name)
        subprocess.run(["syncthing", "generate", "--home=" + homes[name], "--no-default-folder"],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        ids[name] = subprocess.run(["syncthing", "serve", "--home=" + homes[name], "--device-id"],
                                   check=True, capture_output=True, text=True).stdout.strip()
        listen[name] = free_port()
    folders = {name: os.path.join(ROOT, "sync-" + name) for name in ("a", "b")}
    for name, other in (("a", "b"), ("b", "a")):
        os.makedirs(folders[name])
        syncthing_config(homes[name], listen[name], free_port(), ids[other], listen[other],
                         folders[name])
    daemons = []
    try:
        for name in ("a", "b"):
            log = open(os.path.join(ROOT, f"syncthing-{name}.log"), "w")
            env = dict(os.environ, HOME=homes[name], STNODEFAULTFOLDER="1")
            daemons.append(subprocess.Popen(
                ["syncthing", "serve", "--home=" + homes[name], "--no-browser", "--no-restart"],
                env=env, stdout=log, stderr=subprocess.STDOUT))
        a, b = pair(folders)
        wait_for(lambda: b.export() is not None, "the new notebook on the other side")
        notes = share(a, b)
        if APP and shutil.which("Xvfb") and shutil.which("xdotool"):
            shown = shows_live(a, b, notes)
            print(f"Syncthing: the app showed the other side's note {shown:.2f} s after it "
                  f"arrived")
            converge(a, b, notes)
        return notes
    finally:
        for daemon in daemons:
            daemon.terminate()
            daemon.wait()


def with_unison():
    folders = {name: os.path.join(ROOT, "unison-" + name) for name in ("a", "b")}
    for folder in folders.values():
        os.makedirs(folder)
    env = dict(os.environ, UNISON=os.path.join(ROOT, "unison-state"))

    def sync():
        subprocess.run(["unison", folders["a"], folders["b"], "-batch", "-auto", "-times",
                        "-silent", "-confirmbigdel=false"], env=env, check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    a, b = pair(folders)
    sync()
    return share(a, b, sync)


def main():
    missing = [tool for tool in ("syncthing", "unison", "faketime") if not shutil.which(tool)]
    try:
        if missing:
            print(f"sync tests skipped: {', '.join(missing)} not installed")
            return
        for name, scenario in (("Syncthing", with_syncthing), ("Unison", with_unison)):
            started = time.time()
            notes = scenario()
            print(f"{name}: both sides hold the same {len(notes)} notes "
                  f"({time.time() - started:.1f} s)")
    finally:
        shutil.rmtree(ROOT, ignore_errors=True)


if __name__ == "__main__":
    main()
