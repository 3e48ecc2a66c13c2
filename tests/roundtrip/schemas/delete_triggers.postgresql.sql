-- Rows go with others by a trigger, which no key tells, also out of tables that are loaded earlier.
-- fires: orders
CREATE TABLE lines (id integer PRIMARY KEY, order_id integer);
CREATE TABLE orders (id integer PRIMARY KEY);
CREATE TABLE parcels (id integer PRIMARY KEY, order_id integer);
CREATE TRIGGER with_order AFTER DELETE ON orders FOR EACH ROW EXECUTE FUNCTION with_order();
-- before
CREATE FUNCTION with_order() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN
  DELETE FROM lines WHERE order_id = OLD.id;
  DELETE FROM parcels WHERE order_id = OLD.id;
  RETURN NULL;
END $$;
-- rows
INSERT INTO lines VALUES (1, 10), (2, 10), (3, 20);
INSERT INTO orders VALUES (10), (20);
INSERT INTO parcels VALUES (4, 20), (5, 10);
-- other rows
INSERT INTO lines VALUES (1, 10), (9, 30);
INSERT INTO orders VALUES (10), (20), (30);
INSERT INTO parcels VALUES (4, 30);
