-- Generated columns, keys of several columns and none, names that differ in case, other schemas, checks of many kinds.
CREATE TABLE made (w integer, h integer, area bigint GENERATED ALWAYS AS (w * h) STORED, last integer);
CREATE TABLE no_key (x integer, y text, z text[]);
CREATE TABLE "No_Key" (x integer);
CREATE SCHEMA other;
CREATE TABLE other.made (a integer, b text, PRIMARY KEY (b, a));
CREATE DOMAIN even AS integer CHECK (VALUE % 2 = 0);
CREATE TABLE rules (i even NOT NULL, during tsrange, EXCLUDE USING gist (during WITH &&),
  u integer UNIQUE DEFERRABLE INITIALLY DEFERRED, CONSTRAINT late CHECK (u < 100) NOT VALID);
CREATE TABLE refers (a integer, b text, c text,
  FOREIGN KEY (b, a) REFERENCES other.made MATCH FULL ON UPDATE CASCADE NOT VALID);
CREATE TABLE gone (a integer, b integer, c integer);
ALTER TABLE gone DROP COLUMN b;
CREATE TABLE guarded (i integer);
ALTER TABLE guarded ENABLE ROW LEVEL SECURITY;
CREATE UNLOGGED TABLE unlogged (i integer PRIMARY KEY);
CREATE UNIQUE INDEX odd_index ON no_key (lower(y) DESC NULLS LAST, (x + 1)) INCLUDE (z) WHERE x > 0;
CREATE MATERIALIZED VIEW kept AS SELECT count(*) FROM no_key;
-- rows
INSERT INTO made VALUES (2, 3, DEFAULT, 4), (NULL, 5, DEFAULT, NULL);
INSERT INTO no_key VALUES (1, 'A', '{a,NULL,"b c"}'), (1, 'a2', '{}'), (0, 'A', NULL), (0, 'A', NULL);
INSERT INTO "No_Key" VALUES (9);
INSERT INTO other.made VALUES (1, ''), (1, 'x');
INSERT INTO rules VALUES (2, '[2024-01-01,2024-02-01)', 1), (4, NULL, 2);
INSERT INTO refers VALUES (1, 'x', 'c'), (NULL, NULL, 'c');
INSERT INTO gone VALUES (1, 3);
INSERT INTO guarded VALUES (1);
INSERT INTO unlogged VALUES (1);
-- other rows
INSERT INTO made VALUES (1, 1, DEFAULT, 1);
INSERT INTO other.made VALUES (1, 'x'), (2, 'y');
INSERT INTO refers VALUES (2, 'y', NULL);
INSERT INTO rules VALUES (6, '[2024-01-15,2024-02-15)', 2);
INSERT INTO guarded VALUES (7);
