-- Partitions by range, by list and of the rest, one of them divided again, with keys that go both ways, and a trigger whose
-- states differ between them.
-- options: --triggers off
-- fires: sales
-- changes: journal
CREATE TABLE regions (code text PRIMARY KEY, best_sale integer, best_day date);
CREATE TABLE sales (id integer, day date, region text REFERENCES regions, PRIMARY KEY (id, day)) PARTITION BY RANGE (day);
CREATE TABLE sales_2023 PARTITION OF sales FOR VALUES FROM ('2023-01-01') TO ('2024-01-01');
CREATE TABLE sales_2024 PARTITION OF sales FOR VALUES FROM ('2024-01-01') TO ('2025-01-01');
CREATE TABLE sales_rest PARTITION OF sales DEFAULT;
CREATE TABLE visits (place text, n integer) PARTITION BY LIST (place);
CREATE TABLE visits_known PARTITION OF visits FOR VALUES IN ('a', 'b') PARTITION BY RANGE (n);
CREATE TABLE visits_few (n integer, place text);
ALTER TABLE visits_known ATTACH PARTITION visits_few FOR VALUES FROM (0) TO (10);
CREATE TABLE visits_many PARTITION OF visits_known DEFAULT;
CREATE TABLE visits_other PARTITION OF visits DEFAULT;
CREATE TABLE notes (id integer PRIMARY KEY, sale integer, day date, FOREIGN KEY (sale, day) REFERENCES sales);
CREATE TABLE journal (entry text);
CREATE TRIGGER noted AFTER INSERT OR DELETE ON sales FOR EACH ROW EXECUTE FUNCTION note();
-- before
CREATE FUNCTION note() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN
  INSERT INTO journal VALUES (TG_TABLE_NAME || ' ' || TG_OP);
  RETURN NULL;
END $$;
-- rows
INSERT INTO regions VALUES ('north', 2, '2024-06-01'), ('south', NULL, NULL);
INSERT INTO sales VALUES (1, '2023-05-01', 'north'), (2, '2024-06-01', 'north'), (3, '1900-01-01', 'south');
INSERT INTO visits VALUES ('a', 1), ('b', 70), ('z', 1), (NULL, 5);
INSERT INTO notes VALUES (1, 2, '2024-06-01'), (2, NULL, NULL);
-- other rows
INSERT INTO regions VALUES ('north', 2, '2023-06-01'), ('east', NULL, NULL);
INSERT INTO sales VALUES (2, '2023-06-01', 'east'), (9, '2024-06-01', 'north');
INSERT INTO visits VALUES ('b', 2), ('y', 9);
INSERT INTO notes VALUES (1, 2, '2023-06-01');
-- after
ALTER TABLE regions ADD CONSTRAINT best FOREIGN KEY (best_sale, best_day) REFERENCES sales;
ALTER TABLE sales_2023 DISABLE TRIGGER noted;
ALTER TABLE sales_2024 ENABLE ALWAYS TRIGGER noted;
