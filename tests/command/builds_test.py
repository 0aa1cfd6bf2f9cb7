"""Configuring, compiling and starting, with the real CMake and compiler."""

import os
import subprocess
import unittest

import checkout

USER = 65534  # an ordinary user
IS_ROOT = os.geteuid() == 0


class Builds(checkout.CheckoutTest):
    def test_a_build_that_is_up_to_date_starts_at_once(self):
        self.build()
        outcome = self.call("run", "script.py", "x")
        self.assertEqual((outcome.output, outcome.errors), ("[run][script.py][x] TEXT\n", ""))
        self.assertEqual(self.calls(), [], "a program was called")

    def test_every_change_of_a_source_is_built(self):
        self.build()
        program = self.checkout / "viewer/program.cxx"
        program.write_text(checkout.PROGRAM.replace("TEXT", "second"))
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.output, "[run][script.py] second\n", outcome)
        # A replaced file whose time is older, as from an archive; Ninja alone goes by this time.
        other = self.write("other.cxx", checkout.PROGRAM.replace("TEXT", "third"))
        os.rename(other, program)
        os.utime(program)
        self.assertEqual(self.call("run", "script.py").output, "[run][script.py] third\n")
        # A file more in a folder that CMake lists, and a removed program.
        self.calls()
        self.write("viewer/more.cxx", "")
        self.call("run", "script.py")
        self.assertEqual(len(self.calls("cmake --build")), 1)
        (self.checkout / "build/bin/vantrel").unlink()
        self.assertEqual(self.call("run", "script.py").output, "[run][script.py] third\n")

    def test_a_file_that_changes_during_the_build_is_built_by_the_next_call(self):
        self.stand_in("cmake", checkout.CMAKE.replace("exec ", "") + """
status=$?
if [ "$1" = --build ] && [ -f "$STATE/edit" ]; then
    rm "$STATE/edit"; sed -i s/TEXT/edited/ viewer/program.cxx
fi
exit $status
""")
        self.set("edit")
        self.assertEqual(self.call("run", "script.py").output, "[run][script.py] TEXT\n")
        self.assertEqual(self.call("run", "script.py").output, "[run][script.py] edited\n")

    def test_compiling_shows_the_counter(self):
        outcome = self.call("run", "script.py")
        self.assertRegex(outcome.errors, r"building \[4/4\]")
        (self.checkout / "viewer/program.cxx").write_text(checkout.PROGRAM.replace("TEXT", "x"))
        outcome = self.call("run", "script.py")
        self.assertRegex(outcome.errors, r"building \[2/2\]", "after a change")
        (self.checkout / "viewer/program.cxx").write_text(checkout.PROGRAM.replace("TEXT", "y"))
        status, shown = self.call_on_terminal("run", "script.py")
        self.assertEqual(status, 0)
        self.assertRegex(shown, r"\rvantrel: building \[2/2\]")

    def test_a_compilers_error_comes_first(self):
        self.write("viewer/plugin.cxx", "int plugin() { return nothing; }\n")
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.status, 2)
        told = [line for line in outcome.errors.splitlines() if not line.startswith("vantrel: ")]
        self.assertRegex(told[0], r"viewer/plugin.cxx:1:\d+: error: .*nothing.* was not declared")
        self.assertNotIn("FAILED", outcome.errors)
        self.assertRegex(outcome.errors.splitlines()[-1], "building failed; the lines above say why.*again.*build.log")
        self.write("viewer/plugin.cxx", "int plugin() { return 1; }\n")
        self.assertEqual(self.call("run", "script.py").status, 0)

    def test_too_little_memory_is_said(self):
        self.build()
        self.stand_in("cmake", "echo 'c++: fatal error: Killed signal terminated program cc1plus'; exit 1")
        self.write("viewer/plugin.cxx", "")
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.status, 2)
        self.assert_says(outcome, "out of memory", "CMAKE_BUILD_PARALLEL_LEVEL=1 ./vantrel")

    def test_a_configure_error_is_said(self):
        with open(self.checkout / "CMakeLists.txt", "a", encoding="utf-8") as text:
            text.write('message(FATAL_ERROR "The moon is in the way.")\n')
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.status, 2)
        self.assert_says(outcome, "The moon is in the way.")
        self.assertRegex(outcome.errors.splitlines()[-1], "configuring failed; the lines above say why.*again.*configure.log")
        self.write("CMakeLists.txt", checkout.CMAKE_LISTS)
        self.assertEqual(self.call("run", "script.py").status, 0)

    def test_a_moved_checkout_is_built_again(self):
        self.build()
        moved = self.folder / "moved"
        self.checkout.rename(moved)
        self.checkout = moved
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.output, "[run][script.py] TEXT\n", outcome)
        self.assertIn(f"CMAKE_HOME_DIRECTORY:INTERNAL={moved}\n", (moved / "build/CMakeCache.txt").read_text())

    def test_a_build_without_tests_gets_them_when_they_are_wanted(self):
        self.build()
        outcome = self.call("test", "passes")
        self.assertEqual(outcome.status, 0, outcome)
        self.assertEqual(outcome.output.splitlines()[-1], "1 passed, 0 failed")

    def test_package_builds_and_hands_over(self):
        path = self.write("packaging/make_packages", '#!/bin/sh\necho "packages of $1"\n')
        path.chmod(0o755)
        outcome = self.call("package")
        self.assertEqual((outcome.status, outcome.output), (0, f"packages of {self.checkout}/build\n"), outcome)
        self.assertTrue((self.checkout / "build/bin/vantrel").exists())


