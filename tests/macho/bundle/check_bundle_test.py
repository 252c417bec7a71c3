"""Breaks a good bundle in one way at a time: scripts/check-bundle must say just that.

    check_bundle_test.py BUNDLE CHECK_BUNDLE
"""

import plistlib
import struct
import subprocess
import sys
import tempfile
import unittest

from broken_bundle import CPU, LC_CODE_SIGNATURE, LC_UUID, NAME, BrokenBundle
from broken_bundle import code_directory, command, replace

GOOD = CHECK = None

MH_DYLIB = 6
LC_RPATH = 0x8000001C
LC_CHAINED_FIXUPS = 0x80000034
LC_SOURCE_VERSION = 0x2A
# To load a library at once, if it is there, as one's own, at first use, and from its user.
LIBRARY_COMMANDS = (0xC, 0x80000018, 0x8000001F, 0x20, 0x80000023)
LC_BUILD_VERSION = 0x32
LC_VERSION_MIN_MACOSX = 0x24


class CheckBundle(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.TemporaryDirectory()
        self.addCleanup(self.scratch.cleanup)
        self.bundle = BrokenBundle(GOOD, self.scratch.name)

    def faults(self, path=None):
        run = subprocess.run([CHECK, str(path or self.bundle.path)], capture_output=True,
                             text=True, check=False)
        lines = run.stderr.splitlines()
        self.assertEqual(run.returncode, 1 if lines else 0)
        for line in lines:
            self.assertRegex(line, r"^check-bundle: .*; .*$", "a fault without a cure")
        return lines

    def expect(self, *faults):
        lines = self.faults()
        self.assertEqual(len(lines), len(faults), lines)
        for line, fault in zip(lines, faults):
            self.assertIn(fault, line)

    def expect_in_both_slices(self, change, *faults, sign=True):
        for arch in CPU:
            with self.subTest(arch), tempfile.TemporaryDirectory() as scratch:
                self.bundle = BrokenBundle(GOOD, scratch)
                self.bundle.edit_slice(arch, change, sign)
                self.expect(*(f"{arch} slice: {fault}" for fault in faults))

    # --- the folder ---

    def test_a_good_bundle_is_called_fit(self):
        run = subprocess.run([CHECK, str(GOOD)], capture_output=True, text=True, check=False)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertIn("fit to load", run.stdout)

    def test_a_bundle_with_the_service_program_is_called_fit(self):
        helper = self.bundle.path / "Contents/Helpers/nevo"
        helper.write_text("#!/bin/sh\n")
        helper.chmod(0o755)
        self.expect()

    def test_a_path_without_a_bundle(self):
        lines = self.faults("/nowhere/at all.plugin")
        self.assertEqual(len(lines), 1)
        self.assertIn("is not a bundle", lines[0])

    def test_another_name_of_the_folder(self):
        other = self.bundle.path.rename(self.bundle.path.with_name("Other.plugin"))
        lines = self.faults(other)
        self.assertEqual(len(lines), 1)
        self.assertIn(f"is called 'Other.plugin', not '{NAME}.plugin'", lines[0])

    def test_a_file_that_does_not_belong(self):
        (self.bundle.path / "Contents/MacOS/link.map").write_text("")
        self.expect("Contents/MacOS/link.map does not belong into it")

    def test_a_module_that_cannot_be_executed(self):
        self.bundle.module.chmod(0o644)
        self.expect("cannot be executed; chmod 755")

    def test_a_service_program_that_cannot_be_executed(self):
        helper = self.bundle.path / "Contents/Helpers/nevo"
        helper.write_text("#!/bin/sh\n")
        helper.chmod(0o644)
        self.expect("Contents/Helpers/nevo cannot be executed; chmod 755")

    def test_a_module_that_is_missing(self):
        self.bundle.module.unlink()
        self.expect("is missing, which Info.plist names")

    # --- the property list ---

    def test_a_property_list_that_is_missing(self):
        self.bundle.plist.unlink()
        self.expect("Contents/Info.plist is missing")

    def test_a_property_list_that_is_none(self):
        for text in ("", "<plist><dict><key>A</key></dict>", "junk", "<?xml version='1.0'?><plist"):
            self.bundle.plist.write_text(text)
            self.expect("Contents/Info.plist cannot be read")

    def test_a_property_list_that_is_no_dictionary(self):
        self.bundle.plist.write_bytes(plistlib.dumps(["CFBundleName"]))
        self.expect("Contents/Info.plist is not a dictionary")

    def test_keys_that_say_something_else(self):
        for key in ("CFBundleInfoDictionaryVersion", "CFBundlePackageType",
                    "LSMinimumSystemVersion", "WebPluginName", "WebPluginDescription",
                    "WebPluginMIMETypes"):
            with self.subTest(key), tempfile.TemporaryDirectory() as scratch:
                self.bundle = BrokenBundle(GOOD, scratch)
                self.bundle.edit_plist(lambda info: info.update({key: "other"}))
                self.expect(f"Info.plist: {key} is not")

    def test_keys_that_are_missing(self):
        for key in ("CFBundleIdentifier", "CFBundleName", "CFBundleExecutable"):
            with self.subTest(key), tempfile.TemporaryDirectory() as scratch:
                self.bundle = BrokenBundle(GOOD, scratch)
                self.bundle.edit_plist(lambda info: info.pop(key))
                self.expect(f"Info.plist: {key} is missing")

    def test_versions_that_are_no_numbers(self):
        for key in ("CFBundleVersion", "CFBundleShortVersionString"):
            with self.subTest(key), tempfile.TemporaryDirectory() as scratch:
                self.bundle = BrokenBundle(GOOD, scratch)
                self.bundle.edit_plist(lambda info: info.update({key: "1.0-beta"}))
                self.expect(f"{key} is not one to three numbers")

    def test_another_suffix_or_description_of_the_type(self):
        for key in ("WebPluginExtensions", "WebPluginTypeDescription"):
            with self.subTest(key), tempfile.TemporaryDirectory() as scratch:
                self.bundle = BrokenBundle(GOOD, scratch)
                self.bundle.edit_plist(lambda info: next(
                    iter(info["WebPluginMIMETypes"].values())).update({key: "other"}))
                self.expect(f"Info.plist: {key} is not")

    # --- the universal file ---

    def thin(self, keep):
        """Leaves one slice in the universal file."""
        def drop(data):
            for i in range(2):
                if struct.unpack_from(">I", data, 8 + 20 * i)[0] == CPU[keep]:
                    data[8:28] = data[8 + 20 * i:28 + 20 * i]
            data[4:8] = struct.pack(">I", 1)
            offset, size = struct.unpack_from(">II", data, 16)
            del data[offset + size:]
        self.bundle.edit_module(drop)

    def test_a_missing_slice(self):
        for arch in CPU:
            with self.subTest(arch), tempfile.TemporaryDirectory() as scratch:
                self.bundle = BrokenBundle(GOOD, scratch)
                self.thin(arch)
                self.expect(f"has slices for {arch}, not x86_64 and arm64")

    def test_a_module_for_one_processor_alone(self):
        offset, size = self.bundle.slice("arm64")
        self.bundle.edit_module(lambda data: data.__setitem__(slice(None),
                                                              data[offset:offset + size]))
        self.expect("the module is not a universal file")

    def test_a_list_of_slices_without_end(self):
        self.bundle.edit_module(lambda data: data.__setitem__(slice(4, 8), b"\0\0\1\0"))
        self.expect("the module's list of slices makes no sense")

    def test_bytes_behind_the_last_slice(self):
        self.bundle.edit_module(lambda data: data.extend(b"more"))
        self.expect("has bytes behind its last slice")

    def test_a_module_that_is_cut_short(self):
        for size in (3, 7, 20, 40000, -1):
            data = GOOD_MODULE[:size]
            self.bundle.module.write_bytes(data)
            lines = self.faults()
            self.assertEqual(len(lines), 1, lines)
            self.assertIn("cut short", lines[0])

    def test_a_slice_that_does_not_begin_on_a_page(self):
        offset, size = self.bundle.slice("arm64")

        def shift(data):
            image = data[offset:offset + size]
            data[offset:] = bytes(0x1000) + image
            for i in range(2):
                if struct.unpack_from(">I", data, 8 + 20 * i)[0] == CPU["arm64"]:
                    data[16 + 20 * i:20 + 20 * i] = struct.pack(">I", offset + 0x1000)
        self.bundle.edit_module(shift)
        self.expect("arm64 slice: does not begin on a page")

    # --- the slices ---

    def expect_unreadable_slice(self, change, fault):
        for arch in CPU:
            with self.subTest(arch), tempfile.TemporaryDirectory() as scratch:
                self.bundle = BrokenBundle(GOOD, scratch)
                self.bundle.edit_slice(arch, change, sign=False)
                self.expect(f"the {arch} slice {fault}")

    def test_a_slice_that_is_no_image(self):
        self.expect_unreadable_slice(lambda image: image.__setitem__(slice(0, 4), b"\x7fELF"),
                                     "is not a 64-bit Mach-O image")

    def test_a_load_command_without_a_size(self):
        self.expect_unreadable_slice(lambda image: image.__setitem__(slice(36, 40), bytes(4)),
                                     "has a load command without a size")

    def test_another_file_type(self):
        self.expect_in_both_slices(
            lambda image: image.__setitem__(slice(12, 16), struct.pack("<I", MH_DYLIB)),
            "is of file type 6, not a bundle (8)")

    def test_weak_definitions(self):
        for flag in (0x8000, 0x10000):
            def add(image, flag=flag):
                flags = struct.unpack_from("<I", image, 24)[0]
                image[24:28] = struct.pack("<I", flags | flag)
            self.expect_in_both_slices(add, "has weak definitions")

    def test_another_minimum_version(self):
        def raise_minimum(image):
            try:
                at = command(image, LC_VERSION_MIN_MACOSX) + 8
            except AssertionError:
                at = command(image, LC_BUILD_VERSION) + 12
            image[at:at + 4] = struct.pack("<I", 0x000C0300)
        self.expect_in_both_slices(raise_minimum, "wants macOS 12.3, not 1")

    def test_another_platform(self):
        def move(image):
            at = command(image, LC_BUILD_VERSION) + 8
            image[at:at + 4] = struct.pack("<I", 2)
        self.bundle.edit_slice("arm64", move)
        self.expect("arm64 slice: is not built for macOS")

    def test_chained_fixups_before_they_can_be_read(self):
        def add(image):
            at = command(image, LC_UUID)
            image[at:at + 4] = struct.pack("<I", LC_CHAINED_FIXUPS)
        self.bundle.edit_slice("x86_64", add)
        self.expect("x86_64 slice: has chained fixups")

    def test_another_library(self):
        self.expect_in_both_slices(
            lambda image: replace(image, b"/usr/lib/libSystem.B", b"/opt/lib/libSystem.B"),
            "needs /opt/lib/libSystem.B.dylib", "does not name libSystem")

    def test_another_library_by_whatever_command(self):
        for kind in LIBRARY_COMMANDS:
            def load(image, kind=kind):
                at = command(image, LC_UUID)
                image[at:at + 24] = struct.pack("<III12s", kind, 24, 12, b"/opt/x.dylib")[:23] + b"\0"
            self.expect_in_both_slices(load, "needs /opt/x.dyli")

    def test_a_search_path_for_libraries(self):
        def add(image):
            at = command(image, LC_UUID)
            image[at:at + 24] = struct.pack("<III12s", LC_RPATH, 24, 12, b"@loader_path")[:23] + b"\0"
        self.expect_in_both_slices(add, "searches @loader_pat")

    def test_an_import_outside_the_list(self):
        self.expect_in_both_slices(lambda image: replace(image, b"\0_getpgid\0", b"\0_getpgix\0"),
                                   "imports _getpgix")

    def test_an_import_of_the_other_processor_alone(self):
        self.bundle.edit_slice(
            "x86_64", lambda image: replace(image, b"\0_posix_memalign\0", b"\0_aligned_alloc\0\0"))
        self.expect("x86_64 slice: imports _aligned_alloc")

    def test_another_export(self):
        def rename_last(image):
            at = image.rindex(b"Shutdown\0", 0, image.rindex(b"\0_NP_Shutdown\0"))
            image[at:at + 8] = b"Shutdowm"
        self.expect_in_both_slices(rename_last, "exports _NP_GetEntryPoints, _NP_Initialize, "
                                   "_NP_Shutdowm, not")

    def test_another_external_symbol(self):
        def rename(image):
            at = image.rindex(b"\0_NP_Shutdown\0")
            image[at:at + 14] = b"\0_NP_Shutdowm\0"
        self.expect_in_both_slices(rename, "has the external symbols _NP_Shutdowm")

    def test_another_text_in_the_code(self):
        self.expect_in_both_slices(
            lambda image: replace(image, b"plugin, Ver. ZERVA", b"plugin, Vex. ZERVA"),
            "does not carry the text 'Zerva Lanway plugin, Ver. ZERVA_VERSION'")

    def test_a_path_of_the_build(self):
        for path in (b"/home/jo/src/a.cpp", b"/Users/jo/x/lib.a"):
            def show(image, path=path):
                old = b"[LaunchVPN] - something wrong"
                replace(image, old, (b"\0" + path + b"\0").ljust(len(old), b"."))
            self.expect_in_both_slices(show, f"shows the build's path {path.decode()}")

    # --- the signature ---

    def test_a_page_changed_after_signing(self):
        self.expect_in_both_slices(lambda image: image.__setitem__(0x5000, image[0x5000] ^ 1),
                                   "page 5 was changed after it was signed", sign=False)

    def test_an_arm64_slice_without_a_signature(self):
        def hide(image):
            at = command(image, LC_CODE_SIGNATURE)
            image[at:at + 4] = struct.pack("<I", LC_SOURCE_VERSION)
        self.bundle.edit_slice("arm64", hide, sign=False)
        self.expect("arm64 slice: is not signed")

    def test_an_x86_64_slice_without_a_signature_is_fit(self):
        def hide(image):
            at = command(image, LC_CODE_SIGNATURE)
            image[at:at + 4] = struct.pack("<I", LC_SOURCE_VERSION)
        self.bundle.edit_slice("x86_64", hide, sign=False)
        self.expect()

    def test_a_signature_that_is_none(self):
        def spoil(image):
            start = struct.unpack_from("<I", image, command(image, LC_CODE_SIGNATURE) + 8)[0]
            image[start:start + 4] = b"junk"
        self.expect_in_both_slices(spoil, "its signature cannot be read", sign=False)

    def test_a_signature_of_a_part(self):
        def shorten(image):
            at = code_directory(image) + 32
            image[at:at + 4] = struct.pack(">I", 0x1000)
        self.expect_in_both_slices(shorten, "its signature does not cover the whole image", sign=False)

    def test_a_signature_by_nobody(self):
        def clear(image):
            at = code_directory(image) + 12
            image[at:at + 4] = bytes(4)
        self.expect_in_both_slices(clear, "its signature is neither ad-hoc nor by a certificate", sign=False)


if __name__ == "__main__":
    CHECK = sys.argv.pop()
    GOOD = sys.argv.pop()
    with open(f"{GOOD}/Contents/MacOS/{NAME}", "rb") as module:
        GOOD_MODULE = module.read()
    unittest.main(verbosity=2)
