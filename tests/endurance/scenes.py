"""What the endurance tests run: a job for every command that writes, and the scene that it runs in. Needs Python alone."""

import dataclasses
import os
import queue
import random
import shutil
import sqlite3
import subprocess

import engines
from engines import Fault, expect

BEFORE_ROWS = 40
SECONDS = 120  # more is a hang
PRELOAD = ""  # that is loaded before the others; it spares the disk
AFTERWARDS = ("-journal", "-wal", "-shm")  # what SQLite keeps beside a database until the next one opens it
ENGINES = ("sqlite", "postgresql")
IMPORTS = ["--overwrite", "yes", "--replace"]


@dataclasses.dataclass
class Job:
    """A command line. {db} is the database of the engine; everything else lies in the scene's folder."""
    arguments: str
    more: tuple = ()  # arguments with blanks
    engines: tuple = ENGINES
    adds: str = ""  # the file that gets sections, each of which may be old or new when the run has not ended well; "*": files
    reads: bool = False  # changes nothing
    warns: bool = False  # says in its output what it could not find out
    early: tuple = ()  # files that are made before the file that they belong to is changed

    @property
    def command(self):
        return " ".join(self.arguments.split()[:2])

    @property
    def name(self):
        return " ".join([self.arguments.replace("{db}", "DB"), *self.more])

    def line(self, url):
        return [word.replace("{db}", url) for word in self.arguments.split()] + list(self.more)


FILE = ("sqlite",)  # does not touch the database

JOBS = [
    Job("export table -d {db} -t kept -t parents -o F --overwrite yes", adds="F"),
    Job("export table -d {db} -t A -t children -o F --overwrite yes", adds="F"),
    Job("export table -d {db} -t A -o F --new"),
    Job("export table -d {db} --all --structures -o made --overwrite yes", adds="made"),
    Job("export structure -d {db} --all -o F --overwrite yes", adds="F"),
    Job("export query -d {db} -o F --section A --overwrite yes --sql", ("SELECT ID, V FROM A ORDER BY ID",), adds="F"),
    Job("export generator -d {db} --all -o F --overwrite yes", adds="F"),
    Job("export resource -d {db} --all -o T --overwrite yes", adds="T"),
    Job("export resource -d {db} --all --folder folder --overwrite yes", adds="*"),
    Job("export single-resources -d {db} --language A --section-id K0 --section-ids K0,K1 -o F --overwrite yes", adds="F"),
    Job("export language -d {db} --folder folder --overwrite yes"),
    Job("export xml -d {db} --all -o made.xml --overwrite yes"),
    Job("import table -d {db} -i F --section A --replace"),
    Job("import table -d {db} -i R --replace"),
    Job("import structure -d {db} -i S --overwrite yes"),
    Job("import structure -d {db} -i S --merge difference"),
    Job("import query -d {db} -i Q --target A --replace"),
    Job("import generator -d {db} -i G --set-generators"),
    Job("import resource -d {db} -i T --add-languages --overwrite yes"),
    Job("import language -d {db} -i L --overwrite yes"),
    Job("import file -d {db} -i D --create-tables yes --overwrite yes --replace"),
    Job("import file -d sqlite:made.db -i D --create --create-tables yes --overwrite yes --replace", engines=FILE),
    Job("copy table --from sqlite:a.db --to {db} -t A --replace"),
    Job("copy table --from {db} --to sqlite:a.db -t A --update"),
    Job("copy table --from {db} --to {db} -t A --to-table B --replace"),
    Job("copy resource --from sqlite:a.db --to {db} --all --overwrite yes"),
    Job("copy language --from sqlite:a.db --to {db} --overwrite yes"),
    Job("delete resource -d {db} --section-ids K0,K1 --yes"),
    Job("delete section -d {db} --section-ids K2 --yes"),
    Job("delete string -d {db} K2_Name0 --yes"),
    Job("recreate table -d {db} W --map v=TEXT --missing-fields skip --overwrite yes"),
    Job("recreate view -d {db} OF_A --overwrite yes"),
    Job("recreate generator -d {db} COUNTER --start-value 77 --overwrite yes"),
    Job("recreate procedure -d {db} HALVE --overwrite yes"),
    Job("dictionary drop -d {db} --name W --yes"),
    Job("dictionary adopt -d {db} --all --overwrite yes"),
    Job("languages add -d {db} C --english Third"),
    Job("languages remove -d {db} B --yes"),
    Job("resources set -d {db} K0_Name1 A", ("another text",)),
    Job("resources import-po -d {db} -i P.po --overwrite yes"),
    Job("resources export-po -d {db} --all --source-language A --language B -o made.po --overwrite yes"),
    Job("file remove F --name A", engines=FILE),
    Job("file repair torn", engines=FILE, early=("torn.cut",)),
    Job("database run-procedure -d {db} HALVE"),

    Job("export table -d {db} -t A -o -", reads=True),
    Job("dictionary list -d {db}", reads=True),
    Job("dictionary show -d {db} --name W", reads=True),
    Job("dictionary script -d {db} --engine postgresql --name A", reads=True),
    Job("languages list -d {db}", reads=True),
    Job("resources list -d {db}", reads=True),
    Job("resources get -d {db} K0_Name1", reads=True),
    Job("file list F", engines=FILE, reads=True),
    Job("file check F T S R", engines=FILE, reads=True),
    Job("database info -d {db}", reads=True, warns=True),
]

