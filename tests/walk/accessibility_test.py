#!/usr/bin/python3
"""The window as a screen reader has it, through the bus of assistive tools: names, roles and values, sliders and
switches that it moves, and the order of Tab. See `desktop`; needs besides at-spi2-core, gir1.2-atspi-2.0 and
python3-gi, which belong to the system's own Python."""

import os
import subprocess
import unittest

import gi

from desktop import Desktop

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

WITH_NAME = {Atspi.Role.PUSH_BUTTON, Atspi.Role.CHECK_BOX, Atspi.Role.SLIDER, Atspi.Role.COMBO_BOX, Atspi.Role.TEXT,
             Atspi.Role.PROGRESS_BAR, Atspi.Role.MENU_ITEM, Atspi.Role.LABEL}
STRIP = ["Volume", "Volume up", "Volume down", "Pan to the left", "Pan", "Pan to the right"]
MUSIC = STRIP + ["Pitch down", "Pitch", "Pitch up", "Voice removal down", "Voice removal", "Voice removal up", "Mute",
                 "Solo", "FX List", "Set up the effects", "Save the effects as a pack", "Current music file",
                 "Load a music file"]
VOICE = STRIP + ["Gain down", "Gain", "Gain up", "Live", "Mute", "Solo", "FX List", "Set up the effects",
                 "Save the effects as a pack"]
MASTER = ["Master volume", "Master volume up", "Master volume down", "Mute master"]


def below(parent):
    yield parent
    for i in range(parent.get_child_count()):
        child = parent.get_child_at_index(i)
        if child is not None:
            yield from below(child)


def has(element, state):
    return element.get_state_set().contains(state)


class Accessibility(Desktop):
    def setUp(self):
        super().setUp()
        reading, writing = os.pipe()
        self.begin(["dbus-daemon", "--session", "--nofork", f"--print-address={writing}"], env=self.environment,
                   pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as bus:
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.readline().strip()
        del self.environment["NO_AT_BRIDGE"]
        self.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        # This side's library reads them once.
        os.environ.update(self.environment)
        Atspi.init()
        self.start_first()
        self.wait("the program on the bus", self.find_program)

    def find_program(self):
        desktop = Atspi.get_desktop(0)
        programs = [desktop.get_child_at_index(i) for i in range(desktop.get_child_count())]
        self.tree = next((program for program in programs if program and program.get_name() == "velmora"), None)
        return self.tree is not None

    def strip(self, name):
        return next(element for element in below(self.tree) if element.get_name() == name)

    def control(self, strip, name):
        return next((element for element in below(self.strip(strip)) if element.get_name() == name), None)

    @staticmethod
    def numbers(count):
        return [f"Select channel {number + 1}" for number in range(count)]

    def focused(self):
        return next((element.get_name() for element in below(self.tree) if has(element, Atspi.StateType.FOCUSED)
                     and has(element, Atspi.StateType.FOCUSABLE)), "")

    def test_window(self):
        elements = list(below(self.tree))
        nameless = [element.get_role_name() for element in elements
                    if element.get_role() in WITH_NAME and not element.get_name()]
        self.assertEqual(nameless, [])
        sliders = [element for element in elements if element.get_role() == Atspi.Role.SLIDER]
        self.assertEqual(len(sliders), 8)
        for slider in sliders:
            low, high = Atspi.Value.get_minimum_value(slider), Atspi.Value.get_maximum_value(slider)
            self.assertLess(low, high)
            self.assertTrue(low <= Atspi.Value.get_current_value(slider) <= high, slider.get_name())

        pan = self.control("Voice channel", "Pan")
        Atspi.Value.set_current_value(pan, 40)
        self.wait("the pan", lambda: Atspi.Value.get_current_value(pan) == 40)
        self.wait("its text", lambda: self.control("Voice channel", "+40%") is not None)
        mute = self.control("Music channel", "Mute")
        self.assertFalse(has(mute, Atspi.StateType.CHECKED))
        Atspi.Action.do_action(mute, 0)
        self.wait("the mute", lambda: has(mute, Atspi.StateType.CHECKED))
        # The pan went through the document.
        self.wait("a step to undo", lambda: has(self.control("velmora", "Undo"), Atspi.StateType.ENABLED))

        strips = {"Music channel": ["Drums"] + self.numbers(2) + MUSIC,
                  "Voice channel": ["Keys"] + self.numbers(4) + ["More channels"] + VOICE, "Master": MASTER}
        order = [name for strip, names in strips.items() for name in names
                 if has(self.control(strip, name), Atspi.StateType.ENABLED)]
        self.assertGreater(len(order), 40)
        Atspi.Component.grab_focus(self.control("Music channel", "Drums"))
        for name in order:
            self.wait(f"the focus on '{name}'", lambda name=name: self.focused() == name, seconds=5)
            self.keys("Tab")
        self.shot("tabbed")


if __name__ == "__main__":
    unittest.main()
