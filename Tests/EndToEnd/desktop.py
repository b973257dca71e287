"""A desktop for tests: a virtual display, a message bus, and the accessibility tree of what runs there."""

import os
import subprocess
import tempfile
import time

PATIENCE = 30  # Seconds until something that should happen counts as not happening.


def wait_until(condition, what):
    """Polls `condition` until it gives something true, which is returned; fails after a while."""
    end = time.monotonic() + PATIENCE
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise AssertionError(f"in {PATIENCE} s there was no: {what}")
        time.sleep(0.02)


class Desktop:
    """Starts a display and a bus of its own and makes them this process's."""

    def __init__(self):
        self._processes = []
        # Of the person who runs the tests, nothing may be seen or touched.
        for name in ("WAYLAND_DISPLAY", "XDG_SESSION_TYPE", "AT_SPI_BUS_ADDRESS"):
            os.environ.pop(name, None)
        self._folder = tempfile.TemporaryDirectory()
        os.environ.update(
            XDG_RUNTIME_DIR=self._folder.name,
            XDG_DATA_HOME=self._folder.name + "/data",
            LC_ALL="C.UTF-8",
            QT_QPA_PLATFORM="xcb",
            QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
            QT_SCALE_FACTOR="1",
        )
        os.environ["DISPLAY"] = ":" + self._start_and_read(
            lambda fd: ["Xvfb", "-displayfd", str(fd), "-screen", "0", "1600x1000x24", "-nolisten", "tcp", "-noreset"]
        )
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = self._start_and_read(
            lambda fd: ["dbus-daemon", "--session", "--nofork", f"--print-address={fd}"]
        )

    def _start_and_read(self, command):
        """Starts what `command` gives for a descriptor, and returns the line that it writes there."""
        reading, writing = os.pipe()
        with os.fdopen(reading) as answer:
            self._processes.append(
                subprocess.Popen(command(writing), pass_fds=[writing], stderr=subprocess.DEVNULL)
            )
            os.close(writing)
            line = answer.readline().strip()
        if not line:
            raise RuntimeError(f"{command(writing)[0]} did not start")
        return line

    def close(self):
        for process in reversed(self._processes):
            process.terminate()
            process.wait()
        self._folder.cleanup()


class Application:
    """The program, running on the desktop, with its first window in front."""

    def __init__(self, program, *arguments, state=None):
        """`state` is where the program keeps unsaved texts; without it, where nobody looks for them again."""
        self._own_state = tempfile.TemporaryDirectory() if state is None else None
        environment = dict(os.environ, XDG_STATE_HOME=str(state or self._own_state.name))
        self.process = subprocess.Popen([program, *map(str, arguments)], env=environment)
        try:
            self.focus()
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        if self._own_state is not None:
            self._own_state.cleanup()

    def windows(self):
        """The numbers of the program's windows by their titles, dialogs and menus included."""
        if self.process.poll() is not None:
            raise AssertionError(f"the program ended with {self.process.returncode}")
        found = self._xdotool("search", "--onlyvisible", "--pid", str(self.process.pid), "--name", ".")
        return {self._xdotool("getwindowname", number).strip(): number for number in found.split()}

    def focus(self, starts=""):
        """Gives the keyboard to the window whose title starts so, as a click on it would."""

        def find():
            named = (number for title, number in self.windows().items() if title.startswith(starts) and "Tamo" in title)
            return next(named, None)

        self._window = wait_until(find, f"window {starts}")
        self._focus(self._window)

    def _focus(self, window):
        def is_focused():
            self._xdotool("windowfocus", window)
            return self._xdotool("getwindowfocus").strip() == window

        wait_until(is_focused, "focus")
        # Keys go where the program believes the focus to be.
        wait_until(lambda: self.find(state="active"), "active window")

    def answer(self, title, *keys):
        """Presses keys in the dialog with that title, until it has gone."""
        dialog = wait_until(lambda: self.windows().get(title), f"dialog {title}")
        self._focus(dialog)
        self.press(*keys)
        wait_until(lambda: title not in self.windows(), f"end of the dialog {title}")
        self._focus(self._window)

    @staticmethod
    def _xdotool(*arguments):
        return subprocess.run(["xdotool", *arguments], capture_output=True, text=True, check=False).stdout

    def press(self, *keys):
        self._xdotool("key", "--clearmodifiers", *keys)

    def type(self, text):
        self._xdotool("type", "--clearmodifiers", "--delay", "5", text)

    def click(self, x, y, button=1):
        self._xdotool("mousemove", str(x), str(y), "click", str(button))

    def click_on(self, accessible, button=1):
        """Clicks in the middle of what an accessible shows."""
        box = accessibility().Component.get_extents(accessible, accessibility().CoordType.SCREEN)
        self.click(box.x + box.width // 2, box.y + box.height // 2, button)

    def drag(self, start, end):
        """Carries with the left button from one place on the screen to another, as slowly as a hand."""
        self._xdotool("mousemove", *map(str, start), "mousedown", "1")
        steps = 12
        for step in range(1, steps + 1):
            place = [a + (b - a) * step // steps for a, b in zip(start, end)]
            self._xdotool("mousemove", *map(str, place), "sleep", "0.03")
        self._xdotool("sleep", "0.2", "mouseup", "1")

    def title(self):
        return self._xdotool("getwindowname", self._window).strip()

    # The accessibility tree

    def _root(self):
        desktop = accessibility().get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            if child is not None and child.get_process_id() == self.process.pid:
                return child
        return None

    def accessibles(self):
        """Everything that shows, breadth first, up to a few hundred children each; menus when they are open."""
        api = accessibility()
        root = self._root()
        queue = [] if root is None else [root]
        while queue:
            current = queue.pop(0)
            if current is None:
                continue
            shows = current == root or current.get_state_set().contains(api.StateType.SHOWING)
            if not shows or current.get_role_name() == "menu bar":
                continue
            yield current
            queue += [current.get_child_at_index(i) for i in range(min(current.get_child_count(), 300))]

    def find(self, role=None, state=None, starts=None, name=None):
        """The first accessible that shows, with that role, that state, and a name that is or starts so."""
        api = accessibility()
        try:
            for each in self.accessibles():
                if role is not None and each.get_role_name() != role:
                    continue
                shown = each.get_name() or ""
                if (starts is not None and not shown.startswith(starts)) or (name is not None and shown != name):
                    continue
                if state is None or each.get_state_set().contains(getattr(api.StateType, state.upper())):
                    return each
        except api_error():
            pass  # The tree changed meanwhile; the caller asks again.
        return None

    def wait_for(self, **what):
        return wait_until(lambda: self.find(**what), f"{what}")

    def names(self, role):
        try:
            return [each.get_name() for each in self.accessibles() if each.get_role_name() == role]
        except api_error():
            return []

    def focus_place(self):
        """Role and name of what has the focus; what it stands in may say that it has it, too."""
        focused = accessibility().StateType.FOCUSED
        try:
            found = [each for each in self.accessibles() if each.get_state_set().contains(focused)][-1]
            return found.get_role_name(), found.get_name()
        except (api_error(), IndexError):
            return None

    def rows(self):
        """What the rows of the tree say."""
        return self.names("table cell")


def accessibility():
    # Connects to the bus when it is first used, so only after the desktop stands.
    import gi

    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi

    return Atspi


def api_error():
    from gi.repository import GLib

    return GLib.Error
