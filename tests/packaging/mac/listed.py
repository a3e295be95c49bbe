"""Prints what an information property list holds, a sorted line for each key: KEY TYPE VALUE."""

import plistlib
import sys

with open(sys.argv[1], "rb") as file:
    for key, value in sorted(plistlib.load(file).items()):
        print(key, type(value).__name__, value)
