"""Owns a name on the session bus and never answers a call: hung_name.py NAME

With this library nothing is read from the bus unless a main loop runs.
"""

import signal
import sys

import dbus

bus = dbus.SessionBus()
bus.request_name(sys.argv[1], dbus.bus.NAME_FLAG_DO_NOT_QUEUE)
while True:
    signal.pause()
