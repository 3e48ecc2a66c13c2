-- Rows that refer to nothing, alone and among good ones.
-- options: --broken-references allow
-- refused: lines
-- says: trigger
CREATE TABLE sellers (id integer PRIMARY KEY);
CREATE TABLE orders (id integer PRIMARY KEY, seller integer REFERENCES sellers);
CREATE TABLE lines (id integer PRIMARY KEY, order_id integer REFERENCES orders);
CREATE TRIGGER forgotten BEFORE INSERT ON orders FOR EACH ROW EXECUTE FUNCTION forget_seller();
-- before
CREATE FUNCTION forget_seller() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN
  NEW.seller = NULL;
  RETURN NEW;
END $$;
-- rows
SET session_replication_role = replica;
INSERT INTO lines VALUES (1, 10), (2, 77), (3, NULL), (4, 10);
INSERT INTO orders VALUES (10, 1), (20, 88);
INSERT INTO sellers VALUES (1);
RESET session_replication_role;
-- other rows
INSERT INTO sellers VALUES (2);
INSERT INTO orders VALUES (10, 2);
INSERT INTO lines VALUES (1, 10);
