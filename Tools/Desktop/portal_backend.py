"""What a desktop does for its portal: it watches for shortcuts and tells the colours, without asking
anybody: portal_backend.py [--portal]

Serves the real portal (org.freedesktop.impl.portal.desktop.test), or is a portal itself, one of the
kind that wants to be told who a program is. Whatever is asked, and what it does, is told by commands
to com.tavik.TestPortal.Command (as → s) of the bus name com.tavik.TestPortal, object /:
  calls              a JSON list of the calls so far, such as "BindShortcuts ALT+d", and forgets them
  answer N           how shortcuts are answered from now on: 0 bound, 1 declined, 2 failed, 3 bound
                     without ours
  answer later       not before the next "answer"
  press TIME         the shortcut was pressed at this time; press-other and press-elsewhere: another
                     shortcut, and one of another session
  release TIME       it was released
  close              the desktop ends the session
  color TYPE VALUE   how the desktop looks now, as a variant of this type: u 1 is dark
"""

import json
import sys

from gi.repository import Gio, GLib

IS_PORTAL = "--portal" in sys.argv[1:]
PREFIX = "org.freedesktop.portal." if IS_PORTAL else "org.freedesktop.impl.portal."
NAME = "org.freedesktop.portal.Desktop" if IS_PORTAL else "org.freedesktop.impl.portal.desktop.test"
PATH = "/org/freedesktop/portal/desktop"
TEST = "com.tavik.TestPortal"
COLOR = ("org.freedesktop.appearance", "color-scheme")


def arguments(types, direction):
    return "".join(f'<arg type="{each}" direction="{direction}"/>' for each in types.split())


def method(name, inputs="", outputs=""):
    return f'<method name="{name}">{arguments(inputs, "in")}{arguments(outputs, "out")}</method>'


def signal(name, types=""):
    return f'<signal name="{name}">{arguments(types, "out")}</signal>'


# A backend answers a call itself, a portal by a request.
OUTPUTS = "o" if IS_PORTAL else "u a{sv}"
INTERFACES = Gio.DBusNodeInfo.new_for_xml(f"""
<node>
  <interface name="{PREFIX}GlobalShortcuts">
    {method("CreateSession", "a{sv}" if IS_PORTAL else "o o s a{sv}", OUTPUTS)}
    {method("BindShortcuts", ("o" if IS_PORTAL else "o o") + " a(sa{sv}) s a{sv}", OUTPUTS)}
    {signal("Activated", "o s t a{sv}")}
    {signal("Deactivated", "o s t a{sv}")}
    <property name="version" type="u" access="read"/>
  </interface>
  <interface name="{PREFIX}Settings">
    {method("ReadAll", "as", "a{sa{sv}}")}
    {method("Read", "s s", "v")}
    {signal("SettingChanged", "s s v")}
    <property name="version" type="u" access="read"/>
  </interface>
  <interface name="{PREFIX}Session">
    {method("Close")}
    {signal("Closed")}
    <property name="version" type="u" access="read"/>
  </interface>
  <interface name="{PREFIX}Request">
    {method("Close")}
    {signal("Response", "u a{sv}")}
  </interface>
  <interface name="org.freedesktop.host.portal.Registry">
    {method("Register", "s a{sv}")}
  </interface>
  <interface name="{TEST}">
    {method("Command", "as", "s")}
  </interface>
</node>""")


