"""An application that describes itself to assistive programs, and lies: hostile_application.py
[--web] BEHAVIOUR [ARGUMENT]

On the accessibility bus it has a window, with a focused text of which a word is selected, and prints
"ready PID" when assistive programs can find it. With --web the text is a paragraph of a page.

BEHAVIOUR is one of:
  plain                  tells the truth
  lying-lengths          numbers of characters and selections that the text does not have
  cyclic-parents         every way up leads round
  cyclic-children        every way down leads round; nothing has the focus
  many-children          the window has 2,000,000,000 children, each of which can be had
  many-children-at-once  the window has 100,000 children, told in one answer
  huge-text              a text of 20 MB
  wrong-types [MEMBER]   values that no sane program gives and answers of other types, in turns; of
                         this method or property only
  slow                   answers each call after 0.4 s
  silent COUNT           answers so many calls, then none
  dying COUNT            answers so many calls, then ends
  password               the text is a password; each reading of it prints "read METHOD"
  links-cycle            a page whose links lead back to it
  null-references        every reference leads to nothing
  dead-children          every child is of a program that does not exist
"""

import argparse
import functools
import itertools
import os
import sys

import dbus
import dbus.bus
import dbus.lowlevel
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

REGISTRY = "org.a11y.atspi.Registry"
PREFIX = "/org/a11y/atspi/accessible/"
ROOT = PREFIX + "root"
NULL = "/org/a11y/atspi/null"
PROPERTIES = "org.freedesktop.DBus.Properties"

INT_MIN, INT_MAX = -(2**31), 2**31 - 1
MANY = 2_000_000_000

# Roles and states, by AT-SPI's numbers.
FRAME, PANEL, PASSWORD, TEXT, PARAGRAPH, APPLICATION, DOCUMENT = 23, 39, 40, 61, 73, 75, 95
ACTIVE, EDITABLE, FOCUSED, SHOWING, VISIBLE = 1, 7, 12, 25, 30

SENTENCES = "The quick brown fox has an ephemeral idea. Next one."
WORD = "ephemeral"
EMBEDDED = "\ufffc"

VARIANTS = {
    "i": dbus.Int32,
    "s": dbus.String,
    "(so)": functools.partial(dbus.Struct, signature="so"),
}


class Unanswerable(Exception):
    """The call is answered with an error."""


class Silence(Exception):
    """The call is not answered."""


class Node:
    def __init__(self, name, role, states=(), parent=None, text=None, selection=None):
        self.path = PREFIX + name
        self.name = name
        self.role = role
        self.states = {SHOWING, VISIBLE, *states}
        self.parent = parent
        self.children = []
        self.text = text
        self.selection = selection
        if parent is not None:
            parent.children.append(self)

    def descendants(self):
        found = []
        pending = list(self.children)
        while pending:
            node = pending.pop(0)
            if node not in found:
                found.append(node)
                pending += node.children
        return found


