-- A shop: keys of two columns, a reference to the own table, rows that go with others, values of several types.
CREATE TABLE staff (id INTEGER PRIMARY KEY, name TEXT, boss INTEGER REFERENCES staff (id));
CREATE TABLE orders (id INTEGER PRIMARY KEY, seller INTEGER REFERENCES staff (id) ON DELETE SET NULL, day DATE,
  paid BOOLEAN);
CREATE TABLE articles (code TEXT PRIMARY KEY, price NUMERIC(10,2) CHECK (price >= 0));
CREATE TABLE lines (order_id INTEGER NOT NULL REFERENCES orders (id) ON DELETE CASCADE, number INTEGER NOT NULL,
  article TEXT NOT NULL REFERENCES articles (code) ON UPDATE CASCADE, PRIMARY KEY (order_id, number));
CREATE TABLE gifts (id INTEGER PRIMARY KEY, order_id INTEGER, number INTEGER, wish TEXT,
  FOREIGN KEY (order_id, number) REFERENCES lines (order_id, number));
CREATE UNIQUE INDEX articles_by_price ON articles (price, code);
CREATE INDEX open_orders ON orders (day) WHERE NOT paid;
CREATE INDEX staff_by_name ON staff (lower(name));
CREATE VIEW totals AS SELECT order_id, count(*) AS parts FROM lines GROUP BY order_id;
-- rows
INSERT INTO staff VALUES (1, 'Äpfel & Söhne', NULL), (2, '', 1), (3, NULL, 2), (4, 'a|b#c<>@', 4);
UPDATE staff SET boss = 4 WHERE id = 1;
INSERT INTO orders VALUES (10, 1, '2024-02-29', TRUE), (20, 3, '1999-12-31', FALSE), (30, NULL, NULL, NULL);
INSERT INTO articles VALUES ('x', 12.5), ('y', 0), ('Я', NULL);
INSERT INTO lines VALUES (10, 1, 'x'), (10, 2, 'y'), (20, 1, 'x');
INSERT INTO gifts VALUES (1, 10, 2, 'red
 paper '), (2, NULL, 7, '');
-- other rows
INSERT INTO staff VALUES (1, 'other', NULL), (7, 'other', 1);
INSERT INTO orders VALUES (10, 7, '2000-01-01', FALSE), (70, 1, NULL, TRUE);
INSERT INTO articles VALUES ('y', 1), ('z', 2);
INSERT INTO lines VALUES (70, 1, 'z'), (10, 1, 'y');
INSERT INTO gifts VALUES (2, 70, 1, 'other');
