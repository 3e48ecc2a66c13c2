-- Names that are words of SQL, hold quotes, blanks and other scripts, or are as long as names may be.
CREATE TABLE "select" ("from" INTEGER PRIMARY KEY, "a b" TEXT, "it's" TEXT, "say ""hi""" TEXT);
CREATE TABLE "two words" ("Größe" INTEGER PRIMARY KEY, "where" INTEGER REFERENCES "select" ("from"));
CREATE TABLE "a ""b"" 'c'" ("$1" INTEGER, "?" TEXT, "%s" TEXT, ":x" TEXT, "--" TEXT, "a.b" TEXT);
CREATE TABLE "x'; DROP TABLE kept; --" ("\" TEXT, "|<>@#" TEXT);
CREATE TABLE kept (i INTEGER);
CREATE TABLE "Таблица" ("Ключ" INTEGER PRIMARY KEY, "名前" TEXT, "🙂" TEXT);
CREATE TABLE "order" ("group" INTEGER, "user" TEXT, "table" TEXT, "null" TEXT, PRIMARY KEY ("group", "user"));
CREATE TABLE nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn
  (ccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccc INTEGER);
CREATE INDEX "an ""index""" ON "two words" ("where");
-- rows
INSERT INTO "select" VALUES (1, 'a', 'b', 'c'), (2, NULL, '', '"');
INSERT INTO "two words" VALUES (1, 2), (2, NULL);
INSERT INTO "a ""b"" 'c'" VALUES (1, '?', '%d', ':x', '--', '.');
INSERT INTO "x'; DROP TABLE kept; --" VALUES ('\', '|<>@#');
INSERT INTO kept VALUES (5);
INSERT INTO "Таблица" VALUES (1, '値', '🙂');
INSERT INTO "order" VALUES (1, 'u', 't', 'NULL'), (1, 'v', NULL, '');
INSERT INTO nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn VALUES (63);
-- other rows
INSERT INTO "select" VALUES (1, 'x', 'x', 'x'), (9, 'x', 'x', 'x');
INSERT INTO "two words" VALUES (1, 9);
INSERT INTO "a ""b"" 'c'" VALUES (9, 'x', 'x', 'x', 'x', 'x');
INSERT INTO "x'; DROP TABLE kept; --" VALUES ('x', 'x');
INSERT INTO "order" VALUES (1, 'u', 'x', 'x');
