-- A trigger counts into a table that is loaded earlier, others change or refuse what comes in.
-- options: --triggers off
-- fires: guarded, orders, prices
-- changes: counts, guarded, prices
CREATE TABLE counts (kind TEXT PRIMARY KEY, n INTEGER);
CREATE TABLE orders (id INTEGER PRIMARY KEY, kind TEXT);
CREATE TABLE prices (id INTEGER PRIMARY KEY, price INTEGER);
CREATE TABLE guarded (id INTEGER PRIMARY KEY);
CREATE TRIGGER counted AFTER INSERT ON orders BEGIN UPDATE counts SET n = n + 1 WHERE kind = NEW.kind; END;
CREATE TRIGGER uncounted AFTER DELETE ON orders BEGIN UPDATE counts SET n = n - 1 WHERE kind = OLD.kind; END;
CREATE TRIGGER doubled AFTER INSERT ON prices BEGIN UPDATE prices SET price = 2 * price WHERE id = NEW.id; END;
CREATE TRIGGER refused BEFORE INSERT ON guarded WHEN NEW.id = 2 BEGIN SELECT RAISE(IGNORE); END;
-- rows
INSERT INTO counts VALUES ('a', 0), ('b', 100);
INSERT INTO orders VALUES (1, 'a'), (2, 'b'), (3, 'a');
INSERT INTO prices VALUES (1, 5);
INSERT INTO guarded VALUES (1), (3);
UPDATE guarded SET id = 2 WHERE id = 1;
-- other rows
INSERT INTO counts VALUES ('a', 50), ('c', 1);
INSERT INTO orders VALUES (3, 'c'), (4, 'a');
INSERT INTO prices VALUES (1, 7), (2, 8);
INSERT INTO guarded VALUES (3);
