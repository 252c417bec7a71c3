"""Installs, replaces and removes what the archive brings. Runs inside the sandbox, where /Library and
the home folder are private and empty, as root (for all users) or as an ordinary user (for one).

    install_test.py ARCHIVE [UNITTEST OPTION...]
"""

import os
import shutil
import signal
import subprocess
import sys
import tarfile
import tempfile
import unittest
from pathlib import Path

NAME = "Zerva SSL VPN Plugin"
ARCHIVE = None

IS_ROOT = os.geteuid() == 0
FOLDER = Path("/Library" if IS_ROOT else Path.home() / "Library") / "Internet Plug-Ins"
OPTIONS = [] if IS_ROOT else ["--user"]
TARGET = FOLDER / f"{NAME}.plugin"
HELPER = Path("Contents/Helpers/nevo")
MODULE = Path("Contents/MacOS") / NAME


def content(folder):
    """Every file of a folder with what is in it."""
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in sorted(folder.rglob("*")) if path.is_file()}


class InstallTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        with tarfile.open(ARCHIVE) as archive:
            archive.extractall(scratch.name)
        self.unpacked = next(Path(scratch.name).iterdir())
        self.new = self.unpacked / f"{NAME}.plugin"
        self.addCleanup(shutil.rmtree, FOLDER, ignore_errors=True)

    def run_script(self, script, *options, env=None):
        return subprocess.run(["sh", str(self.unpacked / script), *options], check=False,
                              capture_output=True, text=True, env={**os.environ, **(env or {})})

    def install(self, env=None):
        return self.run_script("install.sh", *OPTIONS, env=env)

    def assert_installs(self, *texts):
        run = self.install()
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        for text in texts:
            self.assertIn(text, run.stdout)
        return run

    def assert_refuses(self, text, env=None):
        run = self.install(env)
        self.assertEqual(run.returncode, 1, run.stdout)
        self.assertIn(text, run.stderr)

    def leave_old_version(self, version="0.9"):
        """Puts an older version into the place of the plug-in."""
        (TARGET / "Contents/MacOS").mkdir(parents=True)
        (TARGET / MODULE).write_text("old module")
        (TARGET / "Contents/Info.plist").write_text(
            f"<key>CFBundleShortVersionString</key>\n<string>{version}</string>\n")
        return content(TARGET)

    def assert_only_plugin_is_left(self):
        self.assertEqual(os.listdir(FOLDER), [TARGET.name])


