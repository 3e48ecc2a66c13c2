-- A trigger passes over a row without a word.
-- options: --triggers off
-- refused: guarded
CREATE TABLE free (id INTEGER PRIMARY KEY);
CREATE TABLE guarded (id INTEGER PRIMARY KEY, s TEXT);
CREATE TRIGGER passes_over BEFORE INSERT ON guarded WHEN NEW.id = 2 BEGIN SELECT RAISE(IGNORE); END;
-- rows
INSERT INTO free VALUES (5);
INSERT INTO guarded VALUES (1, 'a'), (3, 'b');
UPDATE guarded SET id = 2 WHERE id = 1;
-- other rows
INSERT INTO free VALUES (6);
INSERT INTO guarded VALUES (3, 'other'), (4, 'other');
