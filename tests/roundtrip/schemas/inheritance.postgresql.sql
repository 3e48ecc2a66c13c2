-- Tables that inherit: a row belongs to one of them, and shows in those above.
CREATE TABLE cities (id integer PRIMARY KEY, name text);
CREATE TABLE capitals (state text, PRIMARY KEY (id)) INHERITS (cities);
CREATE TABLE "Harbours" (depth integer, CHECK (depth > 0)) INHERITS (cities);
CREATE TABLE port_capitals (note text) INHERITS (capitals, "Harbours");
-- rows
INSERT INTO cities VALUES (1, 'Ulm'), (2, NULL);
INSERT INTO capitals VALUES (3, 'Mainz', 'RP'), (4, 'Erfurt', NULL);
INSERT INTO "Harbours" VALUES (5, 'Rostock', 12);
INSERT INTO port_capitals VALUES (6, 'Bremen', 'HB', 9, 'free'), (7, NULL, NULL, NULL, NULL);
-- other rows
INSERT INTO cities VALUES (1, 'other'), (3, 'other');
INSERT INTO capitals VALUES (3, 'other', 'x');
INSERT INTO "Harbours" VALUES (8, 'other', 1);
INSERT INTO port_capitals VALUES (6, 'other', 'x', 2, 'x');
