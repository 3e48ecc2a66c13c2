-- Places and roads with an R*Tree each that triggers keep, as GeoPackage has them; those of roads call functions that only
-- programs for maps have.
-- options: --triggers off
-- refused: ST_MinX
CREATE TABLE gpkg_contents (table_name TEXT NOT NULL PRIMARY KEY, data_type TEXT NOT NULL, identifier TEXT UNIQUE,
  last_change DATETIME NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%fZ', 'now')), min_x DOUBLE, srs_id INTEGER);
CREATE TABLE gpkg_geometry_columns (table_name TEXT NOT NULL, column_name TEXT NOT NULL, geometry_type_name TEXT,
  CONSTRAINT pk_geom_cols PRIMARY KEY (table_name, column_name),
  CONSTRAINT fk_gc_tn FOREIGN KEY (table_name) REFERENCES gpkg_contents (table_name));
CREATE TABLE places (fid INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, name TEXT(40), geom BLOB);
CREATE TABLE roads (fid INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, geom BLOB);
CREATE VIRTUAL TABLE rtree_places_geom USING rtree(id, minx, maxx, miny, maxy);
CREATE VIRTUAL TABLE rtree_roads_geom USING rtree(id, minx, maxx, miny, maxy, +name TEXT);
CREATE TRIGGER rtree_places_geom_insert AFTER INSERT ON places WHEN NEW.geom NOTNULL BEGIN
  INSERT OR REPLACE INTO rtree_places_geom VALUES (NEW.fid, 1, 2, 3, length(NEW.geom) + 4);
END;
CREATE TRIGGER rtree_places_geom_delete AFTER DELETE ON places WHEN OLD.geom NOTNULL BEGIN
  DELETE FROM rtree_places_geom WHERE id = OLD.fid;
END;
-- rows
INSERT INTO gpkg_contents VALUES ('places', 'features', 'Places', '2024-05-01T12:00:00.000Z', -180.5, 4326),
  ('roads', 'features', NULL, '2024-05-01T12:00:00.123Z', NULL, 0);
INSERT INTO gpkg_geometry_columns VALUES ('places', 'geom', 'POINT'), ('roads', 'geom', 'LINESTRING');
INSERT INTO places VALUES (1, 'Здесь', x'47500001'), (2, NULL, NULL), (7, '', x'00');
INSERT INTO roads VALUES (3, x'4750FF');
INSERT INTO rtree_roads_geom VALUES (3, 0.5, 1.25, -1, 1, 'main');
-- other rows
INSERT INTO places VALUES (1, 'other', x'01'), (9, 'other', x'0102');
INSERT INTO roads VALUES (4, x'01');
INSERT INTO rtree_roads_geom VALUES (3, 7, 8, 7, 8, 'other');
-- after
CREATE TRIGGER rtree_roads_geom_insert AFTER INSERT ON roads WHEN NEW.geom NOTNULL BEGIN
  INSERT OR REPLACE INTO rtree_roads_geom VALUES (NEW.fid, ST_MinX(NEW.geom), ST_MaxX(NEW.geom), 0, 0, '');
END;
-- same
SELECT id FROM rtree_places_geom WHERE maxx >= 2 AND maxy > 5 ORDER BY id;
SELECT name FROM rtree_roads_geom WHERE minx < 1;
