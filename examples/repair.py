#!/usr/bin/python3
"""repair.py MODEL FILE...: calls scorewright.repair of the Python package, from the source or as it is installed."""

import sys
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1] / "python"))
from scorewright.repair import main  # noqa: E402

if __name__ == "__main__":
    main()
