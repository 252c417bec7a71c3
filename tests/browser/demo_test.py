"""Runs scripts/demo, and what it runs in the sandbox, on what has been built: it must tell the end
of the plug-in's log with a count by priority, and bring log and settings out of the sandbox.

    demo_test.py SOURCES BUILD SCRATCH

The scripts are tried in a copy, where nothing is installed and nothing is built.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from collections import Counter
from pathlib import Path

SOURCES = BUILD = SCRATCH = None
BUILT = ("plugin/nevo_plugin.so", "demo/adapter/zerva_unix_adapter.so",
         "demo/host/zerva_portal_demo", "demo/service/nevo")

END = b"\nthe end of nevo_plugin.log:\n"
COUNTS = b"\nlog lines by priority:\n"
NO_SETTINGS = b"the plug-in wrote no settings file (/home/user/Library/Zerva/zerva.conf)\n"

# Three items, one of them of two lines, bytes of no encoding, and what only looks like an item.
LOG = (b"2024-02-29, 7:05:09:003, 17,42,nevo_plugin, 5,,,, first\n"
       b"2024-02-29,17:05:09:003, 17,-42,nevo_plugin, -1,,,, second \xff\xfe, 7,,,,\n"
       b"2024-02-29,17:05:09, 17,42,nevo_plugin, 8,,,, without milliseconds\n"
       b"and, 17,42,nevo_plugin, 9,,,, more of the second\n"
       b"2024-02-29,17:05:10:999, 17,42,nevo_plugin, 5,,,, " + 200 * b"x" + b"\n")


class DemoTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(dir=SCRATCH)
        self.addCleanup(scratch.cleanup)
        self.scratch = Path(scratch.name)
        self.tree = self.scratch / "tree"
        for folder in ("scripts", "demo"):
            shutil.copytree(SOURCES / folder, self.tree / folder)
        for file in BUILT:
            (self.tree / "build/release" / file).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(BUILD / file, self.tree / "build/release" / file)
        self.tools = self.scratch / "tools"
        self.tools.mkdir()
        self.put("dpkg-query", "printf installed")
        self.put("cmake", "echo cmake was asked")

    def put(self, tool, body):
        (self.tools / tool).write_text(f"#!/bin/sh\n{body}\n")
        (self.tools / tool).chmod(0o755)

    def run_script(self, script, *arguments, cwd=None):
        path = f"{self.tools}:{os.environ['PATH']}"
        return subprocess.run([self.tree / "scripts" / script, *arguments], cwd=cwd or self.tree,
                              check=False, capture_output=True, env={**os.environ, "PATH": path})

    def told(self, output):
        """The lines shown of the log, the counts by priority, and what comes after those."""
        before, end, rest = output.partition(END)
        self.assertTrue(end, output)
        shown, counts, rest = rest.partition(COUNTS)
        self.assertTrue(counts, output)
        table = re.match(rb"(?: *\d+ priority -?\d+\n)*", rest).group()
        by_priority = {int(priority): int(count) for count, priority
                       in re.findall(rb"(\d+) priority (-?\d+)\n", table)}
        return shown.splitlines(), by_priority, rest[len(table):]


class Scenario(DemoTest):
    def run_demo(self, *options, cwd=None):
        run = self.run_script("demo", *options, "connect", cwd=cwd)
        self.assertEqual((run.returncode, run.stderr), (0, b""), run.stdout)
        return run.stdout

    def test_ends_with_the_end_of_the_log_and_its_items_by_priority(self):
        shown, counts, _ = self.told(self.run_demo("--keep", self.scratch / "kept"))
        log = (self.scratch / "kept/nevo_plugin.log").read_bytes()
        self.assertEqual(shown, [line[:160] for line in log.splitlines()[-5:]])
        self.assertTrue(b"[NP_Initialize]" in log, "the log is not the plug-in's")
        self.assertEqual(counts, Counter(int(line.split(b",")[5]) for line in log.splitlines()
                                         if re.match(rb"\d{4}-", line)))
        self.assertGreater(counts[0], 10)

    def test_brings_log_and_settings_out_into_a_folder_that_it_makes(self):
        kept = self.scratch / "not/yet there"
        self.assertNotIn(NO_SETTINGS, self.run_demo("--keep", kept))
        self.assertEqual(sorted(os.listdir(kept)), ["nevo_plugin.log", "zerva.conf"])
        self.assertIn(b"default", (kept / "zerva.conf").read_bytes())

    def test_takes_the_folder_from_where_it_was_called(self):
        caller = self.scratch / "caller"
        caller.mkdir()
        self.run_demo("--keep", "kept", cwd=caller)
        self.assertEqual(sorted(os.listdir(caller / "kept")), ["nevo_plugin.log", "zerva.conf"])

    def test_leaves_nothing_but_the_picture_where_nothing_is_to_be_kept(self):
        self.told(self.run_demo())
        self.assertEqual(sorted(os.listdir(self.tree / "build/demo")), ["build.log", "connect.png"])


class Folder(DemoTest):
    def assert_refused(self, status, text, *options):
        run = self.run_script("demo", *options)
        self.assertEqual((run.returncode, run.stderr.decode()), (status, text))
        self.assertEqual(run.stdout, b"", "something was done before")
        self.assertFalse((self.tree / "build/demo").exists())

    def test_that_cannot_be_written_is_refused_before_anything_is_built(self):
        (self.scratch / "file").write_text("kept")
        for folder in (self.scratch / "file", self.scratch / "file/below", Path("/proc")):
            with self.subTest(folder):
                self.assert_refused(1, f"scripts/demo: --keep: {folder} cannot be written; "
                                       "name another folder\n", "--keep", folder)
        self.assertEqual((self.scratch / "file").read_text(), "kept")

    def test_that_is_not_named_is_asked_for(self):
        for options in (["--keep"], ["--keep", ""]):
            self.assert_refused(2, "scripts/demo: --keep needs a folder\n", *options)


class TellLog(DemoTest):
    """Commands of the test's own in the scenario's place."""

    def tell(self, command):
        self.kept = self.scratch / "kept"
        self.kept.mkdir()
        (self.tree / "log").write_bytes(LOG)
        begin = "cd ~ && mkdir -p Library/Logs/Zerva Library/Zerva && logs=Library/Logs/Zerva;"
        return self.run_script("sandbox", "--user", "--bind", self.kept, "--", "demo/tell-log",
                               self.kept, "sh", "-c", f"log={self.tree}/log; {begin} {command}")

    def test_counts_the_items_and_shows_the_last_five_lines_to_160_characters(self):
        run = self.tell("cat $log $log >$logs/nevo_plugin.log")
        shown, counts, _ = self.told(run.stdout)
        self.assertEqual(shown, [line[:160] for line in LOG.splitlines()])
        self.assertEqual(counts, {5: 4, -1: 2})

    def test_without_a_settings_file_says_so_and_keeps_the_log(self):
        run = self.tell("cp $log $logs/nevo_plugin.log")
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        self.assertEqual(self.told(run.stdout)[2], b"\n" + NO_SETTINGS)
        self.assertEqual(os.listdir(self.kept), ["nevo_plugin.log"])
        self.assertEqual((self.kept / "nevo_plugin.log").read_bytes(), LOG)

    def test_keeps_both_and_the_status_of_a_command_that_failed(self):
        run = self.tell("cp $log $logs/nevo_plugin.log; echo s >Library/Zerva/zerva.conf; exit 7")
        self.assertEqual((run.returncode, run.stderr), (7, b""))
        self.assertEqual((self.kept / "nevo_plugin.log").read_bytes(), LOG)
        self.assertEqual((self.kept / "zerva.conf").read_bytes(), b"s\n")

    def test_of_an_empty_log_counts_nothing(self):
        run = self.tell(": >$logs/nevo_plugin.log; exit 7")
        self.assertEqual((run.returncode, run.stderr), (7, b""))
        self.assertEqual(self.told(run.stdout), ([], {}, b"\n" + NO_SETTINGS))

    def test_without_a_log_fails_and_says_where_it_should_be(self):
        run = self.tell("true")
        self.assertEqual((run.returncode, run.stderr), (1, b"the plug-in wrote no log "
                         b"(/home/user/Library/Logs/Zerva/nevo_plugin.log)\n"))


if __name__ == "__main__":
    SOURCES, BUILD, SCRATCH = (Path(argument) for argument in sys.argv[1:4])
    del sys.argv[1:4]
    SCRATCH.mkdir(exist_ok=True)
    unittest.main(verbosity=2)
