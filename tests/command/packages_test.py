"""How the command installs packages, and what it says when that fails."""

import os
import re
import shutil
import unittest

import checkout

USER = 65534  # an ordinary user
IS_ROOT = os.geteuid() == 0


class Packages(checkout.CheckoutTest):
    def setUp(self):
        super().setUp()
        self.uninstall()

    def assert_failed(self, outcome, *words):
        self.assertEqual(outcome.status, 2, outcome)
        self.assert_says(outcome, *words)
        self.assertEqual(outcome.errors.count("again"), 1 if "again" in words else 0, outcome)
        self.assertEqual(self.calls("cmake"), [])

    def as_user(self):
        """Calls are those of an ordinary user from now on."""
        if not IS_ROOT:
            return {}
        for folder in (self.checkout, self.state):
            for path in [folder, *folder.rglob("*")]:
                os.chown(path, USER, USER)
        return {"user": USER}

    def test_what_will_be_downloaded_is_said_first(self):
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.status, 0, outcome)
        lines = outcome.errors.splitlines()
        self.assertIn("missing packages:", lines[0])
        self.assertIn("qt6-base-dev", lines[0])
        self.assertIn("154 packages", lines[1])
        self.assertIn("322 MB to download", lines[1])
        self.assertIn("1,240 MB of disk space", lines[1])
        self.assertIn("downloading 0 %", lines[2])

    def test_progress_is_plain_lines_without_a_terminal(self):
        outcome = self.call("run", "script.py")
        self.assertNotIn("\r", outcome.errors)
        self.assertEqual(re.findall(r"downloading (\d+) %", outcome.errors), ["0", "25", "50", "75", "100"])
        self.assertEqual(re.findall(r"installing (\d+) %, libqt6core6", outcome.errors), ["0", "50", "100"])

    def test_progress_is_one_moving_line_on_a_terminal(self):
        status, shown = self.call_on_terminal("run", "script.py")
        self.assertEqual(status, 0, shown)
        self.assertIn("\rvantrel: downloading 75 %", shown)
        self.assertIn("\rvantrel: installing 50 %, libqt6core6", shown)
        self.assertRegex(shown, r"\rvantrel: building \[\d+/\d+\]")
        # What stays on the screen: the text after the last return of each line.
        for line in shown.replace("\r\n", "\n").split("\n"):
            self.assertNotRegex(line.split("\r")[-1], "downloading|installing [0-9]+ %,|building \\[")

    def test_missing_lists_are_fetched_first(self):
        self.clear("lists")
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.status, 0, outcome)
        self.assert_says(outcome, "fetching the package lists", "154 packages")

    def test_outdated_lists_are_fetched_again(self):
        self.set("stale")
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.status, 0, outcome)
        self.assert_says(outcome, "fetching the package lists")

    def test_only_what_is_missing_is_installed(self):
        self.uninstall("ninja-build")
        self.assertEqual(self.call("run", "script.py").status, 0)
        installs = [line for line in self.calls("apt-get") if "Status-Fd" in line]
        self.assertEqual(len(installs), 1)
        self.assertTrue(installs[0].endswith("--no-install-recommends ninja-build"), installs)

    def test_a_system_without_the_packages_is_refused(self):
        self.set("unknown")
        self.assert_failed(self.call("run", "script.py"), "does not offer qt6-base-dev", "Debian 12", "Ubuntu 24.04")

    def test_a_system_with_an_older_qt_is_refused_before_the_download(self):
        self.set("qt-version", "6.2.4+dfsg-2\n")
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.status, 2, outcome)
        self.assert_says(outcome, "Qt 6.2.4", "too old", "Debian 12")
        self.assert_nothing_done()

    def test_no_network_is_said(self):
        for lists in (True, False):
            self.set("no-network")
            self.set("lists") if lists else self.clear("lists")
            outcome = self.call("run", "script.py")
            tried = (self.state / "calls").read_text()
            self.assertNotIn(" install --assume-yes", tried, "the first file had already failed")
            self.assert_failed(outcome, "cannot be reached", "network", "again")
            self.assertNotIn("Debian 12", outcome.errors)
            self.assertLess(outcome.seconds, 10)
        self.clear("no-network")
        self.assertEqual(self.call("run", "script.py").status, 0)

    def test_a_server_is_given_up_after_seconds(self):
        self.call("run", "script.py")
        install = [line for line in self.calls("apt-get") if "Status-Fd" in line][0]
        self.assertLessEqual(int(re.search(r"Acquire::http::Timeout=(\d+)", install)[1]), 10)
        self.assertLessEqual(int(re.search(r"Acquire::Retries=(\d+)", install)[1]), 1)

    def test_a_full_disk_is_said(self):
        self.set("disk-full")
        self.assert_failed(self.call("run", "script.py"), "not enough disk space", "make room", "again")

    def test_another_failure_shows_what_apt_get_said(self):
        self.set("held")
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.errors.splitlines()[-2], "E: Unable to correct problems, you have held broken packages.")
        self.assert_failed(outcome, "apt-get could not install", "packages.log")

    def test_an_interrupted_installation_is_finished_first(self):
        self.set("interrupted")
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.status, 0, outcome)
        self.assert_says(outcome, "was interrupted; finishing it first")
        self.assertEqual(len(self.calls("dpkg --configure -a")), 1)

    def test_a_user_installs_with_sudo(self):
        user = self.as_user()
        outcome = self.call("run", "script.py", **user)
        self.assertEqual(outcome.status, 0, outcome)
        self.assertTrue([line for line in self.calls("sudo") if " install " in line])

    def test_a_wrong_password_is_said(self):
        user = self.as_user()
        self.set("wrong-password")
        outcome = self.call("run", "script.py", **user)
        self.assert_failed(outcome, "wrong password", "as root: apt-get install", "qt6-base-dev")

    def test_without_sudo_the_command_for_root_is_said(self):
        user = self.as_user()
        (self.bin / "sudo").unlink()
        if shutil.which("sudo", path="/usr/bin:/bin"):
            self.skipTest("this system has a sudo of its own")
        self.assert_failed(self.call("run", "script.py", **user), "as root: apt-get install", "qt6-base-dev")

    def test_an_interrupt_ends_the_installation_at_once(self):
        self.set("slow")
        process = self.start("run", "script.py")
        self.wait_for(lambda: (self.state / "started").exists())
        outcome = self.interrupt(process)
        self.assertEqual(outcome.status, 130, outcome)
        self.assertLess(outcome.seconds, 3)
        self.assert_says(outcome, "apt-get finishes in the background")
        self.clear("slow")
        self.assertEqual(self.call("run", "script.py").status, 0)


if __name__ == "__main__":
    unittest.main()
