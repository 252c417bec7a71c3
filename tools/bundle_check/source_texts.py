"""The texts that the code and the bundle must agree on, read from the code."""

import re
from dataclasses import dataclass
from pathlib import Path

from .findings import Malformed

SOURCE = Path(__file__).resolve().parent.parent.parent


def _constant(header, name):
    text = (SOURCE / "plugin" / header).read_text(encoding="utf-8")
    found = re.search(r"constexpr char " + name + r'\[\] =\s*"([^"]+)";', text)
    if not found:
        raise Malformed(f"plugin/{header}: {name} is not one literal")
    return found.group(1)


@dataclass(frozen=True)
class SourceTexts:
    """Names as plugin_identity.h gives them, and the folder that nevo_service.h installs into."""

    name: str
    description: str
    mime_type: str
    suffix: str
    mime_description: str
    folder: str

    @classmethod
    def read(cls):
        mime_type, suffix, mime_description = _constant(
            "plugin_identity.h", "kMimeDescription").split(":")
        service = _constant("nevo_service.h", "kProgram")
        return cls(name=_constant("plugin_identity.h", "kName"),
                   description=_constant("plugin_identity.h", "kDescription"),
                   mime_type=mime_type,
                   suffix=suffix,
                   mime_description=mime_description,
                   folder=next(part for part in service.split("/") if part.endswith(".plugin")))


def words_of(name):
    """The lines of a list in plugin/macos, without comments."""
    lines = (SOURCE / "plugin" / "macos" / name).read_text(encoding="utf-8").splitlines()
    return [line.split("#")[0].split() for line in lines if line.split("#")[0].strip()]
