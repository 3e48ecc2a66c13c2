"""Export and import of a table of a PostgreSQL server, against \\copy of its own shell. For table-data.

Half of the work is done by the server, which is another process: quoted are wall times, and beside them the processor
times of both. The server is a private one that does not wait for the disk, so that the machine is measured and not its
storage.
"""

import os
import statistics
import subprocess
import sys
import tempfile
import time
from collections import defaultdict
from pathlib import Path

from measuring import ROOT, in_turn, run

SERVER = ROOT / "scripts/postgresql-server"
# Nothing happens in the background while a run is measured.
SETTINGS = ("shared_buffers=256MB", "max_wal_size=8GB", "checkpoint_timeout=1h", "autovacuum=off")

TABLE = """CREATE TABLE t (id integer PRIMARY KEY, name text, city text, price numeric(10,2), weight double precision,
    created timestamp, active boolean, payload bytea);
INSERT INTO t SELECT i, 'Customer number ' || i,
    CASE i % 4 WHEN 0 THEN 'Москва' WHEN 1 THEN 'Berlin | Mitte' WHEN 3 THEN 'New York #5' END, (i % 100000) * 0.25,
    i / 7.0, timestamp '2020-09-13 12:26:40' + i * interval '61 s', i % 2 = 1, substr(sha224(i::text::bytea), 1, 12)
FROM generate_series(1, {rows}) AS i;
VACUUM (FREEZE, ANALYZE) t;"""


class Backends:
    """The processor time of the server's processes that have ended: those of connections, since nothing else ends."""

    def __init__(self, background_process):
        self.server = self.stat(background_process)[1]
        self.others = self.children()

    @staticmethod
    def stat(process):
        return Path(f"/proc/{process}/stat").read_text(encoding="utf-8").rpartition(") ")[2].split()

    def children(self):
        return set(Path(f"/proc/{self.server}/task/{self.server}/children").read_text(encoding="utf-8").split())

    def seconds(self):
        while self.children() - self.others:
            time.sleep(0.01)
        user, system = self.stat(self.server)[13:15]
        return (int(user) + int(system)) / os.sysconf("SC_CLK_TCK")


class ServerTable:
    def __init__(self, url, rows, command, folder):
        self.url, self.rows, self.command, self.folder = url, rows, command, Path(folder)
        self.sql(TABLE.format(rows=rows))
        self.backends = Backends(self.sql("SELECT pid FROM pg_stat_activity WHERE backend_type = 'checkpointer'").strip())
        self.server_seconds = defaultdict(list)

    def sql(self, statements):
        return subprocess.run(["psql", "-XqAt", "-v", "ON_ERROR_STOP=1", self.url], input=statements, text=True,
                              capture_output=True, check=True).stdout

    def run(self, name, command):
        before = self.backends.seconds()
        usage = run(command, self.folder)
        self.server_seconds[name].append(self.backends.seconds() - before)
        return usage

    def ours(self, *words):
        return self.run("our " + words[0], [self.command, *words, "-d", self.url, "--progress", "none"])

    def theirs(self, name, words):
        return self.run("their " + name, ["psql", "-Xq", self.url, "-c", "\\copy " + words])

    def export_ours(self):
        (self.folder / "rows.eif").unlink(missing_ok=True)
        return self.ours("export", "table", "-t", "t", "-o", "rows.eif")

    def export_theirs(self):
        return self.theirs("export", "t to rows.copy")

    def empty(self, table):
        self.sql(f"DROP TABLE IF EXISTS {table}; CREATE TABLE {table} (LIKE t INCLUDING ALL); CHECKPOINT;")

    def import_ours(self):
        self.empty("ours")
        return self.ours("import", "table", "-t", "ours", "-i", "rows.eif")

    def import_theirs(self):
        self.empty("theirs")
        return self.theirs("import", "theirs from rows.copy")

    def check(self):
        found = self.sql("SELECT count(*) FROM ours; SELECT count(*) FROM theirs; SELECT count(*) FROM "
                         "((TABLE t EXCEPT TABLE ours) UNION ALL (TABLE ours EXCEPT TABLE t)) AS differing").split()
        if found != [str(self.rows), str(self.rows), "0"]:
            sys.exit(f"the imported rows differ from the exported ones: {found}")


def row(name, table, ours, theirs, ratio):
    def words(usage, server):
        # The first run of each does not count.
        return (f"{usage.wall:6.2f} s wall {usage.cpu:6.2f} s cpu {statistics.median(server[1:]):6.2f} s cpu of the server "
                f"{usage.peak:5.1f} MiB")

    server = table.server_seconds
    print(f"  {name}  velkrund {words(ours, server['our ' + name])}   psql {words(theirs, server['their ' + name])}   "
          f"ratio {ratio:.2f}", flush=True)


def measure(rows, options, limits):
    with tempfile.TemporaryDirectory() as folder:
        server = Path(folder) / "server"
        start = subprocess.run([SERVER, "start", server, *SETTINGS], capture_output=True, text=True, check=True)
        try:
            table = ServerTable(start.stdout.strip(), rows, options.build / "velkrund", folder)
            print(f"mixed: {rows} rows, {options.runs} runs of each in turn", flush=True)
            out = in_turn(table.export_ours, table.export_theirs, options.runs, lambda usage: usage.wall)
            back = in_turn(table.import_ours, table.import_theirs, options.runs, lambda usage: usage.wall)
            table.check()
        finally:
            subprocess.run([SERVER, "stop", server], check=False)
    row("export", table, *out)
    row("import", table, *back)
    limits.check("export", out[2], options.max_export)
    limits.check("import", back[2], options.max_import)
    limits.check("peak memory", max(out[0].peak, back[0].peak), options.max_memory)
