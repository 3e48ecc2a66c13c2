-- A small shop, with what makes tables hard to move: NULLs, several alphabets, texts with line ends and quotes, BLOBs
-- with every kind of byte, exact decimals, doubles that need all their digits, dates and times.

CREATE TABLE CUSTOMERS (
  ID       INTEGER PRIMARY KEY,
  NAME     VARCHAR(60) NOT NULL,
  EMAIL    VARCHAR(120),
  BORN     DATE,
  CREDIT   DECIMAL(12,2) NOT NULL DEFAULT 0,
  ACTIVE   BOOLEAN NOT NULL DEFAULT 1,
  PHOTO    BLOB
);

CREATE TABLE ORDERS (
  ID           INTEGER PRIMARY KEY,
  CUSTOMER_ID  INTEGER NOT NULL,
  ORDERED_AT   TIMESTAMP NOT NULL,
  DELIVERED    DATE,
  TOTAL        DECIMAL(12,2) NOT NULL,
  WEIGHT_KG    DOUBLE PRECISION,
  PAID         BOOLEAN NOT NULL,
  NOTE         TEXT,
  SIGNATURE    BLOB
);
CREATE INDEX ORDERS_BY_CUSTOMER ON ORDERS (CUSTOMER_ID, ORDERED_AT);

CREATE TABLE ITEMS (
  ORDER_ID  INTEGER NOT NULL REFERENCES ORDERS (ID),
  LINE      SMALLINT NOT NULL,
  ARTICLE   VARCHAR(80) NOT NULL,
  QUANTITY  INTEGER NOT NULL,
  PRICE     DECIMAL(12,2) NOT NULL,
  PRIMARY KEY (ORDER_ID, LINE)
);

INSERT INTO CUSTOMERS (ID, NAME, EMAIL, BORN, CREDIT, ACTIVE, PHOTO) VALUES
  (1, 'Анна Кузнецова', 'anna@example.org', '1984-02-29', 1500.5, 1, x'89504E470D0A1A0A0000000D'),
  (2, 'Jürgen Groß', NULL, NULL, 0, 1, NULL),
  (3, 'O''Neill & "Sons"', 'office@example.com', '1969-12-31', -12.34, 0, x''),
  (4, '山田 花子 🌸', 'hanako@example.jp', '2001-07-15', 99999999.99, 1, x'00FF0D0A5B53454354494F4E5D');

INSERT INTO ORDERS (ID, CUSTOMER_ID, ORDERED_AT, DELIVERED, TOTAL, WEIGHT_KG, PAID, NOTE, SIGNATURE) VALUES
  (1001, 1, '2024-03-01 09:15:00', '2024-03-04', 249.9, 1.25, 1, 'Позвонить до 18:00', x'01020304FF'),
  (1002, 1, '2024-03-01 23:59:59.999', NULL, 15, 0.1, 0, NULL, NULL),
  (1003, 2, '2024-02-29 00:00:00', '2024-03-01', 1234567.89, 0.30000000000000004, 1,
   'two lines:' || char(13, 10) || '[SECTION]' || char(10) || 'Name = "quoted"', x'00'),
  (1004, 3, '1999-12-31 12:30:45.123456', NULL, -5.25, NULL, 0, '', x''),
  (1005, 4, '2024-04-05 06:07:08', '2024-04-09', 0.01, 1e-300, 1, 'доставка в 東京 🚚', x'0D0A1A00FEFF');

INSERT INTO ITEMS (ORDER_ID, LINE, ARTICLE, QUANTITY, PRICE) VALUES
  (1001, 1, 'Чайник, 1,7 л', 1, 199.9),
  (1001, 2, 'Tea towel', 2, 25),
  (1002, 1, 'Postcard', 10, 1.5),
  (1003, 1, 'Harbour crane (model 1:1)', 1, 1234567.89),
  (1004, 1, 'Returned goods', -1, 5.25),
  (1005, 1, 'Sticker', 1, 0.01);
