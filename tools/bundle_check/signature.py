"""Checks the code signature inside an image: the published layout of <kern/cs_blobs.h>, and every
page's hash as the kernel checks it when the page is first touched."""

import hashlib

from .macho import Bytes

SUPERBLOB = 0xFADE0CC0
CODE_DIRECTORY = 0xFADE0C02
SLOT_CODE_DIRECTORY = 0
SLOT_CMS = 0x10000
FLAG_ADHOC = 0x2
HASH_SHA256 = 2

CURE = "sign it anew (codesign --force --sign - FILE), as the last thing done to it"


def _blobs(signature):
    magic, _, count = signature.unpack(">III", 0)
    if magic != SUPERBLOB:
        return {}
    return dict(signature.unpack(">II", 12 + 8 * i) for i in range(count))


def check_signature(image, where, findings):
    """Checks that a signature is there, covers the whole image, and fits every page."""
    if not findings.want(image.signature is not None, where,
                         "is not signed, and ARM Macs load no unsigned code", CURE):
        return
    start, size = image.signature
    signature = Bytes(image.bytes.part(start, size), f"the signature of {where}")
    blobs = _blobs(signature)
    if not findings.want(SLOT_CODE_DIRECTORY in blobs, where, "its signature cannot be read", CURE):
        return
    directory = blobs[SLOT_CODE_DIRECTORY]
    (magic, _, _, flags, hashes, _, _, pages, limit, hash_size, hash_type, _,
     page_bits) = signature.unpack(">IIIIIIIIIBBBB", directory)
    findings.want(flags & FLAG_ADHOC or SLOT_CMS in blobs, where,
                  "its signature is neither ad-hoc nor by a certificate", CURE)
    covered = magic == CODE_DIRECTORY and limit == start and pages << page_bits >= limit
    if not findings.want(covered and hash_type == HASH_SHA256 and hash_size == 32, where,
                         "its signature does not cover the whole image", CURE):
        return
    page_size = 1 << page_bits
    for page in range(pages):
        code = image.bytes.part(page * page_size, min(page_size, limit - page * page_size))
        expected = signature.part(directory + hashes + 32 * page, 32)
        if hashlib.sha256(code).digest() != expected:
            findings.add(where, f"page {page} was changed after it was signed", CURE)
            return
