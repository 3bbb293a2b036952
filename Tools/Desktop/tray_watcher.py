"""A tray without a panel: it tells on standard output what happens, and acts on commands.

Owns org.kde.StatusNotifierWatcher and is its only host. Each event is a JSON object on a line of
its own:
  {"event": "registered", "item": NAME}     an item appeared; NAME is its bus name and path
  {"event": "unregistered", "item": NAME}   it or its program is gone
  {"event": "changed", "item": NAME, "what": "NewIcon" | "NewToolTip" | "NewTitle" | "NewStatus" | …}
  {"event": "menu-changed", "item": NAME, "what": "LayoutUpdated" | "ItemsPropertiesUpdated"}
  {"event": "answer", …}                    to a command from standard input

Commands come as lines on standard input or, word by word, to com.tavik.TestTray.Command (as → s) of
the bus name com.tavik.TestTray, object /. They speak to the item that registered last. The answer is
a JSON object, {"error": TEXT} if it failed:
  items            {"items": [NAME…]}
  item             {"item": {"Title": …, "ToolTip": …, "Status": …, "IconPixmap": […], …}}, where a
                   pixmap is {"width": …, "height": …, "sha256": …}
  menu             {"menu": ENTRY}, after it was told that it is about to be shown; ENTRY is
                   {"id": …, "label": …, "enabled": …, "visible": …, "children": [ENTRY…], …}
  click ENTRY      {} after the menu entry with this id or label was chosen
  activate         {} after a click on the icon itself

A program that has the item and gives the command in one thread must not wait for the answer, for it
could not answer then what this program asks the item.
"""

import hashlib
import json
import os
import shlex
import sys

from gi.repository import Gio, GLib

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
TRAY = "com.tavik.TestTray"
BUS = "org.freedesktop.DBus"

TIMEOUT_MS = 2000

# Programs find the properties through introspection.
INTERFACES = Gio.DBusNodeInfo.new_for_xml(f"""
<node>
  <interface name="{WATCHER}">
    <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
    <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
    <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    <property name="ProtocolVersion" type="i" access="read"/>
    <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
    <signal name="StatusNotifierItemUnregistered"><arg type="s"/></signal>
    <signal name="StatusNotifierHostRegistered"/>
  </interface>
  <interface name="{TRAY}">
    <method name="Command"><arg type="as" direction="in"/><arg type="s" direction="out"/></method>
  </interface>
</node>""")


class Refused(Exception):
    pass


def tell(event, **details):
    print(json.dumps({"event": event, **details}, ensure_ascii=False), flush=True)


def readable(value):
    """A value of an item's property, with checksums in the place of pixels."""
    if isinstance(value, tuple) and len(value) == 3 and isinstance(value[2], (bytes, list)):
        return {"width": value[0], "height": value[1],
                "sha256": hashlib.sha256(bytes(value[2])).hexdigest()}
    if isinstance(value, (tuple, list)):
        return [readable(part) for part in value]
    return value


