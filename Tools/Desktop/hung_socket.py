"""Accepts connections to a Unix socket and never answers: hung_socket.py PATH"""

import os
import socket
import sys

path = sys.argv[1]
if os.path.exists(path):
    os.unlink(path)
server = socket.socket(socket.AF_UNIX)
server.bind(path)
server.listen()
accepted = []
while True:
    accepted.append(server.accept())
