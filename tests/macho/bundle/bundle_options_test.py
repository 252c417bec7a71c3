"""Tries the options of scripts/bundle on a copy of the sources where the bundle has been built:
what it puts into the bundle, and what it refuses.

    bundle_options_test.py COPY ZIG_CACHE
"""

import os
import plistlib
import subprocess
import sys
import tarfile
import tempfile
import unittest
from pathlib import Path

COPY = ZIG_CACHE = None
NAME = "Zerva SSL VPN Plugin"
HELPERS = Path("Contents/Helpers")
MODULE = Path("Contents/MacOS") / NAME
ARCHS = ("x86_64", "arm64")
KEY = bytes(range(0xB0, 0xF0))


def content(folder):
    """Every file and folder with what is in it."""
    return {str(path.relative_to(folder)): path.read_bytes() if path.is_file() else None
            for path in sorted(folder.rglob("*"))}


def holds_key(data):
    """Whether the start of the key is in the data, plain or with one of the signature's masks
    applied by the compiler."""
    return any(bytes(byte ^ mask for byte in KEY[:8]) in data for mask in (0, 0x36, 0x5C))


class BundleOptions(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.caller = Path(scratch.name)
        self.bundle = COPY / "build/bundle" / f"{NAME}.plugin"

    def run_bundle(self, *options):
        """Called from another folder, which relative paths start from."""
        cache = os.environ.get("ZIG_GLOBAL_CACHE_DIR", ZIG_CACHE)
        return subprocess.run([COPY / "scripts/bundle", *options], cwd=self.caller, check=False,
                              capture_output=True, text=True,
                              env={**os.environ, "ZIG_GLOBAL_CACHE_DIR": cache})

    def build(self, *options):
        run = self.run_bundle(*options)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)

    def assert_refused(self, text, *options):
        before = content(self.bundle)
        run = self.run_bundle(*options)
        self.assertEqual(run.returncode, 1, run.stdout)
        self.assertIn(text, " ".join(run.stderr.split()))
        self.assertNotIn("Building", run.stdout)
        self.assertEqual(content(self.bundle), before)

    def versions(self):
        info = plistlib.loads((self.bundle / "Contents/Info.plist").read_bytes())
        return info["CFBundleVersion"], info["CFBundleShortVersionString"]

    def file(self, name, data, mode=0o644):
        (self.caller / name).write_bytes(data)
        (self.caller / name).chmod(mode)
        return name

    def libraries_with_key(self):
        return [arch for arch in ARCHS if holds_key(
            (COPY / f"build/macos-{arch}/common/libzerva_common.a").read_bytes())]

    # --- what goes in ---

    def test_version_and_service_program_are_in_the_bundle_and_in_the_archive(self):
        service = b"#!/bin/sh\n# the service\n"
        self.build("--version", "2.3.4", "--archive",
                   "--service", self.file("service-program", service, 0o700))
        self.assertEqual(self.versions(), ("2.3.4", "2.3.4"))
        self.assertEqual(content(self.bundle / HELPERS), {"nevo": service})
        self.assertEqual((self.bundle / HELPERS / "nevo").stat().st_mode & 0o777, 0o755)
        root = "zerva-ssl-vpn-plugin-2.3.4"
        packed = self.bundle.parent / f"{root}.tar.gz"
        self.addCleanup(packed.unlink)
        with tarfile.open(packed) as archive:
            helper = archive.getmember(f"{root}/{NAME}.plugin/{HELPERS}/nevo")
            self.assertEqual((archive.extractfile(helper).read(), helper.mode), (service, 0o755))
            checksums = archive.extractfile(f"{root}/checksums.txt").read().decode()
        self.assertIn(f"  {NAME}.plugin/{HELPERS}/nevo\n", checksums)

    def test_without_options_the_bundle_has_its_first_version_and_room_for_the_service(self):
        self.build()
        self.assertEqual(self.versions(), ("1.0.0", "1.0.0"))
        self.assertEqual(content(self.bundle / HELPERS), {})

    def test_every_half_as_it_is_built_has_room_for_the_service(self):
        for arch in ARCHS:
            half = COPY / f"build/macos-{arch}/plugin/{NAME}.plugin"
            self.assertTrue((half / HELPERS).is_dir(), arch)

    def test_key_is_in_the_library_until_another_is_named_and_changes_nothing_in_the_bundle(self):
        self.build("--key-file", self.file("key", KEY))
        self.assertEqual(self.libraries_with_key(), list(ARCHS))
        with_key = content(self.bundle)
        self.assertFalse(holds_key(with_key[str(MODULE)]))
        self.build()
        self.assertEqual(self.libraries_with_key(), [])
        self.assertTrue(content(self.bundle) == with_key, "the bundle depends on the key")

    # --- what is refused ---

    def test_service_that_is_no_program_is_refused(self):
        (self.caller / "folder").mkdir()
        for name in ("missing", "folder", self.file("no-program", b"#!/bin/sh\n")):
            with self.subTest(name):
                self.assert_refused(f"bundle: --service: {self.caller / name} is no program; "
                                    "name a file that may be executed", "--service", name)

    def test_version_that_is_no_version_is_refused(self):
        for version in ("", "1.0-beta", "1.2.3.4", "1.", "v1"):
            with self.subTest(version):
                self.assert_refused(f"ZERVA_BUNDLE_VERSION is '{version}'; macOS wants one to "
                                    "three numbers with dots between them, such as 1.2.3",
                                    "--version", version)

    def test_key_of_another_length_or_from_nowhere_is_refused(self):
        self.assert_refused(f"there is no file {self.caller}/missing", "--key-file", "missing")
        for length in (0, 63, 65):
            with self.subTest(length):
                self.file("key", bytes(length))
                self.assert_refused(f"key holds {length} bytes; a key has exactly 64",
                                    "--key-file", "key")

    def test_option_without_its_value_is_refused(self):
        for option in ("--version", "--service", "--key-file"):
            self.assert_refused("bundle: the last option lacks its value", option)

    def test_option_that_there_is_not_is_refused(self):
        self.assert_refused("bundle: unknown option --verbose", "--verbose")


if __name__ == "__main__":
    ZIG_CACHE = sys.argv.pop()
    COPY = Path(sys.argv.pop())
    unittest.main(verbosity=2)