class Plain:
    """Tells the truth. Methods with the names of AT-SPI's return the signature of the answer and its
    values; `properties` gives signatures and values by name.
    """

    text_role = TEXT

    def __init__(self, is_web, argument):
        self.argument = argument
        self.nodes = {}
        self.name = None
        self.root = self.add("root", APPLICATION)
        self.frame = self.add("frame", FRAME, {ACTIVE}, self.root)
        self.build(is_web)

    def add(self, *arguments, **named):
        node = Node(*arguments, **named)
        self.nodes[node.path] = node
        return node

    def build(self, is_web):
        selection = (SENTENCES.index(WORD), SENTENCES.index(WORD) + len(WORD))
        if is_web:
            self.page = self.add("page", DOCUMENT, {FOCUSED}, self.frame,
                                 text=EMBEDDED, selection=(0, 1))
            self.text = self.add("text", PARAGRAPH, (), self.page,
                                 text=SENTENCES, selection=selection)
        else:
            self.text = self.add("text", self.text_role, {FOCUSED, EDITABLE}, self.frame,
                                 text=SENTENCES, selection=selection)

    def answer(self, path, member, arguments):
        node = self.nodes.get(path)
        if node is None:
            raise Unanswerable(f"no object {path}")
        if member == "Set":
            return "", ()
        if member == "Get":
            properties = self.properties(node)
            if arguments[1] not in properties:
                raise Unanswerable(f"no property {arguments[1]}")
            signature, value = properties[arguments[1]]
            return "v", (VARIANTS[signature](value, variant_level=1),)
        if member == "GetAll":
            return "a{sv}", ({name: VARIANTS[signature](value, variant_level=1) for
                              name, (signature, value) in self.properties(node).items()},)
        method = getattr(self, member, None) if member[:1].isupper() else None
        if method is None:
            raise Unanswerable(f"no method {member}")
        return method(node, *arguments)

    def reference(self, node):
        return (self.name, dbus.ObjectPath(node.path)) if node else ("", dbus.ObjectPath(NULL))

    def properties(self, node):
        return {
            "Name": ("s", node.name),
            "Description": ("s", ""),
            "Locale": ("s", "en_US"),
            "AccessibleId": ("s", ""),
            "Parent": ("(so)", self.reference(node.parent)),
            "ChildCount": ("i", len(node.children)),
            "ToolkitName": ("s", "hostile"),
            "Version": ("s", "1"),
            "AtspiVersion": ("s", "2.1"),
            "Id": ("i", 1),
            "CharacterCount": ("i", self.length(node)),
            "CaretOffset": ("i", node.selection[1] if node.selection else 0),
            "NSelections": ("i", 1 if node.selection else 0),
            "StartIndex": ("i", 0),
            "EndIndex": ("i", 1),
            "NAnchors": ("i", 1),
        }

    def length(self, node):
        return len(node.text or "")

    # Accessible

    def GetRole(self, node):
        return "u", (node.role,)

    def GetRoleName(self, _node):
        return "s", ("a role",)

    def GetState(self, node):
        bits = sum(1 << state for state in node.states)
        return "au", ([bits & 0xffffffff, bits >> 32],)

    def GetChildren(self, node):
        return "a(so)", ([self.reference(child) for child in node.children],)

    def GetChildAtIndex(self, node, index):
        is_there = 0 <= index < len(node.children)
        return "(so)", (self.reference(node.children[index] if is_there else None),)

    def GetIndexInParent(self, _node):
        return "i", (0,)

    def GetAttributes(self, _node):
        return "a{ss}", (dbus.Dictionary({}, "ss"),)

    def GetRelationSet(self, _node):
        return "a(ua(so))", ([],)

    def GetInterfaces(self, node):
        names = ["Accessible", "Component", "Collection"]
        if node.role == APPLICATION:
            names.append("Application")
        if node.text is not None:
            names += ["Text", "Hypertext"]
        if EDITABLE in node.states:
            names.append("EditableText")
        if node.role == DOCUMENT:
            names.append("Document")
        if node.role == PARAGRAPH:
            names.append("Hyperlink")
        return "as", (["org.a11y.atspi." + name for name in names],)

    def GetApplication(self, _node):
        return "(so)", (self.reference(self.root),)

    # Text

    def GetText(self, node, start, end):
        return "s", ((node.text or "")[start:None if end == -1 else end],)

    def GetNSelections(self, node):
        return "i", (1 if node.selection else 0,)

    def GetSelection(self, node, _index):
        return "ii", node.selection or (0, 0)

    def GetStringAtOffset(self, node, offset, _granularity):
        return "sii", ((node.text or "")[offset:offset + 1], offset, offset + 1)

    def GetCharacterAtOffset(self, node, offset):
        return "i", (ord((node.text or "")[offset:offset + 1] or "\0"),)

    def GetRangeExtents(self, _node, start, end, _coordinates):
        return "iiii", (100 + 8 * start, 120, 8 * (end - start), 16)

    def GetCharacterExtents(self, _node, offset, _coordinates):
        return "iiii", (100 + 8 * offset, 120, 8, 16)

    def GetOffsetAtPoint(self, _node, x, _y, _coordinates):
        return "i", ((x - 100) // 8,)

    # Component

    def GetExtents(self, _node, _coordinates):
        return "(iiii)", ((100, 100, 600, 400),)

    def GetAccessibleAtPoint(self, node, _x, _y, _coordinates):
        return "(so)", (self.reference(node.children[0] if node.children else node),)

    # Collection

    def GetMatches(self, node, rule, _order, count, _traverses):
        bits = sum((word & 0xffffffff) << 32 * place for place, word in enumerate(rule[0]))
        found = [self.reference(each) for each in node.descendants()
                 if not bits & ~sum(1 << state for state in each.states)]
        return "a(so)", (found[:count] if count > 0 else found,)

    # Document, Hypertext, Hyperlink

    def GetAttributeValue(self, _node, name):
        return "s", ("https://example.invalid/page" if name in ("DocURL", "URI") else "",)

    def GetNLinks(self, node):
        return "i", ((node.text or "").count(EMBEDDED),)

    def GetLink(self, node, index):
        return self.GetChildAtIndex(node, index)

    def GetLinkIndex(self, node, offset):
        text = node.text or ""
        is_link = 0 <= offset < len(text) and text[offset] == EMBEDDED
        return "i", (text[:offset].count(EMBEDDED) if is_link else -1,)

    def GetObject(self, node, _index):
        return "(so)", (self.reference(node),)


class LyingLengths(Plain):
    def __init__(self, *arguments):
        super().__init__(*arguments)
        self.lengths = itertools.cycle([MANY, -1, INT_MIN, 3, INT_MAX])
        self.selections = itertools.cycle([
            (MANY, MANY + 9), (-5, -1), (36, 27), (27, MANY), (INT_MIN, INT_MAX), (60, 70)])

    def length(self, _node):
        return next(self.lengths)

    def GetSelection(self, _node, _index):
        return "ii", next(self.selections)

    def GetNSelections(self, _node):
        return "i", (MANY,)


class CyclicParents(Plain):
    def build(self, is_web):
        super().build(is_web)
        self.root.parent = self.frame.parent = self.text


class CyclicChildren(Plain):
    def build(self, is_web):
        panel = self.add("panel", PANEL, (), self.frame)
        panel.children.append(self.frame)


class ManyChildren(Plain):
    def properties(self, node):
        own = super().properties(node)
        return own | {"ChildCount": ("i", MANY)} if node is self.frame else own

    def answer(self, path, member, arguments):
        if path.startswith(PREFIX + "many/") and path not in self.nodes:
            child = Node(path.removeprefix(PREFIX), PANEL)
            child.parent = self.frame
            self.nodes[path] = child
        return super().answer(path, member, arguments)

    def GetChildAtIndex(self, node, index):
        if node is not self.frame:
            return super().GetChildAtIndex(node, index)
        return "(so)", ((self.name, dbus.ObjectPath(f"{PREFIX}many/{index}")),)

    def GetChildren(self, node):
        if node is self.frame:
            raise Unanswerable("too many")
        return super().GetChildren(node)

    def GetMatches(self, *_):
        raise Unanswerable("no such interface")


class ManyChildrenAtOnce(ManyChildren):
    def GetChildren(self, node):
        if node is not self.frame:
            return super().GetChildren(node)
        return "a(so)", ([(self.name, dbus.ObjectPath(f"{PREFIX}many/{index}"))
                          for index in range(100_000)],)


class HugeText(Plain):
    def build(self, is_web):
        super().build(is_web)
        self.text.text = (SENTENCES + " ") * (20_000_000 // (len(SENTENCES) + 1))
        start = self.text.text.index(WORD, 10_000_000)
        self.text.selection = (start, start + len(WORD))


class WrongTypes(Plain):
    WILD = {"i": INT_MIN, "u": 2**32 - 1, "s": "\ufffe" * 9, "b": True,
            "o": dbus.ObjectPath("/"), "y": 255}

    def __init__(self, *arguments):
        super().__init__(*arguments)
        self.turns = itertools.count()

    def wild(self, signature):
        if signature.startswith("("):
            return tuple(self.wild(part) for part in dbus.Signature(signature[1:-1]))
        return [] if signature.startswith("a") else self.WILD[signature]

    def answer(self, path, member, arguments):
        sound = super().answer(path, member, arguments)
        name = arguments[1] if member == "Get" else member
        if self.argument not in (None, name) or path == ROOT:
            return sound
        turn = next(self.turns) % 4
        if turn == 0 and sound[0] != "v":
            signature = sound[0]
            return signature, [self.wild(part) for part in dbus.Signature(signature)]
        others = [("v", [dbus.Int32(INT_MIN, variant_level=1)]), ("s", ["text"]), ("", []),
                  ("a{sv}", [{"a": dbus.Double("nan", variant_level=2)}])]
        return others[turn]


class Slow(Plain):
    delay_ms = 400


class Silent(Plain):
    def __init__(self, *arguments):
        super().__init__(*arguments)
        self.left = int(self.argument or 0)

    def answer(self, path, member, arguments):
        if self.left == 0:
            self.end()
        self.left -= 1
        return super().answer(path, member, arguments)

    def end(self):
        self.left = 0
        raise Silence


class Dying(Silent):
    def end(self):
        os._exit(1)


class Password(Plain):
    text_role = PASSWORD
    READINGS = {"GetText", "GetStringAtOffset", "GetCharacterAtOffset", "GetTextAtOffset",
                "GetTextBeforeOffset", "GetTextAfterOffset", "GetBoundedRanges"}

    def answer(self, path, member, arguments):
        if member in self.READINGS:
            print("read", member, flush=True)
        return super().answer(path, member, arguments)


class LinksCycle(Plain):
    def __init__(self, _is_web, argument):
        super().__init__(True, argument)

    def build(self, is_web):
        super().build(is_web)
        self.text.text = EMBEDDED
        self.text.selection = (0, 1)
        self.text.children.append(self.page)


class NullReferences(Plain):
    def reference(self, node):
        # Without its window nothing further would be asked.
        return super().reference(node if node is self.frame else None)


class DeadChildren(Plain):
    def reference(self, node):
        is_own = node in (None, self.root, self.frame)
        return super().reference(node) if is_own else (":1.999999", dbus.ObjectPath(node.path))


BEHAVIOURS = {
    "plain": Plain,
    "lying-lengths": LyingLengths,
    "cyclic-parents": CyclicParents,
    "cyclic-children": CyclicChildren,
    "many-children": ManyChildren,
    "many-children-at-once": ManyChildrenAtOnce,
    "huge-text": HugeText,
    "wrong-types": WrongTypes,
    "slow": Slow,
    "silent": Silent,
    "dying": Dying,
    "password": Password,
    "links-cycle": LinksCycle,
    "null-references": NullReferences,
    "dead-children": DeadChildren,
}


def reply_to(message, behaviour):
    """The answer to a call, or None."""
    try:
        signature, values = behaviour.answer(
            message.get_path(), message.get_member(), message.get_args_list())
    except Silence:
        return None
    except Exception as error:
        # Calls that make no sense, too, must not end the program.
        return dbus.lowlevel.ErrorMessage(
            message, "org.freedesktop.DBus.Error.Failed", f"{type(error).__name__}: {error}")
    reply = dbus.lowlevel.MethodReturnMessage(message)
    reply.append(*values, signature=signature)
    return reply


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--web", action="store_true")
    parser.add_argument("behaviour", choices=BEHAVIOURS)
    parser.add_argument("argument", nargs="?")
    chosen = parser.parse_args()

    DBusGMainLoop(set_as_default=True)
    launcher = dbus.SessionBus().get_object("org.a11y.Bus", "/org/a11y/bus", introspect=False)
    bus = dbus.bus.BusConnection(launcher.GetAddress(dbus_interface="org.a11y.Bus"))
    behaviour = BEHAVIOURS[chosen.behaviour](chosen.web, chosen.argument)
    behaviour.name = bus.get_unique_name()
    # What the registry asks meanwhile is answered truthfully.
    registered = Plain(chosen.web, None)
    registered.name = behaviour.name

    def send(reply):
        if reply is not None:
            bus.send_message(reply)
        return GLib.SOURCE_REMOVE

    def handle(_bus, message):
        if not isinstance(message, dbus.lowlevel.MethodCallMessage):
            return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
        answering = registered if message.get_sender() == registry else behaviour
        reply = reply_to(message, answering)
        delay = getattr(answering, "delay_ms", 0)
        if delay:
            GLib.timeout_add(delay, send, reply)
        else:
            send(reply)
        return dbus.lowlevel.HANDLER_RESULT_HANDLED

    bus.start_service_by_name(REGISTRY)
    registry = bus.get_name_owner(REGISTRY)
    bus.add_message_filter(handle)

    def is_ready(*_socket):
        print("ready", os.getpid(), flush=True)

    def failed(error):
        sys.exit(f"cannot be embedded: {error}")

    bus.call_async(REGISTRY, ROOT, "org.a11y.atspi.Socket", "Embed", "(so)",
                   (registered.reference(registered.root),), is_ready, failed)
    GLib.MainLoop().run()


main()
