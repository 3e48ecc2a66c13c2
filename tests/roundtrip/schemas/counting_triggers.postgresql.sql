-- A trigger counts into a table that is loaded earlier, another changes what comes in.
-- options: --triggers off
-- fires: orders, prices
-- changes: counts, prices
CREATE TABLE counts (kind text PRIMARY KEY, n integer);
CREATE TABLE orders (id integer PRIMARY KEY, kind text);
CREATE TABLE prices (id integer PRIMARY KEY, price integer);
CREATE TRIGGER counted AFTER INSERT OR DELETE ON orders FOR EACH ROW EXECUTE FUNCTION count_up();
CREATE TRIGGER doubled BEFORE INSERT ON prices FOR EACH ROW EXECUTE FUNCTION double_price();
-- before
CREATE FUNCTION count_up() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN
  UPDATE counts SET n = n + CASE TG_OP WHEN 'INSERT' THEN 1 ELSE -1 END WHERE kind = coalesce(NEW.kind, OLD.kind);
  RETURN NULL;
END $$;
CREATE FUNCTION double_price() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN
  NEW.price = 2 * NEW.price;
  RETURN NEW;
END $$;
-- rows
INSERT INTO counts VALUES ('a', 0), ('b', 100);
INSERT INTO orders VALUES (1, 'a'), (2, 'b'), (3, 'a');
INSERT INTO prices VALUES (1, 5);
-- other rows
INSERT INTO counts VALUES ('a', 50), ('c', 1);
INSERT INTO orders VALUES (3, 'c'), (4, 'a');
INSERT INTO prices VALUES (1, 7), (2, 8);
