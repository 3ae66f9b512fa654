"""What the system counts of processes: processor time, wake-ups, memory; how busy others are."""

import ctypes
import os
import time

TICKS = os.sysconf("SC_CLK_TCK")
PR_SET_CHILD_SUBREAPER = 36
KERNEL = 2  # the parent of the kernel's threads; has no parent, unlike a 2 in a container


def adopt_orphans():
    """Makes processes that lose their parent children of this one, so that they are counted."""
    if ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "orphans cannot be adopted")


def _read(path):
    try:
        with open(path, "rb") as file:
            return file.read()
    except OSError:  # ended in the meantime
        return b""


def all_pids():
    return [int(name) for name in os.listdir("/proc") if name.isdigit()]


def stat_fields(pid):
    """The fields of /proc/PID/stat after the name; empty if the process has ended."""
    return _read(f"/proc/{pid}/stat").rpartition(b") ")[2].split()


def with_home(home):
    """Processes that a user with this home runs, zombies excluded."""
    key = b"HOME=" + home.encode()
    return [pid for pid in all_pids()
            if key in _read(f"/proc/{pid}/environ").split(b"\0") and
            stat_fields(pid)[:1] not in ([], [b"Z"])]


def processor_seconds(pids):
    """User and system time of these processes and of their children that have ended."""
    return sum(sum(map(int, stat_fields(pid)[11:15])) for pid in pids) / TICKS


class WakeUps:
    """Voluntary context switches of all threads; sampled often, since a thread's count ends with
    it."""

    def __init__(self):
        self.before = {}
        self.count = 0
        self.begun = False

    def sample(self, pids):
        for pid in pids:
            try:
                threads = os.listdir(f"/proc/{pid}/task")
            except OSError:
                continue
            for thread in threads:
                for line in _read(f"/proc/{pid}/task/{thread}/status").splitlines():
                    if line.startswith(b"voluntary_ctxt_switches:"):
                        self._add((pid, thread), int(line.split()[1]))
        self.begun = True

    def _add(self, thread, count):
        # A thread that did not exist at the first sample began at zero.
        before = self.before.get(thread, 0 if self.begun else count)
        self.count += max(0, count - before)
        self.before[thread] = count


def memory(pids):
    """Resident and private MiB of these processes together."""
    resident = private = 0
    for pid in pids:
        for line in _read(f"/proc/{pid}/smaps_rollup").splitlines():
            words = line.split()
            if words[0] == b"Rss:":
                resident += int(words[1])
            elif words[0] in (b"Private_Clean:", b"Private_Dirty:"):
                private += int(words[1])
    return resident / 1024, private / 1024


def busy_of_machine(text):
    """Seconds of all cores that were not idle, from the text of /proc/stat. Time that a virtual
    machine's host took away counts as busy."""
    fields = map(int, text.split(b"\n")[0].split()[1:9])
    user, nice, system, _idle, _wait, irq, soft, stolen = fields
    return (user + nice + system + irq + soft + stolen) / TICKS


def descendants(pid, parents):
    """`pid` and all below it; `parents`: the parent of each process."""
    children = {}
    for child, parent in parents.items():
        children.setdefault(parent, []).append(child)
    found = [pid]
    for each in found:
        found.extend(children.get(each, []))
    return found


class Others:
    """How much processor time others than this script and its programs take."""

    def __init__(self):
        self.before = self._now()

    @staticmethod
    def _now():
        parents = {}
        for pid in all_pids():
            fields = stat_fields(pid)
            if len(fields) > 1:
                parents[pid] = int(fields[1])
        # The kernel's own threads mostly write what the programs have written to their files.
        kernel = descendants(KERNEL, parents) if parents.get(KERNEL) == 0 else []
        own = processor_seconds({*descendants(os.getpid(), parents), *kernel})
        return time.monotonic(), busy_of_machine(_read("/proc/stat")) - own

    def taken(self):
        """Seconds of the cores that others took since the last call, and seconds of the clock. The
        system counts in hundredths of a second, so over a short time the first may be below 0."""
        begin, busy = self.before
        self.before = self._now()
        return self.before[1] - busy, self.before[0] - begin

    def share(self):
        """Cores that others kept busy since the last call, for example 0.05."""
        return share_of([self.taken()])


def share_of(parts):
    """Cores that others kept busy in several times, each as Others.taken() gives it."""
    busy, seconds = (sum(column) for column in zip(*parts))
    return max(0.0, busy / seconds) if seconds > 0 else 0.0
