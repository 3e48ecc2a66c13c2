-- Circles of keys over one, two and three tables, which the engine enforces at once or at the end.
CREATE TABLE employees (id integer PRIMARY KEY, boss integer NOT NULL REFERENCES employees);
CREATE TABLE departments (id integer PRIMARY KEY, head integer NOT NULL);
CREATE TABLE people (id integer PRIMARY KEY, department integer NOT NULL);
CREATE TABLE stone (id integer PRIMARY KEY, beats integer);
CREATE TABLE paper (id integer PRIMARY KEY, beats integer REFERENCES stone);
CREATE TABLE scissors (id integer PRIMARY KEY, beats integer REFERENCES paper DEFERRABLE);
CREATE TABLE players (id integer PRIMARY KEY, hand integer NOT NULL REFERENCES stone ON DELETE CASCADE);
-- rows
INSERT INTO employees VALUES (1, 3), (2, 1), (3, 3);
INSERT INTO departments VALUES (1, 11), (2, 12);
INSERT INTO people VALUES (11, 1), (12, 1), (13, 2);
INSERT INTO stone VALUES (1, 3), (2, NULL);
INSERT INTO paper VALUES (2, 1);
INSERT INTO scissors VALUES (3, 2);
INSERT INTO players VALUES (5, 1), (6, 2);
-- other rows
INSERT INTO employees VALUES (3, 4), (4, 3);
INSERT INTO departments VALUES (1, 13);
INSERT INTO people VALUES (13, 1);
INSERT INTO stone VALUES (1, 4);
INSERT INTO paper VALUES (4, 1);
INSERT INTO scissors VALUES (4, 4);
INSERT INTO players VALUES (5, 1);
-- after
ALTER TABLE departments ADD CONSTRAINT "Head of" FOREIGN KEY (head) REFERENCES people;
ALTER TABLE people ADD CONSTRAINT "Works in" FOREIGN KEY (department) REFERENCES departments;
ALTER TABLE stone ADD FOREIGN KEY (beats) REFERENCES scissors DEFERRABLE INITIALLY DEFERRED;