TABLES = """
CREATE TABLE A (ID INTEGER PRIMARY KEY, V VARCHAR(400));
CREATE TABLE B (ID INTEGER PRIMARY KEY, V VARCHAR(400));
CREATE TABLE children (ID INTEGER PRIMARY KEY, PARENT INTEGER, V VARCHAR(400));
CREATE TABLE parents (ID INTEGER PRIMARY KEY, FIRST INTEGER);
CREATE TABLE kept (ID INTEGER PRIMARY KEY, PARENT INTEGER);
CREATE INDEX kept_by_parent ON kept (PARENT);
CREATE VIEW OF_A AS SELECT count(*) AS N FROM A;
"""
# A circle of keys, and a trigger that takes rows away.
RELATED = {
    "sqlite": TABLES.replace("FIRST INTEGER", "FIRST INTEGER REFERENCES children (ID)")
    .replace("PARENT INTEGER, V", "PARENT INTEGER REFERENCES parents (ID), V") +
    "CREATE TRIGGER with_parent AFTER DELETE ON parents BEGIN DELETE FROM kept WHERE PARENT = OLD.ID; END;",
    "postgresql": TABLES + """
ALTER TABLE parents ADD FOREIGN KEY (FIRST) REFERENCES children (ID) DEFERRABLE;
ALTER TABLE children ADD FOREIGN KEY (PARENT) REFERENCES parents (ID) DEFERRABLE;
CREATE FUNCTION with_parent() RETURNS trigger LANGUAGE plpgsql AS
  'BEGIN DELETE FROM kept WHERE PARENT = OLD.ID; RETURN OLD; END';
CREATE TRIGGER with_parent AFTER DELETE ON parents FOR EACH ROW EXECUTE FUNCTION with_parent();
CREATE SEQUENCE counter;
CREATE PROCEDURE halve() LANGUAGE sql AS 'UPDATE A SET V = ''kept''; DELETE FROM A WHERE ID % 2 = 1';
"""}
# The platform keeps generators and procedures in tables of its own where the engine has none.
STORED = """
CREATE TABLE velkrund_procedures (name_key TEXT NOT NULL, name TEXT NOT NULL, kind INTEGER NOT NULL,
                                  parameters TEXT NOT NULL, body TEXT NOT NULL, PRIMARY KEY (name_key));
INSERT INTO velkrund_procedures VALUES ('halve', 'HALVE', 73, '', 'UPDATE A SET V = ''kept''; DELETE FROM A WHERE ID % 2');
"""
# A table and a view whose structures say something else.
DESCRIBED = {
    "sqlite": "CREATE TABLE W (ID INTEGER PRIMARY KEY AUTOINCREMENT, TEXT VARCHAR(99) NOT NULL, NEW INTEGER NOT NULL DEFAULT 7);",
    "postgresql": "CREATE TABLE W (ID INTEGER GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY, TEXT VARCHAR(99) NOT NULL, "
                  "NEW INTEGER NOT NULL DEFAULT 7);"}
AROUND = "CREATE INDEX W_INDEX ON W (ID); CREATE VIEW OF_W AS SELECT count(*) AS N, sum(ID) AS S FROM W;"
OUTGROWN = {
    "sqlite": "CREATE TABLE W (ID INTEGER PRIMARY KEY AUTOINCREMENT, V TEXT, GONE TEXT);",
    "postgresql": "CREATE TABLE W (ID INTEGER GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY, V TEXT, GONE TEXT);"}


