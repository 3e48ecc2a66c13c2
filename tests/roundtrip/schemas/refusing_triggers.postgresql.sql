-- A trigger passes over a row without a word.
-- options: --triggers off
-- refused: guarded
CREATE TABLE free (id integer PRIMARY KEY);
CREATE TABLE guarded (id integer PRIMARY KEY, s text);
CREATE TRIGGER passes_over BEFORE INSERT ON guarded FOR EACH ROW WHEN (NEW.id = 2) EXECUTE FUNCTION pass_over();
-- before
CREATE FUNCTION pass_over() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN RETURN NULL; END $$;
-- rows
INSERT INTO free VALUES (5);
INSERT INTO guarded VALUES (1, 'a'), (3, 'b');
UPDATE guarded SET id = 2 WHERE id = 1;
-- other rows
INSERT INTO free VALUES (6);
INSERT INTO guarded VALUES (3, 'other'), (4, 'other');
