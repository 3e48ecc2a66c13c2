-- Triggers in all states, of rows and of statements, and one with a name that needs quotes.
-- options: --triggers off
-- fires: items
-- changes: journal
CREATE TABLE items (id integer PRIMARY KEY, text text);
CREATE TABLE journal (entry text);
CREATE TRIGGER origin AFTER INSERT OR DELETE ON items FOR EACH ROW EXECUTE FUNCTION note();
CREATE TRIGGER "is ""always""" AFTER INSERT OR DELETE ON items FOR EACH ROW EXECUTE FUNCTION note();
CREATE TRIGGER replica AFTER INSERT OR DELETE ON items FOR EACH ROW EXECUTE FUNCTION note();
CREATE TRIGGER disabled AFTER INSERT OR DELETE ON items FOR EACH ROW EXECUTE FUNCTION note();
CREATE TRIGGER statement AFTER INSERT OR DELETE ON items EXECUTE FUNCTION note();
CREATE CONSTRAINT TRIGGER late AFTER INSERT ON items DEFERRABLE INITIALLY DEFERRED FOR EACH ROW
  EXECUTE FUNCTION note();
-- before
CREATE FUNCTION note() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN
  INSERT INTO journal VALUES (TG_NAME || ' ' || TG_OP);
  RETURN NULL;
END $$;
-- rows
INSERT INTO items VALUES (1, 'one'), (2, 'two');
-- other rows
INSERT INTO items VALUES (1, 'other'), (3, 'three');
-- after
ALTER TABLE items ENABLE ALWAYS TRIGGER "is ""always""";
ALTER TABLE items ENABLE REPLICA TRIGGER replica;
ALTER TABLE items DISABLE TRIGGER disabled;
