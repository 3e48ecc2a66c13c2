-- A trigger counts into a table that is loaded earlier, another changes what comes in.
-- options: --triggers off
-- fires: orders, prices
-- changes: counts, prices
CREATE TABLE counts (kind TEXT PRIMARY KEY, n INTEGER);
CREATE TABLE orders (id INTEGER PRIMARY KEY, kind TEXT);
CREATE TABLE prices (id INTEGER PRIMARY KEY, price INTEGER);
CREATE TRIGGER counted AFTER INSERT ON orders BEGIN UPDATE counts SET n = n + 1 WHERE kind = NEW.kind; END;
CREATE TRIGGER uncounted AFTER DELETE ON orders BEGIN UPDATE counts SET n = n - 1 WHERE kind = OLD.kind; END;
CREATE TRIGGER doubled AFTER INSERT ON prices BEGIN UPDATE prices SET price = 2 * price WHERE id = NEW.id; END;
-- rows
INSERT INTO counts VALUES ('a', 0), ('b', 100);
INSERT INTO orders VALUES (1, 'a'), (2, 'b'), (3, 'a');
INSERT INTO prices VALUES (1, 5);
-- other rows
INSERT INTO counts VALUES ('a', 50), ('c', 1);
INSERT INTO orders VALUES (3, 'c'), (4, 'a');
INSERT INTO prices VALUES (1, 7), (2, 8);
