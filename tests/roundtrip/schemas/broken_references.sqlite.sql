-- Rows that refer to nothing, alone and among good ones.
-- options: --broken-references allow
-- refused: lines
CREATE TABLE lines (id INTEGER PRIMARY KEY, order_id INTEGER REFERENCES orders (id));
CREATE TABLE orders (id INTEGER PRIMARY KEY, seller INTEGER REFERENCES sellers (id));
CREATE TABLE sellers (id INTEGER PRIMARY KEY);
-- rows
INSERT INTO lines VALUES (1, 10), (2, 77), (3, NULL), (4, 10);
INSERT INTO orders VALUES (10, 1), (20, 88);
INSERT INTO sellers VALUES (1);
-- other rows
INSERT INTO lines VALUES (1, 10);
INSERT INTO orders VALUES (10, 2);
INSERT INTO sellers VALUES (2);