class Scene:
    """The template of one engine: a folder, and the database that the engine keeps elsewhere."""

    def __init__(self, command, root, engine, rows):
        self.command, self.rows = command, rows
        self.folder = os.path.join(root, "template")
        self.temporary = os.path.join(root, "temporary")
        os.makedirs(self.folder)
        os.mkdir(self.temporary)
        self.engine = engine if engine else engines.SQLite(self.folder)
        self.fill_source()
        self.fill_target()
        self.write_files()
        os.mkdir(os.path.join(self.folder, "folder"))
        self.engine.keep()

    def path(self, name):
        return os.path.join(self.folder, name)

    def run(self, line, *more):
        run(self.command, line.split() + list(more), self.folder, self.temporary)

    def fill_source(self):
        self.write_texts("T", "", 4)
        database = sqlite3.connect(self.path("a.db"))
        database.executescript(RELATED["sqlite"] + "CREATE TABLE N (ID INTEGER PRIMARY KEY AUTOINCREMENT);"
                               "CREATE TABLE M (ID INTEGER PRIMARY KEY, V TEXT NOT NULL, P INTEGER REFERENCES N (ID));"
                               "CREATE INDEX M_BY_V ON M (V);")
        database.executemany("INSERT INTO A VALUES (?, ?)", ((i, f"source {i} " * 10) for i in range(self.rows)))
        database.executemany("INSERT INTO N VALUES (?)", ((i,) for i in range(9)))
        database.executemany("INSERT INTO M VALUES (?, ?, ?)", ((i, f"made {i}", i % 9) for i in range(self.rows)))
        for table, row in related(self.rows // 4, 0, BEFORE_ROWS // 4):
            database.executemany(f"INSERT INTO {table} VALUES ({', '.join('?' * len(row[0]))})", row)
        database.commit()
        database.close()
        self.run("import resource -d sqlite:a.db -i T --add-languages")
        self.run("languages add -d sqlite:a.db B --english Second --overwrite yes")

    def fill_target(self):
        engine, name = self.engine, self.engine.name
        engine.execute(RELATED[name] + DESCRIBED[name] + AROUND)
        self.write_texts("T0", "former ", 3)
        self.run(f"import resource -d {engine.url} -i T0 --add-languages")
        os.remove(self.path("T0"))
        if name == "sqlite":
            engine.execute(STORED)
        self.write_generator(7)
        self.run(f"import generator -d {engine.url} -i G")
        self.write_generator(12)
        self.run(f"dictionary adopt -d {engine.url} --all")
        engine.execute("DROP VIEW OF_W; DROP TABLE W; DROP VIEW OF_A; CREATE VIEW OF_A AS SELECT 1 AS N;" +
                       OUTGROWN[name] + AROUND)
        if name == "sqlite":
            self.describe_stored()
            engine.execute("UPDATE velkrund_procedures SET body = replace(body, 'kept', 'former')")
        else:
            engine.execute("CREATE OR REPLACE PROCEDURE halve() LANGUAGE sql AS "
                           "'UPDATE A SET V = ''former''; DELETE FROM A WHERE ID % 2 = 1'")
        base = 1_000_000
        engine.insert("A", [(base + i, f"target {i}") for i in range(BEFORE_ROWS)])
        engine.insert("W", [(i, f"kept {i}", f"gone {i}") for i in range(1, self.rows)])
        for table, rows in related(BEFORE_ROWS // 4, base, BEFORE_ROWS // 4):
            if table == "parents":
                engine.insert(table, [(i, base) if i == base else (i, i) for i, _ in rows]) if name == "sqlite" else \
                    engine.execute("SET session_replication_role = replica; INSERT INTO parents VALUES " +
                                   ", ".join(f"({i}, {i})" for i, _ in rows))
            else:
                engine.insert(table, rows)

    def write(self, name, text):
        with open(self.path(name), "w", newline="\r\n", encoding="utf-8") as file:
            file.write(text)

    def describe_stored(self):
        """What the engine itself has none of is described by hand."""
        head = "[SECTION]\nName = {0}\nType = DSPStructure\nVersion = 200\nObjectType = {1}\nObjectName = {0}\n" \
               "TableName = {0}\nParentObject = \nRootNode = \n[DATA]\n [REMARKS]\n  \n [TREE]\n  Layout:integer = 1\n"
        self.write("O", head.format("COUNTER", 71) + "  Name:string = 'COUNTER'\n  Step:string = '5'\n[END]\n" +
                   head.format("HALVE", 73) + "  Name:string = 'HALVE'\n  sqlite:integer = 1\n"
                   "    L:string = 'DELETE FROM A WHERE ID % 3'\n[END]\n")
        self.run(f"import structure -d {self.engine.url} -i O")
        os.remove(self.path("O"))

    def write_generator(self, stands):
        self.write("G", "[SECTION]\nName = COUNTER\nType = GeneratorData\nVersion = 200\nGeneratorName = COUNTER\n"
                        f"StartValue = {stands}\n[DATA]\n[END]\n")

    def write_texts(self, name, word, sections):
        text = ""
        for section in range(sections):
            text += (f"[SECTION]\nName = K{section}\nType = LocalizedResource\nVersion = 200\nSectionID = K{section}\n"
                     "[DATA]\n [LANGUAGES]\n  A\n  B\n [STRINGS]\n")
            text += "".join(f"  Name{i}:\n   A = '{word}text {i}'\n   B = '{word}other {i}'\n" for i in range(self.rows // 20 + 2))
            text += "[END]\n"
        self.write(name, text)

    def write_files(self):
        self.run("export table -d sqlite:a.db -t A -o F")
        self.run("export table -d sqlite:a.db -t B -o F")
        self.run("export table -d sqlite:a.db -t kept -t children -t parents -o R")
        self.run("export table -d sqlite:a.db -t M -t N --structures -o D")
        self.run("export query -d sqlite:a.db -o Q --section Q --sql", "SELECT ID, V FROM A")
        self.write("L", "".join(f"[SECTION]\nName = {name}\nType = Language\nVersion = 100\nLanguageID = {name}\n[DATA]\n"
                                f"  RussianName=R{name}\n  EnglishName=E{name}\n  NativeName=N{name}\n[END]\n" for name in "ABC"))
        self.write("S", "[SECTION]\nName = S\nType = DSPStructure\nVersion = 200\nObjectType = 12\nObjectName = S\n"
                        "TableName = A\nParentObject = \nRootNode = \n[DATA]\n [REMARKS]\n  \n [TREE]\n" +
                   "".join(f"  node {i}:string = 'value of node {i}'\n" for i in range(self.rows)) + "[END]\n")
        self.run("resources export-po -d sqlite:a.db --all --source-language A --language B -o P.po")
        with open(self.path("F"), "rb") as file:
            content = file.read()
        with open(self.path("torn"), "wb") as file:
            file.write(content + content[: len(content) * 3 // 4].replace(b"[END]", b"[EN"))


def related(count, base, parents):
    """Rows of the tied tables; those of kept hang on parents that the target has."""
    many = range(base, base + count)
    return [("parents", [(i, i) for i in many]), ("children", [(i, i, f"child {i}") for i in many]),
            ("kept", [(i, 1_000_000 + i % parents) for i in many])]


def start(command, line, folder, temporary, **environment):
    own = dict(os.environ, TMPDIR=temporary, HOME=temporary, LC_ALL="C", LD_PRELOAD=PRELOAD, **environment)
    return subprocess.Popen([command, *line], cwd=folder, env=own, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE)


def finish(command, line, folder, temporary):
    """The exit code, the output, and what it says."""
    process = start(command, line, folder, temporary)
    output, errors = process.communicate(timeout=SECONDS)
    return process.returncode, output, errors.decode(errors="replace")


def run(command, line, folder, temporary):
    code, output, errors = finish(command, line, folder, temporary)
    expect(code == 0, f"{' '.join(line)} ended with {code}: {errors}")
    return output


class Struck:
    """One run of which a call is struck, and what it ended with."""

    def __init__(self, command, place, job, fault, at, **more):
        self.log = os.path.join(os.path.dirname(place.folder), "struck")
        if os.path.exists(self.log):
            os.remove(self.log)
        process = start(command, place.line(job), place.folder, place.temporary,
                               STRIKE_ROOTS=f"{place.folder}:{place.temporary}", STRIKE_FAULT=fault, STRIKE_AT=str(at),
                               STRIKE_LOG=self.log, **more)
        try:
            self.output, errors = process.communicate(timeout=SECONDS)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            raise Fault(f"{job.name}: {fault} at {at}: it hangs after {self.call()}") from None
        self.errors = errors.decode(errors="replace").strip()
        self.code = process.returncode

    def call(self):
        """The call that was struck, or the number of calls."""
        if not os.path.exists(self.log):
            return ""
        with open(self.log, encoding="utf-8", errors="replace") as file:
            return file.read().strip()


class Place:
    """Where runs of jobs take place: a folder and a database that are put back before each."""

    def __init__(self, scene, root, engine):
        self.scene = scene
        self.folder = os.path.join(root, "scene")
        self.temporary = os.path.join(root, "temporary")
        self.looked_at = os.path.join(root, "looked-at")
        os.makedirs(self.temporary)
        self.engine = engine if engine else engines.SQLite(self.folder)

    def reset(self):
        for folder in (self.folder, self.temporary):
            shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree(self.scene.folder, self.folder)
        os.mkdir(self.temporary)
        self.engine.reset()

    def line(self, job):
        return job.line(self.engine.url)

    def state(self):
        """What is there. Databases are read from copies, so that the next run finds them as they were left."""
        shutil.rmtree(self.looked_at, ignore_errors=True)
        shutil.copytree(self.folder, self.looked_at)
        found = {"": self.engine.state()}
        for name in files(self.looked_at):
            if name.endswith(".db"):
                found[name] = engines.read_sqlite(os.path.join(self.looked_at, name))
            elif not name.endswith(AFTERWARDS):
                with open(os.path.join(self.looked_at, name), "rb") as file:
                    found[name] = file.read()
        return found

    def is_untouched(self):
        """Nothing was written at all."""
        if os.listdir(self.temporary) or files(self.folder) != files(self.scene.folder):
            return False
        for name in files(self.folder):
            with open(os.path.join(self.folder, name), "rb") as now, open(self.scene.path(name), "rb") as before:
                if now.read() != before.read():
                    return False
        return self.engine.state() == getattr(self.engine, "before", None)

    def temporary_files(self):
        return sorted(os.listdir(self.temporary))


class Places:
    """Places for as many runs at once as there are to be."""

    def __init__(self, places):
        self.free = queue.Queue()
        for place in places:
            self.free.put(place)

    def use(self, work, *arguments):
        place = self.free.get()
        try:
            return work(place, *arguments)
        finally:
            self.free.put(place)


def places(command, root, url, rows, parallel):
    """For each engine its name and places. Url: of the server, or null."""
    for engine in ENGINES if url else ENGINES[:1]:
        made = []

        def database(name, engine=engine, made=made):
            if engine == "sqlite":
                return None
            made.append(engines.PostgreSQL(url, f"endurance_{os.getpid()}_{name}"))
            return made[-1]

        try:
            scene = Scene(command, os.path.join(root, engine), database("scene"), rows)
            own = [database(number) for number in range(parallel)]
            yield engine, Places(Place(scene, os.path.join(root, f"{engine}-{number}"), one and one.copy_of(scene.engine))
                                 for number, one in enumerate(own))
        finally:
            for one in made:
                one.close()


def add_options(parser):
    parser.add_argument("command", help="the velkrund command")
    parser.add_argument("preload", help="the library that is loaded before the others")
    parser.add_argument("--server", default=os.environ.get("VELKRUND_TEST_SERVER"),
                        help="the folder of a PostgreSQL server; without it SQLite alone (default: $VELKRUND_TEST_SERVER)")
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1_000_000), help="repeats an earlier run")
    parser.add_argument("--only", default="", help="only jobs whose command line this expression is found in")
    parser.add_argument("--rows", type=int, help="of the tables (default: %(default)s)")
    parser.add_argument("--parallel", type=int, default=os.cpu_count(), help="runs at once (default: one a processor)")


def url_of(server):
    if not server:
        return None
    with open(os.path.join(server, "url"), encoding="utf-8") as file:
        return file.read().strip()


def files(folder):
    found = []
    for path, _, names in os.walk(folder):
        found += [os.path.relpath(os.path.join(path, name), folder) for name in names]
    return sorted(found)


def commands(command):
    """What the command itself says that it can do."""
    listed = subprocess.run([command, "--help"], capture_output=True, text=True, check=True).stdout
    listed = listed.split("Commands:\n")[1].split("\n\n")[0]
    return {" ".join(line.split()[:2]) for line in listed.splitlines()}


def expect_all_commands(command):
    own = {job.command for job in JOBS}
    missing = sorted(commands(command) - own)
    expect(not missing, f"no job in scenes.py runs {', '.join(missing)}")
    gone = sorted(own - commands(command))
    expect(not gone, f"jobs in scenes.py run commands that there are not: {', '.join(gone)}")