class Portal:
    def __init__(self, bus):
        self.bus = bus
        self.calls = []
        self.session = "/none"
        self.code = 0
        self.waiting = []
        self.color = GLib.Variant("u", 0)
        self.offer(PATH, PREFIX + "GlobalShortcuts")
        self.offer(PATH, PREFIX + "Settings")
        if IS_PORTAL:
            self.offer(PATH, "org.freedesktop.host.portal.Registry")
        self.offer("/", TEST)

    def offer(self, path, interface):
        return self.bus.register_object(path, INTERFACES.lookup_interface(interface), self.on_call,
                                        lambda *_: GLib.Variant("u", 1), None)

    def emit(self, path, interface, name, *values):
        types = {"Response": "(ua{sv})", "SettingChanged": "(ssv)", "Closed": "()"}
        self.bus.emit_signal(None, path, PREFIX + interface, name,
                             GLib.Variant(types.get(name, "(osta{sv})"), values))

    def on_call(self, bus, sender, path, interface, name, values, invocation):
        given = values.unpack()
        handler = {
            "Command": self.command, "Register": self.register, "CreateSession": self.create,
            "BindShortcuts": self.bind, "Read": self.read, "ReadAll": self.read_all,
        }.get(name)
        if handler is not None:
            handler(invocation, *given)
        else:
            self.calls.append(f"{name} {interface.rsplit('.', 1)[1]}")
            invocation.return_value(None)

    # Shortcuts

    def register(self, invocation, application, options):
        self.calls.append(f"Register {application}")
        invocation.return_value(None)

    def create(self, invocation, *given):
        self.calls.append("CreateSession")
        # What a backend is given are paths that the portal has chosen.
        sender = invocation.get_sender()[1:].replace(".", "_")
        self.session = (f"{PATH}/session/{sender}/{given[-1]['session_handle_token']}"
                        if IS_PORTAL else given[1])
        self.offer(self.session, PREFIX + "Session")
        respond = self.responder(invocation, given)
        respond(0, {"session_handle": GLib.Variant("s", self.session)} if IS_PORTAL else {})

    def bind(self, invocation, *given):
        shortcuts = given[1] if IS_PORTAL else given[2]
        self.calls += [f"BindShortcuts {id} {details['preferred_trigger']} {details['description']}"
                       for id, details in shortcuts]
        self.waiting.append(self.responder(invocation, given))
        self.answer()

    def answer(self):
        if self.code is None:
            return
        bound = [("other" if self.code == 3 else "lookup",
                  {"trigger_description": GLib.Variant("s", "Alt+D")})]
        for respond in self.waiting:
            respond(self.code % 3, {"shortcuts": GLib.Variant("a(sa{sv})", bound)})
        self.waiting = []

    def responder(self, invocation, given):
        """What answers a call that has a request."""
        if not IS_PORTAL:
            request = self.offer(given[0], PREFIX + "Request")

            def respond(code, results):
                self.bus.unregister_object(request)
                invocation.return_value(GLib.Variant("(ua{sv})", (code, results)))

            return respond
        sender = invocation.get_sender()[1:].replace(".", "_")
        path = f"{PATH}/request/{sender}/{given[-1]['handle_token']}"
        request = self.offer(path, PREFIX + "Request")
        invocation.return_value(GLib.Variant("(o)", (path,)))

        def respond_later(code, results):
            self.bus.unregister_object(request)
            self.emit(path, "Request", "Response", code, results)

        return respond_later

    # Settings

    def read(self, invocation, group, key):
        self.calls.append(f"Read {group} {key}")
        invocation.return_value(GLib.Variant("(v)", (GLib.Variant("v", self.color),)))

    def read_all(self, invocation, groups):
        settings = {COLOR[0]: {COLOR[1]: self.color}}
        invocation.return_value(GLib.Variant("(a{sa{sv}})", (settings,)))

    # Commands

    def command(self, invocation, words):
        result = []
        match words:
            case ["calls"]:
                result, self.calls = self.calls, []
            case ["answer", code]:
                self.code = None if code == "later" else int(code)
                self.answer()
            case ["press" | "press-other" | "press-elsewhere" | "release" as what, time]:
                self.emit(PATH, "GlobalShortcuts",
                          "Deactivated" if what == "release" else "Activated",
                          "/elsewhere" if what == "press-elsewhere" else self.session,
                          "other" if what == "press-other" else "lookup", int(time), {})
            case ["close"]:
                self.emit(self.session, "Session", "Closed")
            case ["color", kind, value]:
                self.color = GLib.Variant(kind, value if kind == "s" else int(value))
                self.emit(PATH, "Settings", "SettingChanged", *COLOR, self.color)
            case _:
                result = ["unknown command"]
        invocation.return_value(GLib.Variant("(s)", (json.dumps(result, ensure_ascii=False),)))


def main():
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    portal = Portal(bus)
    # Who waits for the last name finds everything there.
    for name in (NAME, TEST):
        owned = bus.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName",
                              GLib.Variant("(su)", (name, 4)), None, Gio.DBusCallFlags.NONE, -1,
                              None)
        if owned.unpack()[0] != 1:
            print(f"错误：总线上的名称 {name} 已被占用。", file=sys.stderr)
            return 122
    assert portal
    GLib.MainLoop().run()
    return 0


sys.exit(main())
