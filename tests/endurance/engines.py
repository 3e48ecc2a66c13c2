"""The databases of the endurance tests: made, put back to how they were, and read whole. Needs Python alone."""

import hashlib
import os
import socket
import sqlite3
import struct
import time


class Fault(Exception):
    """What a test is there to find."""


def expect(condition, text):
    if not condition:
        raise Fault(text)


def digest(rows):
    return len(rows), hashlib.sha256("\n".join(sorted(map(repr, rows))).encode(errors="surrogatepass")).hexdigest()


def read_sqlite(path):
    """Everything that a database holds. Takes an unfinished transaction back, as every reader does."""
    database = sqlite3.connect(path, timeout=0)
    try:
        expect(database.execute("PRAGMA integrity_check").fetchone()[0] == "ok", f"{path} is corrupt")
        database.execute("BEGIN IMMEDIATE")  # nobody else holds a lock
        schema = sorted(map(str, database.execute("SELECT type, name, tbl_name, sql FROM sqlite_schema")))
        tables = database.execute("SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY 1").fetchall()
        return schema, {name: digest(database.execute(f'SELECT * FROM "{name}"').fetchall()) for name, in tables}
    finally:
        database.close()


class SQLite:
    """The database b.db of a folder, which the folder's own copy puts back."""
    name = "sqlite"

    def __init__(self, folder):
        self.url = "sqlite:b.db"
        self.path = os.path.join(folder, "b.db")

    def execute(self, statements):
        database = sqlite3.connect(self.path)
        database.executescript(statements)
        database.close()

    def insert(self, table, rows):
        database = sqlite3.connect(self.path)
        database.executemany(f"INSERT INTO {table} VALUES ({', '.join('?' * len(rows[0]))})", rows)
        database.commit()
        database.close()

    def keep(self):
        """What is there now is what reset gives back."""

    def reset(self):
        pass

    def state(self):
        return None  # a file of the folder

    def close(self):
        pass


class Session:
    """As much of the wire protocol as the tests need."""

    def __init__(self, url, database):
        authority = url.split("://")[1].split("/")[0]
        self.user, address = authority.split("@")
        host, port = address.split(":")
        self.socket = socket.create_connection((host, int(port)))
        self.stream = self.socket.makefile("rb")
        start = struct.pack("!i", 196608) + f"user\0{self.user}\0database\0{database}\0\0".encode()
        self.socket.sendall(struct.pack("!i", len(start) + 4) + start)
        self.answer()

    def answer(self):
        rows, error = [], None
        while True:
            kind, length = struct.unpack("!ci", self.stream.read(5))
            data = self.stream.read(length - 4)
            if kind == b"E":
                error = next(part[1:] for part in data.split(b"\0") if part.startswith(b"M")).decode()
            elif kind == b"D":
                rows.append(self.cells(data))
            elif kind == b"Z":
                if error:
                    raise RuntimeError(error)
                return rows

    @staticmethod
    def cells(data):
        at, cells = 2, []
        for _ in range(struct.unpack_from("!h", data)[0]):
            length, = struct.unpack_from("!i", data, at)
            cells.append(None if length < 0 else data[at + 4:at + 4 + length].decode())
            at += 4 + max(length, 0)
        return tuple(cells)

    def run(self, statements):
        text = statements.encode() + b"\0"
        self.socket.sendall(b"Q" + struct.pack("!i", len(text) + 4) + text)
        return self.answer()

    def close(self):
        self.stream.close()
        self.socket.close()


def literal(value):
    return str(value) if isinstance(value, int) else "'" + value.replace("'", "''") + "'"


EVERYTHING = """
WITH of_us AS (SELECT oid, relname, relkind FROM pg_class WHERE relnamespace = 'public'::regnamespace)
SELECT 'column', concat(relname, '.', attname), concat(format_type(atttypid, atttypmod), attnotnull, attidentity,
       (SELECT pg_get_expr(adbin, adrelid) FROM pg_attrdef WHERE adrelid = attrelid AND adnum = attnum))
  FROM of_us JOIN pg_attribute ON attrelid = oid WHERE attnum > 0 AND relkind IN ('r', 'v')
UNION ALL SELECT 'constraint', concat(relname, '.', conname), pg_get_constraintdef(c.oid)
  FROM of_us JOIN pg_constraint c ON conrelid = of_us.oid
UNION ALL SELECT 'index', relname::text, pg_get_indexdef(oid) FROM of_us WHERE relkind = 'i'
UNION ALL SELECT 'view', relname, pg_get_viewdef(oid) FROM of_us WHERE relkind = 'v'
UNION ALL SELECT 'trigger', relname, concat(pg_get_triggerdef(t.oid), tgenabled)
  FROM of_us JOIN pg_trigger t ON tgrelid = of_us.oid WHERE NOT tgisinternal
UNION ALL SELECT 'routine', oid::regprocedure::text, pg_get_functiondef(oid)
  FROM pg_proc WHERE pronamespace = 'public'::regnamespace
UNION ALL SELECT 'rows', relname, query_to_xml(format(
    'SELECT count(*), md5(string_agg(T::text, chr(10) ORDER BY T::text)) FROM %s T', oid::regclass), true, true, '')::text
  FROM of_us WHERE relkind = 'r'
UNION ALL SELECT 'counter', relname, query_to_xml(format(
    'SELECT CASE WHEN is_called THEN last_value ELSE last_value - 1 END FROM %s', oid::regclass), true, true, '')::text
  FROM of_us WHERE relkind = 'S'
ORDER BY 1, 2, 3
"""


class PostgreSQL:
    """A database of a server that runs already, and the copy that puts it back."""
    name = "postgresql"

    def __init__(self, server, name):
        self.server, self.database, self.kept = server, name, f"{name}_kept"
        self.url = server.rsplit("/", 1)[0] + "/" + name
        self.main = Session(server, "postgres")
        self.drop(self.database)
        self.main.run(f"CREATE DATABASE {self.database}")

    def drop(self, name):
        self.main.run(f"DROP DATABASE IF EXISTS {name} WITH (FORCE)")

    def run(self, statements):
        session = Session(self.server, self.database)
        try:
            return session.run(statements)
        finally:
            session.close()

    def execute(self, statements):
        self.run(statements)

    def insert(self, table, rows):
        for first in range(0, len(rows), 1000):
            values = ", ".join("(" + ", ".join(map(literal, row)) + ")" for row in rows[first:first + 1000])
            self.run(f"INSERT INTO {table} VALUES {values}")

    def await_end(self):
        """The server notices that a client is gone when it next turns to it."""
        until = time.monotonic() + 10
        while self.main.run(f"SELECT 1 FROM pg_stat_activity WHERE datname = '{self.database}'"):
            expect(time.monotonic() < until, "a session of the command still goes on in the server")
            time.sleep(0.002)

    def keep(self):
        self.await_end()
        self.drop(self.kept)
        self.main.run(f"CREATE DATABASE {self.kept} TEMPLATE {self.database}")
        self.before = self.state()

    def copy_of(self, other):
        """The same content as another one of this server."""
        self.kept, self.before = other.kept, other.before
        return self

    def reset(self):
        if self.state() != self.before:
            self.drop(self.database)
            self.main.run(f"CREATE DATABASE {self.database} TEMPLATE {self.kept}")

    def state(self):
        self.await_end()
        return self.run(EVERYTHING)

    def close(self):
        self.drop(self.database)
        if self.kept.startswith(self.database):
            self.drop(self.kept)
        self.main.close()
