"""Export and import of a table of a PostgreSQL server, against \\copy of its own shell. For table-data.

Half of the work is done by the server, which is another process: quoted are wall times. The server is a private one
that does not wait for the disk, so that the machine is measured and not its storage.
"""

import subprocess
import sys
import tempfile
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


class ServerTable:
    def __init__(self, url, rows, command, folder):
        self.url, self.rows, self.command, self.folder = url, rows, command, Path(folder)
        self.sql(TABLE.format(rows=rows))

    def sql(self, statements):
        return subprocess.run(["psql", "-XqAt", "-v", "ON_ERROR_STOP=1", self.url], input=statements, text=True,
                              capture_output=True, check=True).stdout

    def ours(self, *words):
        return run([self.command, *words, "-d", self.url, "--progress", "none"], self.folder)

    def theirs(self, words):
        return run(["psql", "-Xq", self.url, "-c", "\\copy " + words], self.folder)

    def export_ours(self):
        (self.folder / "rows.eif").unlink(missing_ok=True)
        return self.ours("export", "table", "-t", "t", "-o", "rows.eif")

    def export_theirs(self):
        return self.theirs("t to rows.copy")

    def empty(self, table):
        self.sql(f"DROP TABLE IF EXISTS {table}; CREATE TABLE {table} (LIKE t INCLUDING ALL); CHECKPOINT;")

    def import_ours(self):
        self.empty("ours")
        return self.ours("import", "table", "-t", "ours", "-i", "rows.eif")

    def import_theirs(self):
        self.empty("theirs")
        return self.theirs("theirs from rows.copy")

    def check(self):
        found = self.sql("SELECT count(*) FROM ours; SELECT count(*) FROM theirs; SELECT count(*) FROM "
                         "((TABLE t EXCEPT TABLE ours) UNION ALL (TABLE ours EXCEPT TABLE t)) AS differing").split()
        if found != [str(self.rows), str(self.rows), "0"]:
            sys.exit(f"the imported rows differ from the exported ones: {found}")


def row(name, ours, theirs, ratio):
    print(f"  {name}  velkrund {ours.wall:6.2f} s wall {ours.cpu:6.2f} s cpu {ours.peak:5.1f} MiB   "
          f"psql {theirs.wall:6.2f} s wall {theirs.cpu:6.2f} s cpu {theirs.peak:5.1f} MiB   ratio {ratio:.2f}", flush=True)


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
    row("export", *out)
    row("import", *back)
    limits.check("export", out[2], options.max_export)
    limits.check("import", back[2], options.max_import)
    limits.check("peak memory", max(out[0].peak, back[0].peak), options.max_memory)