class Interrupts(checkout.CheckoutTest):
    def slow_compiler(self):
        """A compiler that writes half an object and then takes its time."""
        compiler = self.folder / "c++"
        compiler.write_text("""#!/bin/bash
case "$*" in
*plugin.cxx*)
    [ -f "$STATE/slow" ] || exec /usr/bin/c++ "$@"
    while [ $# -gt 1 ]; do [ "$1" != -o ] || printf half >"$2"; shift; done
    echo $$ >"$STATE/started"; sleep 30 ;;
*) exec /usr/bin/c++ "$@" ;;
esac
""")
        compiler.chmod(0o755)
        return {"CXX": str(compiler)}

    def test_an_interrupt_ends_compiling_at_once_and_the_next_call_finishes(self):
        variables = self.slow_compiler()
        self.set("slow")
        process = self.start("run", "script.py", **variables)
        self.wait_for(lambda: (self.state / "started").exists())
        outcome = self.interrupt(process)
        self.assertEqual(outcome.status, 130, outcome)
        self.assertLess(outcome.seconds, 2)
        compiler = int((self.state / "started").read_text())
        self.wait_for(lambda: not os.path.exists(f"/proc/{compiler}"), 5)
        self.clear("slow")
        outcome = self.call("run", "script.py", **variables)
        self.assertEqual((outcome.status, outcome.output), (0, "[run][script.py] TEXT\n"), outcome)

    def test_objects_that_were_cut_off_are_made_again(self):
        self.build()
        for length in (0, 10, 100, 1000):
            [path] = (self.checkout / "build").rglob("plugin.cxx.o")
            times = path.stat()
            path.write_bytes(path.read_bytes()[:length])
            os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))  # Ninja goes by the time
            (self.checkout / "build/plugins/libvantrel_python.so").unlink()
            outcome = self.call("run", "script.py")
            self.assertEqual((outcome.status, outcome.output), (0, "[run][script.py] TEXT\n"), outcome)
            plugin = (self.checkout / "build/plugins/libvantrel_python.so").read_bytes()
            self.assertIn(b"plugin", plugin, f"the object had {length} bytes")

    def test_an_interrupt_ends_configuring_at_once_and_the_next_call_repairs(self):
        self.stand_in("cmake", """
if [ -f "$STATE/slow" ]; then
    mkdir -p build/CMakeFiles/3.25.1; echo 'set(broken' >build/CMakeFiles/3.25.1/CMakeCXXCompiler.cmake
    echo 'CMAKE_CXX_COMPILER:FILEPATH=/nowhere/c++' >build/CMakeCache.txt; echo broken >build/build.ninja
    touch "$STATE/started"; sleep 30
fi
""" + checkout.CMAKE)
        self.set("slow")
        process = self.start("run", "script.py")
        self.wait_for(lambda: (self.state / "started").exists())
        outcome = self.interrupt(process)
        self.assertEqual(outcome.status, 130, outcome)
        self.assertLess(outcome.seconds, 2)
        self.clear("slow")
        outcome = self.call("run", "script.py")
        self.assertEqual((outcome.status, outcome.output), (0, "[run][script.py] TEXT\n"), outcome)

    def test_an_interrupt_ends_tests_at_once(self):
        process = self.start("test", "waits")
        log = self.checkout / "build/test.log"
        self.wait_for(lambda: log.exists() and "Start" in log.read_text())
        outcome = self.interrupt(process)
        self.assertEqual(outcome.status, 130, outcome)
        self.assertLess(outcome.seconds, 2)

    def test_two_calls_wait_for_each_other(self):
        variables = self.slow_compiler()
        self.set("slow")
        first = self.start("run", "script.py", **variables)
        self.wait_for(lambda: (self.state / "started").exists())
        second = self.start("run", "script.py", **variables)
        line = second.stderr.readline()
        self.assertIn("another ./vantrel is at work", line)
        self.assertIn("waiting", line)
        third = self.start("run", "script.py", **variables)
        third.stderr.readline()
        outcome = self.interrupt(third)
        self.assertEqual(outcome.status, 130, "while it waits")
        self.assertLess(outcome.seconds, 2)
        self.clear("slow")
        self.interrupt(first)
        outcome = self.finish(second)
        self.assertEqual((outcome.status, outcome.output), (0, "[run][script.py] TEXT\n"), outcome)

    def test_a_running_program_locks_out_nobody(self):
        self.write("viewer/program.cxx", "#include <unistd.h>\nint main() { sleep(20); }\n")
        running = self.start("run", "script.py")
        self.wait_for(lambda: (self.checkout / "build/up-to-date").exists())
        self.write("viewer/plugin.cxx", "int plugin() { return 2; }\n")
        outcome = self.call("test", "passes")
        self.assertEqual(outcome.status, 0, outcome)
        self.assertNotIn("another", outcome.errors)
        self.interrupt(running)


