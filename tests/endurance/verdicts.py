"""What a job does undisturbed, and whether what a disturbed run has left is all right. Needs Python alone."""

import re
import time

import scenes
from engines import expect

CANCELLED = 3  # the exit code
BOM = b"\xef\xbb\xbf"
END = b"\r\n[END]\r\n"
UNFINISHED = b";SECTION]"


class Case:
    """One job on one engine: what it does undisturbed, and what it may leave when it is disturbed."""

    def __init__(self, command, place, job):
        self.command, self.job, self.engine = command, job, place.engine.name
        place.reset()
        self.before = place.state()
        began = time.monotonic()
        self.output = shown(scenes.run(command, place.line(job), place.folder, place.temporary), place)
        self.takes = time.monotonic() - began
        self.after = place.state()
        self.code_again = scenes.finish(command, place.line(job), place.folder, place.temporary)[0]
        self.again = place.state()
        expect((self.before == self.after) == job.reads, f"{self}: whether it writes is not what its row says")

    def __str__(self):
        return f"{self.engine}: {self.job.name}"

    def judge(self, place, code, output, unlinks=True):
        """Raises what is wrong with what a run has left. Unlinks: files could be taken away as far as it knows."""
        killed = code < 0
        if code != 0 and place.is_untouched():
            return
        now = place.state()
        if code == 0:
            expect(now == self.after, f"all is well, it says, and {differences(now, self.after)}")
            said = self.job.warns and b"\nwarning: " in output
            expect(shown(output, place) == self.output or said, "all is well, it says, and a part of its output is missing")
        else:
            expect(self.is_allowed(now, killed), f"neither old nor new: {differences(now, self.before)}")
            if code == CANCELLED and not self.job.adds:
                expect(now == self.before, "it was cancelled, it says, and it is done")
        self.judge_left(place, now, killed, unlinks)
        self.judge_next(place, now)

    def judge_left(self, place, now, killed, unlinks):
        names = set(self.before) | set(self.after) | set(self.job.early)
        left = [name for name in now if name not in names]
        # The engine takes the names of its temporary files away at once, but not in the same moment.
        beside = [name for name in place.temporary_files() if not (killed and name.startswith("etilqs_"))]
        if killed:
            expect(len(left) + len(beside) <= 1, f"left over: {left + beside}")
        elif unlinks:
            journals = [name for name in scenes.files(place.folder) if name.endswith(scenes.AFTERWARDS)]
            expect(not left + beside + journals, f"left over: {left + beside + journals}")

    def judge_next(self, place, now):
        found_done = now == self.after
        code, _, errors = scenes.finish(self.command, place.line(self.job), place.folder, place.temporary)
        expect(code == (self.code_again if found_done else 0), f"the next run ends with {code}: {errors[-600:]}")
        last, wanted = place.state(), self.again if found_done else self.after
        expect(last == wanted, f"after the next run {differences(last, wanted)}")
        beside = [name for name in place.temporary_files() if not name.startswith("etilqs_")]
        expect(not beside, f"the next run leaves {beside}")

    def is_allowed(self, now, killed):
        """Each file and database as before or as after, but all alike; of a file with sections each of these."""
        if killed:  # a database that is to be made is empty until its first transaction is committed
            now = {name: kept for name, kept in now.items() if kept != ([], {}) or name in self.before}
        adds = self.job.adds
        own = [name for name in set(self.before) | set(self.after) if name != adds and name not in self.job.early]
        if adds == "*":
            return all(now.get(name) in (self.before.get(name), self.after[name]) for name in self.after)
        if not any(all(now.get(name) == kept.get(name) for name in own) for kept in (self.before, self.after)):
            return False
        return not adds or self.is_part(now.get(adds), killed)

    def is_part(self, now, killed):
        """Whether each section is the old one or the new one, and at most a tail behind them that no reader minds."""
        if now is None:
            return self.job.adds not in self.before
        found, tail = sections(now)
        if found is None or (tail and not (killed and tail[:len(UNFINISHED)] == UNFINISHED[:len(tail)])):
            return False
        before, after = (sections(kept.get(self.job.adds, b""))[0] for kept in (self.before, self.after))
        return all(found.get(name) in (before.get(name), after.get(name)) for name in {**found, **before, **after})


def shown(output, place):
    """What is printed, without the name of the database, which is another one in every place."""
    return output.replace(place.engine.url.encode(), b"DB")


def sections(content):
    """The whole sections by name and type, nothing where one is damaged or there twice; and what stands behind them."""
    first, *parts = re.split(rb"(?<=\n)(?=\[SECTION\]\r\n)", b"\r\n" + content.removeprefix(BOM))
    found, rest = {}, first.strip(b"\r\n")
    for part in parts:
        section, end, behind = part.partition(END)
        name = tuple(line for line in section.split(b"\r\n") if line.startswith((b"Name = ", b"Type = ")))
        if rest or not end or name in found:
            return None, b""
        found[name], rest = section, behind.strip(b"\r\n")
    return found, rest


def differences(now, then):
    return ", ".join(f"{name or 'the database'} differs" for name in sorted(set(now) | set(then))
                     if now.get(name) != then.get(name)) or "nothing differs"
