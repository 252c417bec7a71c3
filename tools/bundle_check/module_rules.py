"""What macOS and browsers want of the module inside the bundle."""

import re

from . import macho
from .findings import Malformed
from .signature import check_signature
from .source_texts import SOURCE, words_of

MINIMUM = {"x86_64": (10, 13), "arm64": (11, 0)}
PAGE_BITS = {"x86_64": 12, "arm64": 14}
LIB_SYSTEM = "/usr/lib/libSystem.B.dylib"
LIB_CXX = "/usr/lib/libc++.1.dylib"

# An absolute path, of two folders at least, to a file that only a build has.
SOURCE_PATH = re.compile(rb"(?<![\w./-])/[^/\0\n\"' ]+/[^\0\n\"']*\.(?:cpp|cc|c|h|hpp|o|a|tbd)\b")

REBUILD = "run scripts/bundle again"
LINK_CURE = "link it as cmake/toolchains/macos_link.cmake does"


def allowed_imports(arch):
    """The names of plugin/macos/imports.txt that this slice may use."""
    return {words[0] for words in words_of("imports.txt") if arch in words[1:] or len(words) == 1}


def _check_link(image, where, arch, findings):
    findings.want(image.file_type == macho.MH_BUNDLE, where,
                  f"is of file type {image.file_type}, not a bundle (8)", LINK_CURE)
    # The system's libc++ offers its operators new and delete weakly; a linked-in one must not.
    weak = macho.MH_WEAK_DEFINES | (0 if LIB_CXX in image.libraries else macho.MH_BINDS_TO_WEAK)
    findings.want(not image.flags & weak, where,
                  "has weak definitions, which mix with the browser's",
                  "link it with the list plugin/macos/exports.txt")
    findings.want(image.platform == macho.PLATFORM_MACOS, where, "is not built for macOS",
                  LINK_CURE)
    wanted = MINIMUM[arch]
    if image.minimum is not None:
        findings.want(image.minimum == wanted, where,
                      "wants macOS {}.{}, not {}.{}".format(*image.minimum, *wanted), LINK_CURE)
    findings.want(not (image.chained_fixups and wanted < (11, 0)), where,
                  "has chained fixups, which macOS 10.13 cannot read",
                  "link it with -no_fixup_chains")


def _check_surroundings(image, where, arch, findings):
    strange = sorted(set(image.libraries) - {LIB_SYSTEM, LIB_CXX})
    findings.want(not strange, where, f"needs {', '.join(strange)}",
                  "link nothing but the system's own libraries")
    findings.want(LIB_SYSTEM in image.libraries, where, "does not name libSystem", LINK_CURE)
    findings.want(not image.run_paths, where, f"searches {', '.join(image.run_paths)}",
                  "link it without -rpath")
    wanted = image.imports(LIB_SYSTEM) | image.imports(None)
    unknown = sorted(wanted - allowed_imports(arch))
    findings.want(not unknown, where, f"imports {', '.join(unknown)}",
                  "do without, or add to plugin/macos/imports.txt what macOS "
                  "{}.{} has".format(*MINIMUM[arch]))


def _check_exports(image, where, findings):
    wanted = sorted(words[0] for words in words_of("exports.txt"))
    shown = image.exports
    findings.want(shown == wanted, where,
                  f"exports {', '.join(shown) or 'nothing'}, not {', '.join(wanted)}",
                  "link it with the list plugin/macos/exports.txt")
    strange = sorted(image.external_symbols - set(wanted))
    findings.want(not strange, where, f"has the external symbols {', '.join(strange)}",
                  "link it with the list plugin/macos/exports.txt")


def _check_content(data, where, texts, findings):
    for text in (texts.name, texts.description):
        findings.want(text.encode() + b"\0" in data, where, f"does not carry the text '{text}'",
                      REBUILD)
    path = SOURCE_PATH.search(data)
    found = path.group() if path else bytes(SOURCE) if bytes(SOURCE) in data else b""
    findings.want(not found, where, f"shows the build's path {found.decode(errors='replace')}",
                  "compile with -g0 and -ffile-prefix-map, link with -S")


def _check_slice(data, header, texts, findings):
    where = f"{header.arch} slice"
    image = macho.read_image(data, f"the {where}")
    _check_link(image, where, header.arch, findings)
    _check_surroundings(image, where, header.arch, findings)
    _check_exports(image, where, findings)
    _check_content(data, where, texts, findings)
    if header.arch == "arm64" or image.signature:
        check_signature(image, where, findings)


def check_module(data, texts, findings):
    """Checks the universal file and each of its slices."""
    merge = "merge one slice each for x86_64 and arm64 with lipo -create"
    slices = macho.read_slices(data)
    archs = sorted(header.arch for header in slices)
    findings.want(archs == sorted(MINIMUM), "module",
                  f"has slices for {', '.join(archs) or 'nothing'}, not x86_64 and arm64", merge)
    end = max((header.offset + header.size for header in slices), default=0)
    if end > len(data):
        raise Malformed(f"the module is cut short; {REBUILD}")
    findings.want(end == len(data), "module", "has bytes behind its last slice", merge)
    for header in slices:
        if header.arch not in MINIMUM:
            continue
        findings.want(header.offset % (1 << PAGE_BITS[header.arch]) == 0, f"{header.arch} slice",
                      "does not begin on a page", merge)
        _check_slice(data[header.offset:header.offset + header.size], header, texts, findings)
