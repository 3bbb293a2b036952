"""A service for secrets without a keyring, which asks the user before it makes one; nobody answers:
prompting_secrets.py [silent]

Prints the name of each method that is called. A prompt that is dismissed says so, unless silent.
"""

import sys

from gi.repository import Gio, GLib

SECRET = "org.freedesktop.Secret"
NODE = Gio.DBusNodeInfo.new_for_xml(f"""
<node>
  <interface name="{SECRET}.Service">
    <method name="OpenSession">
      <arg type="s" direction="in"/><arg type="v" direction="in"/>
      <arg type="v" direction="out"/><arg type="o" direction="out"/>
    </method>
    <method name="SearchItems">
      <arg type="a{{ss}}" direction="in"/>
      <arg type="ao" direction="out"/><arg type="ao" direction="out"/>
    </method>
    <method name="ReadAlias"><arg type="s" direction="in"/><arg type="o" direction="out"/></method>
    <method name="CreateCollection">
      <arg type="a{{sv}}" direction="in"/><arg type="s" direction="in"/>
      <arg type="o" direction="out"/><arg type="o" direction="out"/>
    </method>
  </interface>
  <interface name="{SECRET}.Prompt">
    <method name="Prompt"><arg type="s" direction="in"/></method>
    <method name="Dismiss"/>
    <signal name="Completed"><arg type="b"/><arg type="v"/></signal>
  </interface>
</node>""")
ANSWERS = {
    "OpenSession": GLib.Variant("(vo)", (GLib.Variant("s", ""), "/session")),
    "SearchItems": GLib.Variant("(aoao)", ([], [])),
    "ReadAlias": GLib.Variant("(o)", ("/",)),
    "CreateCollection": GLib.Variant("(oo)", ("/", "/prompt")),
}


def on_call(bus, caller, path, interface, method, arguments, invocation):
    print(method, flush=True)
    if method == "OpenSession" and arguments[0] != "plain":
        invocation.return_dbus_error("org.freedesktop.DBus.Error.NotSupported", "only plain")
        return
    invocation.return_value(ANSWERS.get(method))
    if method == "Dismiss" and "silent" not in sys.argv[1:]:
        bus.emit_signal(caller, path, interface, "Completed",
                        GLib.Variant("(bv)", (True, GLib.Variant("o", "/"))))


connection = Gio.bus_get_sync(Gio.BusType.SESSION)
for place, name in (("/org/freedesktop/secrets", "Service"), ("/prompt", "Prompt")):
    connection.register_object(place, NODE.lookup_interface(f"{SECRET}.{name}"), on_call, None, None)
Gio.bus_own_name_on_connection(connection, "org.freedesktop.secrets", Gio.BusNameOwnerFlags.NONE,
                               None, None)
GLib.MainLoop().run()
