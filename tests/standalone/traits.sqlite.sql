-- Every trait that a table or view of SQLite can have, as people write it.
CREATE TABLE plain (a, b TEXT, c INTEGER NOT NULL, d VARCHAR(20) DEFAULT 'it''s', e DECIMAL(10,2) DEFAULT 1.50,
  f "DOUBLE  PRECISION" DEFAULT -1e3, g BLOB DEFAULT x'00ff', h BOOLEAN DEFAULT TRUE, i DATETIME DEFAULT CURRENT_TIMESTAMP,
  j [strange type] (1), k DATE DEFAULT (date('now', '+1 day')), l TEXT DEFAULT bare, m TEXT DEFAULT "quoted", n INT NULL,
  o NUMERIC DEFAULT + 5, p TIMESTAMP(3), q UNSIGNED BIG INT, r DEFAULT (1 + (2)));
create table "odd ""names""" ([a b] integer primary key, `c``d` text unique, "e]" text check ("e]" <> 'x)' /* ) */),
  'f' text, "ключ" text -- the last )
);
CREATE TABLE parents (id INTEGER PRIMARY KEY AUTOINCREMENT, "Code" TEXT COLLATE NOCASE NOT NULL ON CONFLICT IGNORE, part INT,
  CONSTRAINT "unique code" UNIQUE ("Code" COLLATE RTRIM, part DESC) ON CONFLICT REPLACE UNIQUE (part, id));
CREATE TABLE children (
  id INTEGER CONSTRAINT pk PRIMARY KEY ON CONFLICT FAIL,
  parent INT CONSTRAINT fk REFERENCES PARENTS ON DELETE CASCADE ON UPDATE SET NULL NOT NULL DEFERRABLE INITIALLY DEFERRED,
  code TEXT, part INT DEFAULT 3 REFERENCES parents (ID) MATCH FULL NOT DEFERRABLE, me INTEGER REFERENCES children (id) DEFERRABLE,
  CONSTRAINT ignored, CONSTRAINT fk2 FOREIGN KEY (CODE, part) REFERENCES parents (code, PART) ON DELETE RESTRICT
    ON UPDATE SET DEFAULT MATCH PARTIAL,
  FOREIGN KEY (part) REFERENCES children (id) ON DELETE NO ACTION, CHECK (part BETWEEN 1 AND 10), CONSTRAINT named CHECK (code LIKE 'x%')
    CHECK (coalesce(part, 1) > 0 OR code IS NOT NULL) ON CONFLICT ABORT);
CREATE TABLE generated (w INTEGER, h INTEGER, area AS (w * h), twice INTEGER GENERATED ALWAYS AS (w+w) STORED,
  text TEXT AS (w || 'x' || h) VIRTUAL UNIQUE);
CREATE TABLE no_rowid (a TEXT COLLATE NOCASE, b INTEGER, PRIMARY KEY (b DESC, a)) WITHOUT ROWID;
CREATE TABLE no_rowid_number (id INTEGER PRIMARY KEY) WITHOUT ROWID;
CREATE TABLE strict_one (i INT, r REAL, t TEXT, b BLOB, a ANY, n INTEGER PRIMARY KEY) STRICT;
CREATE TABLE strict_two (i INT, PRIMARY KEY (i ASC)) WITHOUT ROWID, strict;
CREATE TABLE descending (id INTEGER PRIMARY KEY DESC, s TEXT);
CREATE TABLE descending_alias (id INTEGER, PRIMARY KEY (id DESC));
CREATE TABLE counting_alias (id INTEGER, PRIMARY KEY (id DESC AUTOINCREMENT) ON CONFLICT REPLACE);
CREATE TABLE text_key (id TEXT PRIMARY KEY, other INT UNIQUE, third INT UNIQUE ON CONFLICT IGNORE);
CREATE TABLE late_key (a INT UNIQUE, b INT UNIQUE, id BLOB_KEY CHECK (id <> x'00'), yes BOOLEAN CHECK (yes IN (0, 1)), UNIQUE (a, b), PRIMARY KEY (id));
CREATE TABLE exact (a "DECIMAL TEXT"(18, 2) CHECK (a > 9), b NUMBER TEXT CHECK (cast(b AS numeric) > 9 AND b <> a),
  c MONEY TEXT CHECK (CAST("C" AS NUMERIC) IN (1, 10)), d AS (CAST(c AS NUMERIC) * 2));
CREATE INDEX by_number ON exact ((CAST(b AS NUMERIC)) DESC, a, cast([c] as numeric));
CREATE INDEX by_both ON exact (b, CAST(b AS NUMERIC));
CREATE TABLE copied AS SELECT id, s AS "a b", 1.5 AS r FROM descending;
CREATE TABLE altered (a INTEGER, gone TEXT, b TEXT CHECK (b > 'a'));
ALTER TABLE altered ADD COLUMN c INT DEFAULT 7 REFERENCES parents;
ALTER TABLE altered ADD COLUMN d TEXT COLLATE NOCASE;
ALTER TABLE altered RENAME COLUMN b TO "new b";
ALTER TABLE altered DROP COLUMN gone;
ALTER TABLE altered RENAME TO "altered twice";
CREATE INDEX by_names ON plain (b, c DESC);
CREATE UNIQUE INDEX "by ""part" ON PLAIN (d) WHERE c > 0;
CREATE INDEX by_expression ON plain (c + n, lower(b) DESC);
CREATE INDEX by_own_expression ON plain (b || d, c);
CREATE INDEX by_collation ON plain (b COLLATE NOCASE DESC, "d" COLLATE BINARY);
CREATE INDEX by_text ON "odd ""names""" ('f');
CREATE TRIGGER z_first AFTER UPDATE OF b, "c" ON plain WHEN NEW.b IS NOT OLD.b BEGIN
  UPDATE plain SET a = 'ON' WHERE c = NEW.c;  -- a comment; END
  SELECT CASE WHEN 1 THEN RAISE(IGNORE) END;
END;
CREATE TRIGGER a_second BEFORE DELETE ON "Plain" FOR EACH ROW BEGIN SELECT 1; END;
CREATE VIRTUAL TABLE words USING fts5(title, body, tokenize = 'porter unicode61');
CREATE TABLE zz_notes (id INTEGER PRIMARY KEY, body TEXT);
CREATE VIRTUAL TABLE over_notes USING fts4(content="zz_notes", body);
CREATE VIRTUAL TABLE boxes USING rtree(id, minx, maxx, +name TEXT);
CREATE VIEW shown AS
SELECT a, b -- ' a comment
  FROM plain;
CREATE VIEW "named columns" (x, "y z") AS WITH w AS (SELECT 1 AS n) SELECT n, 'it''s' FROM w;
CREATE TRIGGER instead INSTEAD OF INSERT ON shown BEGIN
  INSERT INTO plain (a, c) VALUES (NEW.a, 1);
END;
