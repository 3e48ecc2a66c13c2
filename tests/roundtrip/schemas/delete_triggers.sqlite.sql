-- Rows go with others by a trigger, which no key tells, also out of tables that are loaded earlier.
-- fires: orders
CREATE TABLE lines (id INTEGER PRIMARY KEY, order_id INTEGER);
CREATE TABLE orders (id INTEGER PRIMARY KEY);
CREATE TABLE parcels (id INTEGER PRIMARY KEY, order_id INTEGER);
CREATE TRIGGER with_order AFTER DELETE ON orders BEGIN
  DELETE FROM lines WHERE order_id = OLD.id;
  DELETE FROM parcels WHERE order_id = OLD.id;
END;
-- rows
INSERT INTO lines VALUES (1, 10), (2, 10), (3, 20);
INSERT INTO orders VALUES (10), (20);
INSERT INTO parcels VALUES (4, 20), (5, 10);
-- other rows
INSERT INTO lines VALUES (1, 10), (9, 30);
INSERT INTO orders VALUES (10), (20), (30);
INSERT INTO parcels VALUES (4, 30);
