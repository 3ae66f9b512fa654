"""What is counted of processes."""

import os
import subprocess
import sys
import tempfile
import threading
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..",
                                "benchmarks", "peers"))

import processes  # noqa: E402

PATIENCE = 60


def until(condition):
    deadline = time.monotonic() + PATIENCE
    while not condition() and time.monotonic() < deadline:
        time.sleep(0.01)
    return condition()


class Child:
    """A Python program of one line with a home of its own, which ends with its input."""

    def __init__(self, line, home="/nonexistent"):
        self.process = subprocess.Popen([sys.executable, "-c", line], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, env={**os.environ, "HOME": home})
        self.pid = self.process.pid

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.communicate()


WAIT = "import sys; print(1, flush=True); sys.stdin.read()"


class ProcessesTest(unittest.TestCase):
    def test_processes_are_found_by_their_home(self):
        with tempfile.TemporaryDirectory() as home, Child(WAIT, home) as child, Child(WAIT):
            child.process.stdout.readline()
            self.assertEqual(processes.with_home(home), [child.pid])

    def test_ended_processes_are_not_found(self):
        with tempfile.TemporaryDirectory() as home, Child("pass", home):
            self.assertTrue(until(lambda: not processes.with_home(home)))

    def test_processor_time_includes_children_that_have_ended(self):
        burn = "import time\nwhile time.process_time() < 0.3: pass"
        line = f"import subprocess, sys; subprocess.run([sys.executable, '-c', {burn!r}]); " + WAIT
        with Child(line) as child:
            child.process.stdout.readline()
            self.assertGreaterEqual(processes.processor_seconds([child.pid]), 0.25)

    def test_processor_time_of_an_ended_process_is_none(self):
        self.assertEqual(processes.processor_seconds([2 ** 22 + 1]), 0)

    def test_memory_grows_with_what_a_process_fills(self):
        with Child(WAIT) as small, Child("x = b'1' * (64 << 20); " + WAIT) as large:
            small.process.stdout.readline()
            large.process.stdout.readline()
            for before, after in zip(processes.memory([small.pid]), processes.memory([large.pid])):
                self.assertAlmostEqual(after - before, 64, delta=4)
            both = processes.memory([small.pid, large.pid])
            self.assertGreater(both[1], processes.memory([large.pid])[1])

    def test_descendants_are_found_through_all_generations(self):
        parents = {2: 1, 3: 2, 4: 2, 5: 4, 6: 1}
        self.assertEqual(sorted(processes.descendants(2, parents)), [2, 3, 4, 5])

    def test_time_that_a_host_takes_away_counts_as_busy_and_idle_and_waiting_do_not(self):
        text = b"cpu  1 2 4 1000 2000 8 16 32 64 128\ncpu0 1 1 1 1 1 1 1 1 0 0\n"
        self.assertEqual(processes.busy_of_machine(text) * processes.TICKS, 63)


class WakeUpsTest(unittest.TestCase):
    def test_every_wait_of_a_thread_counts(self):
        line = "import sys, time\nfor _ in range(50): time.sleep(0.001)\n" + WAIT
        with Child("import sys; sys.stdin.readline()\n" + line) as child:
            wakes = processes.WakeUps()
            self.assertTrue(until(lambda: processes.stat_fields(child.pid)[:1] == [b"S"]))
            wakes.sample([child.pid])
            self.assertEqual(wakes.count, 0)
            child.process.stdin.write(b"\n")
            child.process.stdin.flush()
            child.process.stdout.readline()
            wakes.sample([child.pid])
            self.assertGreaterEqual(wakes.count, 50)

    def test_a_thread_that_began_meanwhile_counts_from_zero(self):
        wakes = processes.WakeUps()
        wakes.sample([os.getpid()])
        asleep, done = threading.Event(), threading.Event()

        def work():
            for _ in range(30):
                time.sleep(0.001)
            asleep.set()
            done.wait()
        thread = threading.Thread(target=work)
        thread.start()
        asleep.wait()
        wakes.sample([os.getpid()])
        done.set()
        thread.join()
        self.assertGreaterEqual(wakes.count, 30)

    def test_an_ended_process_counts_nothing(self):
        wakes = processes.WakeUps()
        wakes.sample([2 ** 22 + 1])
        self.assertEqual(wakes.count, 0)


class OthersTest(unittest.TestCase):
    def test_own_work_is_not_that_of_others(self):
        def busy(seconds):
            others = processes.Others()
            begin = time.monotonic()
            while time.process_time() < seconds:
                pass
            taken = time.monotonic() - begin
            return others.share(), taken
        # Whatever else the machine does, it cannot do more than its cores less this one.
        used = time.process_time()
        share, taken = busy(used + 0.5)
        self.assertLess(share * taken, (os.cpu_count() * taken - 0.5) + 0.2)

    def test_what_others_took_is_averaged_over_several_times(self):
        self.assertAlmostEqual(processes.share_of([(0.01, 0.05), (-0.01, 0.05), (0.1, 0.9)]), 0.1)
        self.assertEqual(processes.share_of([(-0.01, 0.1)]), 0)
        self.assertEqual(processes.share_of([(0, 0)]), 0)


if __name__ == "__main__":
    unittest.main()
