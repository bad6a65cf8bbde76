#!/usr/bin/env python3
"""Checks of the bundled theme: placement rules of the mock-up tool, hard
mask edges, GIF frames, WAV files, control order and known commands."""
import os
import subprocess
import sys

root = os.environ.get("MIREL_SOURCE_DIR") or os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.exit(subprocess.call([sys.executable, "-m", "unittest", "discover", "-s",
                          os.path.join(root, "tools"), "-p", "test_*.py"], cwd=root))
