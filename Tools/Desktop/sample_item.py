"""A tray icon with a menu, to try a tray with: sample_item.py

Says on standard output which entry was chosen ("clicked ID"), that the menu was about to be shown
("shown") or that the icon itself was clicked ("activated").
"""

from gi.repository import Gio, GLib

ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"

INTERFACES = Gio.DBusNodeInfo.new_for_xml(f"""
<node>
  <interface name="{ITEM}">
    <method name="Activate">
      <arg type="i" direction="in"/><arg type="i" direction="in"/>
    </method>
    <property name="Title" type="s" access="read"/>
    <property name="Status" type="s" access="read"/>
    <property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
    <property name="IconPixmap" type="a(iiay)" access="read"/>
    <property name="Menu" type="o" access="read"/>
    <signal name="NewTitle"/>
  </interface>
  <interface name="{MENU}">
    <method name="AboutToShow">
      <arg type="i" direction="in"/><arg type="b" direction="out"/>
    </method>
    <method name="GetLayout">
      <arg type="i" direction="in"/><arg type="i" direction="in"/><arg type="as" direction="in"/>
      <arg type="u" direction="out"/><arg type="(ia{{sv}}av)" direction="out"/>
    </method>
    <method name="Event">
      <arg type="i" direction="in"/><arg type="s" direction="in"/>
      <arg type="v" direction="in"/><arg type="u" direction="in"/>
    </method>
  </interface>
</node>""")

PROPERTIES = {
    "Title": GLib.Variant("s", "样品"),
    "Status": GLib.Variant("s", "Active"),
    "ToolTip": GLib.Variant("(sa(iiay)ss)", ("", [], "样品：3 个", "")),
    "IconPixmap": GLib.Variant("a(iiay)", [(2, 1, bytes(8))]),
    "Menu": GLib.Variant("o", "/Menu"),
}


def entry(number, **properties):
    return GLib.Variant("(ia{sv}av)", (number, properties, []))


def on_call(bus, sender, path, interface, method, arguments, invocation):
    answer = None
    if method == "Activate":
        print("activated", flush=True)
        bus.emit_signal(None, path, ITEM, "NewTitle", None)
    elif method == "AboutToShow":
        print("shown", flush=True)
        answer = GLib.Variant("(b)", (False,))
    elif method == "GetLayout":
        children = [entry(1, label=GLib.Variant("s", "开始复习")),
                    entry(2, label=GLib.Variant("s", "退出"), enabled=GLib.Variant("b", False))]
        answer = GLib.Variant("(u(ia{sv}av))", (1, (0, {}, children)))
    elif method == "Event":
        print("clicked", arguments.unpack()[0], flush=True)
    invocation.return_value(answer)


def item_property(bus, sender, path, interface, name):
    return PROPERTIES[name]


bus = Gio.bus_get_sync(Gio.BusType.SESSION)
bus.register_object("/StatusNotifierItem", INTERFACES.lookup_interface(ITEM), on_call,
                    item_property, None)
bus.register_object("/Menu", INTERFACES.lookup_interface(MENU), on_call, None, None)
bus.call_sync("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
              "org.kde.StatusNotifierWatcher", "RegisterStatusNotifierItem",
              GLib.Variant("(s)", ("/StatusNotifierItem",)), None, Gio.DBusCallFlags.NONE, -1, None)
GLib.MainLoop().run()
