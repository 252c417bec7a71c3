"""Reads universal files and Mach-O images, as <mach-o/fat.h>, <mach-o/loader.h> and
<mach-o/nlist.h> lay them out."""

import struct
from dataclasses import dataclass, field

from .findings import Malformed

FAT_MAGIC = 0xCAFEBABE
MH_MAGIC_64 = 0xFEEDFACF
MH_BUNDLE = 8
MH_WEAK_DEFINES = 0x8000
MH_BINDS_TO_WEAK = 0x10000

CPU_NAMES = {0x01000007: "x86_64", 0x0100000C: "arm64"}
PLATFORM_MACOS = 1

LC_REQ_DYLD = 0x80000000
LC_SYMTAB = 0x2
LC_LOAD_DYLIB = 0xC
LC_LOAD_WEAK_DYLIB = 0x18 | LC_REQ_DYLD
LC_REEXPORT_DYLIB = 0x1F | LC_REQ_DYLD
LC_LAZY_LOAD_DYLIB = 0x20
LC_LOAD_UPWARD_DYLIB = 0x23 | LC_REQ_DYLD
LIBRARY_COMMANDS = (LC_LOAD_DYLIB, LC_LOAD_WEAK_DYLIB, LC_REEXPORT_DYLIB, LC_LAZY_LOAD_DYLIB,
                    LC_LOAD_UPWARD_DYLIB)
LC_RPATH = 0x1C | LC_REQ_DYLD
LC_CODE_SIGNATURE = 0x1D
LC_DYLD_INFO = 0x22
LC_DYLD_INFO_ONLY = 0x22 | LC_REQ_DYLD
LC_VERSION_MIN_MACOSX = 0x24
LC_BUILD_VERSION = 0x32
LC_DYLD_EXPORTS_TRIE = 0x33 | LC_REQ_DYLD
LC_DYLD_CHAINED_FIXUPS = 0x34 | LC_REQ_DYLD

N_STAB = 0xE0
N_PEXT = 0x10
N_TYPE = 0x0E
N_EXT = 0x01


class Bytes:
    """A file or a part of it; reading past the end is a `Malformed`."""

    def __init__(self, data, what):
        self.data = data
        self.what = what

    def unpack(self, layout, offset):
        try:
            return struct.unpack_from(layout, self.data, offset)
        except struct.error:
            raise Malformed(f"{self.what} is cut short") from None

    def word(self, offset):
        return self.unpack("<I", offset)[0]

    def part(self, offset, size):
        if offset + size > len(self.data):
            raise Malformed(f"{self.what} is cut short")
        return self.data[offset:offset + size]

    def text(self, offset):
        end = self.data.find(b"\0", offset)
        if end < 0:
            raise Malformed(f"{self.what} is cut short")
        return self.data[offset:end].decode("utf-8", "replace")

    def uleb(self, offset):
        """A number of the format's variable length, and the offset behind it."""
        value = shift = 0
        while True:
            (byte,) = self.unpack("B", offset)
            offset += 1
            value |= (byte & 0x7F) << shift
            shift += 7
            if byte < 0x80:
                return value, offset


@dataclass
class SliceHeader:
    """Where a universal file keeps the image for one processor."""

    cpu: int
    subtype: int
    offset: int
    size: int
    align: int

    @property
    def arch(self):
        return CPU_NAMES.get(self.cpu, f"processor {self.cpu:#x}")


def read_slices(data):
    """The slices of a universal file."""
    file = Bytes(data, "the module")
    magic, count = file.unpack(">II", 0)
    if magic != FAT_MAGIC:
        raise Malformed("the module is not a universal file")
    if count > 16:
        raise Malformed("the module's list of slices makes no sense")
    return [SliceHeader(*file.unpack(">IIIII", 8 + 20 * i)) for i in range(count)]


@dataclass
class Image:
    """What the load commands of one slice say."""

    bytes: Bytes
    file_type: int = 0
    flags: int = 0
    libraries: list = field(default_factory=list)
    run_paths: list = field(default_factory=list)
    platform: int = None
    minimum: tuple = None
    signature: tuple = None
    exports_trie: tuple = (0, 0)
    chained_fixups: bool = False
    symbols: list = field(default_factory=list)

    @property
    def exports(self):
        offset, size = self.exports_trie
        names = []
        if size:
            _walk_trie(Bytes(self.bytes.part(offset, size), "the exports trie"), 0, "", names, 0)
        return sorted(names)

    def imports(self, library):
        """The names that the image wants from one of its libraries."""
        return {name for name, kind, description in self.symbols
                if not kind & N_STAB and kind & N_EXT and not kind & N_TYPE
                and self._library(description >> 8) == library}

    def _library(self, ordinal):
        known = 1 <= ordinal <= len(self.libraries)
        return self.libraries[ordinal - 1] if known else None

    @property
    def external_symbols(self):
        return {name for name, kind, _ in self.symbols
                if not kind & (N_STAB | N_PEXT) and kind & N_EXT and kind & N_TYPE}


def _walk_trie(trie, offset, prefix, names, depth):
    if depth > 200:
        raise Malformed("the exports trie goes round in circles")
    terminal, offset = trie.uleb(offset)
    if terminal:
        names.append(prefix)
    offset += terminal
    (children,) = trie.unpack("B", offset)
    offset += 1
    for _ in range(children):
        edge = trie.text(offset)
        child, offset = trie.uleb(offset + len(edge.encode()) + 1)
        _walk_trie(trie, child, prefix + edge, names, depth + 1)


def _version(packed):
    return packed >> 16, packed >> 8 & 0xFF


def _read_symbols(image, offset):
    symbols, count, strings, _ = image.bytes.unpack("<4I", offset + 8)
    for i in range(count):
        name, kind, _, description = image.bytes.unpack("<IBBH", symbols + 16 * i)
        image.symbols.append((image.bytes.text(strings + name), kind, description))


def _read_command(image, command, offset):
    data = image.bytes
    if command in LIBRARY_COMMANDS:
        image.libraries.append(data.text(offset + data.word(offset + 8)))
    elif command == LC_RPATH:
        image.run_paths.append(data.text(offset + data.word(offset + 8)))
    elif command == LC_VERSION_MIN_MACOSX:
        image.platform = PLATFORM_MACOS
        image.minimum = _version(data.word(offset + 8))
    elif command == LC_BUILD_VERSION:
        image.platform = data.word(offset + 8)
        image.minimum = _version(data.word(offset + 12))
    elif command == LC_CODE_SIGNATURE:
        image.signature = data.unpack("<II", offset + 8)
    elif command in (LC_DYLD_INFO, LC_DYLD_INFO_ONLY):
        image.exports_trie = data.unpack("<II", offset + 40)
    elif command == LC_DYLD_EXPORTS_TRIE:
        image.exports_trie = data.unpack("<II", offset + 8)
    elif command == LC_DYLD_CHAINED_FIXUPS:
        image.chained_fixups = True
    elif command == LC_SYMTAB:
        _read_symbols(image, offset)


def read_image(data, what):
    """The image that `data` holds."""
    image = Image(Bytes(data, what))
    magic, _, _, image.file_type, count, _, image.flags = image.bytes.unpack("<7I", 0)
    if magic != MH_MAGIC_64:
        raise Malformed(f"{what} is not a 64-bit Mach-O image")
    offset = 32
    for _ in range(count):
        command, size = image.bytes.unpack("<II", offset)
        if size < 8:
            raise Malformed(f"{what} has a load command without a size")
        _read_command(image, command, offset)
        offset += size
    return image