class Folders(checkout.CheckoutTest):
    """Checkouts that cannot be written. Root can write everywhere, so these tests need another user or a mount."""

    def give(self, user, *folders):
        for folder in folders:
            for path in [folder, *folder.rglob("*")]:
                os.chown(path, user, user, follow_symlinks=False)

    def unwritable(self, folder):
        """Returns the options of a call by a user who cannot write in the folder."""
        os.chmod(self.state / "calls", 0o666)
        if IS_ROOT:
            return {"user": USER}
        subprocess.run(["chmod", "-R", "a-w", folder], check=True)
        return {}

    def test_a_read_only_checkout_that_is_built_runs(self):
        self.build()
        options = self.unwritable(self.checkout)
        outcome = self.call("run", "script.py", **options)
        self.assertEqual((outcome.status, outcome.output, outcome.errors), (0, "[run][script.py] TEXT\n", ""))
        # The same after the files were copied, which changes their state but not their content.
        copied = self.folder / "copied"
        subprocess.run(["cp", "-a", self.checkout, copied], check=True)
        self.checkout.rename(self.folder / "old")
        copied.rename(self.checkout)
        outcome = self.call("run", "script.py", **options)
        self.assertEqual((outcome.status, outcome.output, outcome.errors), (0, "[run][script.py] TEXT\n", ""))

    def test_a_read_only_checkout_that_is_not_built_is_refused(self):
        self.uninstall()
        self.assert_refused(self.call("run", "script.py", **self.unwritable(self.checkout)),
                            "not built", "cannot be written", "copy the checkout")

    def test_a_read_only_build_with_newer_sources_is_refused(self):
        self.build()
        (self.checkout / "viewer/program.cxx").write_text(checkout.PROGRAM.replace("TEXT", "newer"))
        outcome = self.call("run", "script.py", **self.unwritable(self.checkout))
        self.assertEqual((outcome.status, outcome.output), (2, ""), outcome)
        self.assert_says(outcome, "not up to date")

    @unittest.skipUnless(IS_ROOT, "needs root")
    def test_a_build_by_root_runs_for_a_user_and_is_not_touched(self):
        self.build()
        self.give(USER, self.checkout / "viewer")
        os.chown(self.checkout, USER, USER)
        os.chmod(self.state / "calls", 0o666)
        outcome = self.call("run", "script.py", user=USER)
        self.assertEqual((outcome.status, outcome.output), (0, "[run][script.py] TEXT\n"), outcome)
        (self.checkout / "viewer/program.cxx").write_text(checkout.PROGRAM.replace("TEXT", "newer"))
        outcome = self.call("run", "script.py", user=USER)
        self.assertEqual(outcome.status, 2, outcome)
        self.assert_says(outcome, "made by root", "sudo chown -R", "not up to date")
        # A folder of the user in which root has built once.
        os.chown(self.checkout / "build", USER, USER)
        outcome = self.call("run", "script.py", user=USER)
        self.assertEqual(outcome.status, 2, outcome)
        self.assert_says(outcome, "made by root", "sudo chown -R")
        self.give(USER, self.checkout)
        self.assertEqual(self.call("run", "script.py", user=USER).output, "[run][script.py] newer\n")

    def test_a_full_disk_is_said(self):
        """A build folder of 40 kB, where that can be mounted; else a compiler that says so."""
        build = self.checkout / "build"
        build.mkdir()
        mount = f"mount -t tmpfs -o size=40k none '{build}' && exec \"$@\""
        before = ["unshare", "-m", "bash", "-c", mount, "mount"]
        if subprocess.run([*before, "true"], check=False, capture_output=True).returncode:
            before = []
            self.stand_in("cmake", "echo 'fatal error: error writing to a.o: No space left on device'; exit 1")
        outcome = self.call("run", "script.py", before=before)
        self.assertEqual(outcome.status, 2, outcome)
        last = outcome.errors.splitlines()[-1]
        self.assertRegex(last, "the disk with .* is full.*make room.*again")


if __name__ == "__main__":
    unittest.main()