class Installing(InstallTest):
    def test_brings_the_whole_bundle_and_says_so(self):
        self.assert_installs(f"Installed {NAME} 1.0.0 in {FOLDER}.", "Quit and reopen the browser")
        self.assertEqual(content(TARGET), content(self.new))
        self.assertTrue(os.access(TARGET / MODULE, os.X_OK))
        self.assert_only_plugin_is_left()

    def test_leaves_it_writable_for_nobody_else(self):
        os.umask(0)
        self.addCleanup(os.umask, 0o022)
        self.assert_installs()
        for path in [TARGET, *TARGET.rglob("*")]:
            self.assertEqual(path.stat().st_mode & 0o022, 0, path)
            self.assertEqual(path.stat().st_uid, os.geteuid())

    def test_replaces_an_older_version(self):
        self.leave_old_version()
        self.assert_installs("1.0.0 (was 0.9)")
        self.assertEqual(content(TARGET), content(self.new))
        self.assert_only_plugin_is_left()

    def test_keeps_the_service_program_when_it_brings_none(self):
        self.leave_old_version()
        (TARGET / HELPER).parent.mkdir()
        (TARGET / HELPER).write_text("service")
        (TARGET / HELPER).chmod(0o755)
        self.assert_installs("The service program of the installed version is kept.")
        self.assertEqual((TARGET / HELPER).read_text(), "service")
        self.assertTrue(os.access(TARGET / HELPER, os.X_OK))

    def test_keeps_settings_and_logs(self):
        kept = [Path.home() / "Library/Zerva/zerva.conf",
                Path.home() / "Library/Logs/Zerva/nevo_plugin.log"]
        for file in kept:
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text("kept")
        self.assert_installs()
        self.assertEqual(self.run_script("uninstall.sh", *OPTIONS).returncode, 0)
        self.assertEqual([file.read_text() for file in kept], ["kept", "kept"])

    def test_refuses_an_archive_without_a_file(self):
        before = self.leave_old_version()
        (self.new / MODULE).unlink()
        self.assert_refuses("files are missing or damaged")
        self.assertEqual(content(TARGET), before)

    def test_refuses_an_archive_with_a_damaged_file(self):
        before = self.leave_old_version()
        with open(self.new / MODULE, "ab") as module:
            module.write(b"x")
        self.assert_refuses("files are missing or damaged")
        self.assertEqual(content(TARGET), before)

    def test_refuses_an_archive_unpacked_in_part(self):
        for part in (self.unpacked / "checksums.txt", self.new):
            with self.subTest(part.name):
                part.rename(part.with_name("away"))
                self.assert_refuses("this folder is not whole")
                part.with_name("away").rename(part)

    def test_refuses_a_file_in_the_place_of_the_plugin(self):
        FOLDER.mkdir(parents=True)
        TARGET.write_text("a file")
        self.assert_refuses("is not a folder")
        self.assertEqual(TARGET.read_text(), "a file")

    def test_leaves_the_old_version_when_the_copy_is_cut_off(self):
        before = self.leave_old_version()
        self.assert_refuses("nothing was changed", env=self.with_failing(
            "cp", 'mkdir -p "$3/half"; exit 1'))
        self.assertEqual(content(TARGET), before)
        self.assert_only_plugin_is_left()

    def test_leaves_the_old_version_when_the_last_step_fails(self):
        before = self.leave_old_version()
        self.assert_refuses("nothing was changed", env=self.with_failing(
            "mv", 'case $1 in *.new/*) exit 1 ;; esac; exec /bin/mv "$@"'))
        self.assertEqual(content(TARGET), before)
        self.assert_only_plugin_is_left()

    def cut_off_between_the_renames(self, signal_name):
        """An install that gets this signal when the old version has just been set aside."""
        return self.install(self.with_failing("mv", '/bin/mv "$@" || exit; case $2 in '
                                              f'*.old) kill -{signal_name} $PPID ;; esac'))

    def test_leaves_the_old_version_when_interrupted_between_the_renames(self):
        before = self.leave_old_version()
        run = self.cut_off_between_the_renames("TERM")
        self.assertEqual((run.returncode, run.stderr), (1, ""))
        self.assertEqual(content(TARGET), before)
        self.assert_only_plugin_is_left()

    def test_killed_between_the_renames_leaves_no_plugin_until_the_next_run_repairs_it(self):
        before = self.leave_old_version("0.8")
        run = self.cut_off_between_the_renames("KILL")
        self.assertEqual(run.returncode, -signal.SIGKILL)
        self.assertFalse(TARGET.exists())
        self.assertEqual(content(FOLDER / f".{NAME}.old"), before)
        self.assert_installs("An earlier install was cut off", "(was 0.8)")
        self.assertEqual(content(TARGET), content(self.new))
        self.assert_only_plugin_is_left()

    def test_puts_back_what_an_install_cut_off_in_between_had_set_aside(self):
        self.leave_old_version("0.8")
        TARGET.rename(FOLDER / f".{NAME}.old")
        (FOLDER / f".{NAME}.new/half").mkdir(parents=True)
        self.assert_installs("An earlier install was cut off", "(was 0.8)")
        self.assertEqual(content(TARGET), content(self.new))
        self.assert_only_plugin_is_left()

    def with_failing(self, tool, body):
        """An environment where one tool is replaced."""
        folder = self.unpacked.parent / "tools"
        folder.mkdir()
        (folder / tool).write_text(f"#!/bin/sh\n{body}\n")
        (folder / tool).chmod(0o755)
        return {"PATH": f"{folder}:{os.environ['PATH']}"}

    def test_explains_itself(self):
        for script in ("install.sh", "uninstall.sh"):
            run = self.run_script(script, "--help")
            self.assertEqual(run.returncode, 2)
            self.assertIn(f"sudo sh {script}", run.stdout)

    @unittest.skipIf(IS_ROOT, "root may")
    def test_refuses_to_install_for_all_users_without_being_root(self):
        for script in ("install.sh", "uninstall.sh"):
            run = self.run_script(script)
            self.assertEqual(run.returncode, 1)
            self.assertIn("only root may", run.stderr)


class Uninstalling(InstallTest):
    def uninstall(self, *texts):
        run = self.run_script("uninstall.sh", *OPTIONS)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        for text in texts:
            self.assertIn(text, run.stdout)
        return run.stdout

    def test_removes_the_plugin_and_nothing_else(self):
        self.assert_installs()
        (FOLDER / "Other.plugin").mkdir()
        self.uninstall(f"Removed {NAME} from {FOLDER}. Settings and logs were kept.")
        self.assertEqual(os.listdir(FOLDER), ["Other.plugin"])

    def test_says_when_there_is_nothing_to_remove(self):
        self.uninstall(f"{NAME} is not installed in {FOLDER}.")

    def test_removes_what_a_cut_off_install_left(self):
        for kind in ("new", "old"):
            (FOLDER / f".{NAME}.{kind}/half").mkdir(parents=True)
        self.uninstall()
        self.assertEqual(os.listdir(FOLDER), [])

    def with_service(self, name):
        """Starts a process of that name, whose number stands in the service's file."""
        program = self.unpacked.parent / name
        shutil.copy("/bin/sleep", program)
        process = subprocess.Popen([program, "60"])
        self.addCleanup(process.kill)
        pid_file = Path("/Library/Application Support/Zerva/nevo/var/run/nevo.pid")
        pid_file.parent.mkdir(parents=True, exist_ok=True)
        pid_file.write_text(f"{process.pid}\n")
        return process

    @unittest.skipUnless(IS_ROOT, "the service runs for all users")
    def test_stops_the_service(self):
        self.assert_installs()
        process = self.with_service("nevo")
        self.uninstall("Stopped the VPN service")
        self.assertEqual(process.wait(10), -signal.SIGTERM)

    @unittest.skipUnless(IS_ROOT, "the service runs for all users")
    def test_leaves_a_process_alone_that_is_not_the_service(self):
        self.assert_installs()
        process = self.with_service("another")
        self.assertNotIn("Stopped", self.uninstall())
        self.assertIsNone(process.poll())


if __name__ == "__main__":
    ARCHIVE = sys.argv.pop(1)
    unittest.main(verbosity=2)
