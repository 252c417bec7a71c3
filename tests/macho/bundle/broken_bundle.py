"""Copies of a good bundle, each to be broken in one way."""

import hashlib
import plistlib
import shutil
import struct
from pathlib import Path

NAME = "Zerva SSL VPN Plugin"
CPU = {"x86_64": 0x01000007, "arm64": 0x0100000C}

LC_UUID = 0x1B
LC_CODE_SIGNATURE = 0x1D


class BrokenBundle:
    """A copy of the bundle in a scratch folder, and the means to change it."""

    def __init__(self, good, scratch):
        self.path = Path(scratch) / f"{NAME}.plugin"
        shutil.copytree(good, self.path)
        self.plist = self.path / "Contents" / "Info.plist"
        self.module = self.path / "Contents" / "MacOS" / NAME

    def edit_plist(self, change):
        info = plistlib.loads(self.plist.read_bytes())
        change(info)
        self.plist.write_bytes(plistlib.dumps(info))

    def edit_module(self, change):
        """`change` gets the whole file as a bytearray."""
        data = bytearray(self.module.read_bytes())
        change(data)
        self.module.write_bytes(data)

    def slice(self, arch):
        """Offset and size of a slice."""
        data = self.module.read_bytes()
        for i in range(struct.unpack_from(">I", data, 4)[0]):
            cpu, _, offset, size, _ = struct.unpack_from(">5I", data, 8 + 20 * i)
            if cpu == CPU[arch]:
                return offset, size
        raise AssertionError(f"no slice for {arch}")

    def edit_slice(self, arch, change, sign=True):
        """`change` gets one slice, which is signed anew unless that is what is to be broken."""
        offset, size = self.slice(arch)

        def edit(data):
            image = data[offset:offset + size]
            change(image)
            if sign:
                sign_anew(image)
            data[offset:offset + size] = image

        self.edit_module(edit)


def command(image, wanted):
    """Offset of the first load command of a kind."""
    count = struct.unpack_from("<I", image, 16)[0]
    offset = 32
    for _ in range(count):
        kind, size = struct.unpack_from("<II", image, offset)
        if kind == wanted:
            return offset
        offset += size
    raise AssertionError(f"no load command {wanted:#x}")


def replace(image, old, new):
    """Overwrites one text, wherever it stands first, by one of the same length."""
    assert len(old) == len(new)
    at = image.index(old)
    image[at:at + len(old)] = new


def code_directory(image):
    """Offset of the signature's list of page hashes."""
    start = struct.unpack_from("<I", image, command(image, LC_CODE_SIGNATURE) + 8)[0]
    count = struct.unpack_from(">I", image, start + 8)[0]
    for i in range(count):
        slot, offset = struct.unpack_from(">II", image, start + 12 + 8 * i)
        if slot == 0:
            return start + offset
    raise AssertionError("no code directory")


def sign_anew(image):
    """Puts the hashes of the changed pages into the signature that is there."""
    directory = code_directory(image)
    hashes = struct.unpack_from(">I", image, directory + 16)[0]
    pages, limit = struct.unpack_from(">II", image, directory + 28)
    page_size = 1 << image[directory + 39]
    for page in range(pages):
        code = image[page * page_size:min((page + 1) * page_size, limit)]
        at = directory + hashes + 32 * page
        image[at:at + 32] = hashlib.sha256(code).digest()
