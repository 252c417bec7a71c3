"""What a check found wrong."""


class Malformed(Exception):
    """A file is not what it has to be, so that it cannot be looked at any further."""


class Findings:
    """Collects one line for each fault: where it is, what is wrong, and what cures it."""

    def __init__(self):
        self.lines = []

    def add(self, where, fault, cure):
        self.lines.append(f"{where}: {fault}; {cure}")

    def want(self, holds, where, fault, cure):
        """Adds the line unless `holds`. Returns `holds`."""
        if not holds:
            self.add(where, fault, cure)
        return holds
