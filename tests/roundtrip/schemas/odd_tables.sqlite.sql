-- Tables without a rowid, strict ones, generated columns, keys of several columns and none, cells of any class.
CREATE TABLE no_rowid (a TEXT COLLATE NOCASE, b BLOB, c REAL, PRIMARY KEY (a, b)) WITHOUT ROWID;
CREATE TABLE strict_one (i INT, r REAL, t TEXT, b BLOB, a ANY, PRIMARY KEY (i, t)) STRICT, WITHOUT ROWID;
CREATE TABLE strict_two (i INTEGER PRIMARY KEY, a ANY) STRICT;
CREATE TABLE made (w INTEGER, h INTEGER, area INTEGER AS (w * h), text TEXT GENERATED ALWAYS AS (w || 'x' || h) STORED UNIQUE,
  last INTEGER);
CREATE TABLE no_key (x, y TEXT, z INTEGER);
CREATE TABLE counted (id INTEGER PRIMARY KEY AUTOINCREMENT, s TEXT);
CREATE TABLE never_counted (id INTEGER PRIMARY KEY AUTOINCREMENT);
CREATE TABLE descending (id INTEGER PRIMARY KEY DESC, s TEXT DEFAULT 'd');
CREATE TABLE rules (i INTEGER CHECK (i % 2 = 0), u TEXT UNIQUE ON CONFLICT REPLACE, n NOT NULL DEFAULT 7);
CREATE INDEX no_key_by_expression ON no_key (x + 1, y COLLATE NOCASE DESC) WHERE z IS NOT NULL;
CREATE VIEW shown AS SELECT * FROM made;
-- rows
INSERT INTO no_rowid VALUES ('A', x'', 1.5), ('a', x'00', -0.0), ('Ж', 5, 9e999);
INSERT INTO strict_one VALUES (1, 1, '', x'', 1.0), (2, -1e300, '01', NULL, '1'), (3, NULL, 'x', x'FF', x'31');
INSERT INTO strict_two VALUES (-9223372036854775808, 7), (9223372036854775807, 7.0), (0, NULL);
INSERT INTO made VALUES (2, 3, 4), (NULL, 5, NULL);
INSERT INTO no_key VALUES (1, 2, 3), (1, 2, 3), ('1', x'32', 3.5), (1.0, NULL, 'three'), (NULL, NULL, NULL);
INSERT INTO counted VALUES (5, 'a'), (90, 'b');
INSERT INTO descending VALUES (1, 'x'), (2, NULL);
INSERT INTO rules VALUES (2, 'a', 1), (4, 'b', 'n');
-- other rows
INSERT INTO no_rowid VALUES ('a', x'', 0);
INSERT INTO strict_one VALUES (2, 2, '01', NULL, NULL);
INSERT INTO strict_two VALUES (0, 0);
INSERT INTO made VALUES (3, 2, 1);
INSERT INTO no_key VALUES (1, 2, 3);
INSERT INTO counted VALUES (400, 'c');
INSERT INTO rules VALUES (6, 'a', 1);