class Tray:
    def __init__(self, bus):
        self.bus = bus
        self.items = []
        self.unfinished = b""
        bus.register_object("/StatusNotifierWatcher", INTERFACES.lookup_interface(WATCHER),
                            self.on_watcher_call, self.watcher_property, None)
        bus.register_object("/", INTERFACES.lookup_interface(TRAY), self.on_tray_call, None, None)
        bus.signal_subscribe(BUS, BUS, "NameOwnerChanged", None, None, Gio.DBusSignalFlags.NONE,
                             self.on_owner_change)
        for interface, event in ((ITEM, "changed"), (MENU, "menu-changed")):
            bus.signal_subscribe(None, interface, None, None, None, Gio.DBusSignalFlags.NONE,
                                 self.on_item_signal, event)

    # The watcher

    def on_watcher_call(self, bus, sender, path, interface, method, arguments, invocation):
        if method == "RegisterStatusNotifierItem":
            # Either the path of the item or the bus name that it has at the usual path.
            given = arguments.unpack()[0]
            self.add(sender + given if given.startswith("/") else given + "/StatusNotifierItem")
        invocation.return_value(None)

    def watcher_property(self, bus, sender, path, interface, name):
        return {
            "RegisteredStatusNotifierItems": GLib.Variant("as", self.items),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
            "ProtocolVersion": GLib.Variant("i", 0),
        }[name]

    def emit(self, signal, item):
        self.bus.emit_signal(None, "/StatusNotifierWatcher", WATCHER, signal,
                             GLib.Variant("(s)", (item,)))

    def add(self, item):
        if item not in self.items:
            self.items.append(item)
            self.emit("StatusNotifierItemRegistered", item)
            tell("registered", item=item)

    def on_owner_change(self, bus, sender, path, interface, signal, arguments):
        name, _, owner = arguments.unpack()
        for item in [item for item in self.items if item.split("/")[0] == name and not owner]:
            self.items.remove(item)
            self.emit("StatusNotifierItemUnregistered", item)
            tell("unregistered", item=item)

    def on_item_signal(self, bus, sender, path, interface, signal, arguments, event):
        for item in self.items:
            if self.owner_of(item.split("/")[0]) == sender:
                tell(event, item=item, what=signal)

    def owner_of(self, name):
        if name.startswith(":"):
            return name
        try:
            return self.call(BUS, "/", BUS, "GetNameOwner", "(s)", name)[0]
        except GLib.Error:
            return None

    # The host

    def call(self, name, path, interface, method, types=None, *arguments):
        parameters = GLib.Variant(types, arguments) if types else None
        return self.bus.call_sync(name, path, interface, method, parameters, None,
                                  Gio.DBusCallFlags.NONE, TIMEOUT_MS, None).unpack()

    def item(self):
        """The bus name and the path of the item that registered last."""
        if not self.items:
            raise Refused("no item")
        name, path = self.items[-1].split("/", 1)
        return name, "/" + path

    def properties(self):
        return self.call(*self.item(), "org.freedesktop.DBus.Properties", "GetAll", "(s)", ITEM)[0]

    def call_menu(self, method, types, *arguments):
        path = self.properties().get("Menu", "/NO_DBUSMENU")
        if path == "/NO_DBUSMENU":
            raise Refused("no menu")
        return self.call(self.item()[0], path, MENU, method, types, *arguments)

    def menu(self):
        def entry(node):
            number, properties, children = node
            return {"id": number, "label": "", "enabled": True, "visible": True,
                    **{key: readable(value) for key, value in properties.items()},
                    "children": [entry(child) for child in children]}

        self.call_menu("AboutToShow", "(i)", 0)
        return entry(self.call_menu("GetLayout", "(iias)", 0, -1, [])[1])

    def click(self, wanted):
        def find(entry):
            # An underscore marks the letter that chooses the entry by the keyboard.
            if wanted in (str(entry["id"]), entry["label"], entry["label"].replace("_", "")):
                return entry
            return next(filter(None, map(find, entry["children"])), None)

        found = find(self.menu())
        if found is None:
            raise Refused(f"no entry {wanted}")
        if not (found["enabled"] and found["visible"]):
            raise Refused(f"entry {wanted} cannot be chosen")
        self.call_menu("Event", "(isvu)", found["id"], "clicked", GLib.Variant("i", 0), 0)

    def answer(self, words):
        try:
            match words:
                case ["items"]:
                    return {"items": self.items}
                case ["item"]:
                    return {"item": {name: readable(value)
                                     for name, value in self.properties().items()}}
                case ["menu"]:
                    return {"menu": self.menu()}
                case ["click", wanted]:
                    self.click(wanted)
                    return {}
                case ["activate"]:
                    self.call(*self.item(), ITEM, "Activate", "(ii)", 0, 0)
                    return {}
            raise Refused("unknown command")
        except (Refused, GLib.Error) as error:
            return {"error": str(error)}

    def on_tray_call(self, bus, sender, path, interface, method, arguments, invocation):
        answer = json.dumps(self.answer(arguments.unpack()[0]), ensure_ascii=False)
        invocation.return_value(GLib.Variant("(s)", (answer,)))

    def on_input(self, descriptor, condition):
        # Not a text stream, which would keep lines in a buffer without telling.
        read = os.read(descriptor, 4096)
        *lines, self.unfinished = (self.unfinished + read).split(b"\n")
        for line in lines:
            try:
                tell("answer", **self.answer(shlex.split(line.decode())))
            except ValueError as error:
                tell("answer", error=str(error))
        return read != b""


def main():
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    tray = Tray(bus)
    for name in (WATCHER, TRAY):
        if tray.call(BUS, "/", BUS, "RequestName", "(su)", name, 4)[0] != 1:
            print(f"错误：总线上的名称 {name} 已被占用。", file=sys.stderr)
            return 122
    GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT,
                      GLib.IOCondition.IN | GLib.IOCondition.HUP, tray.on_input)
    GLib.MainLoop().run()
    return 0


sys.exit(main())
