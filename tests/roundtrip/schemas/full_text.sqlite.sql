-- Full-text tables of all kinds: with content of their own, over another table's content, without content.
-- options: --triggers off
-- fires: notes
-- left out: bare, over_notes, over_notes_4
CREATE TABLE notes (id INTEGER PRIMARY KEY, body TEXT, extra INTEGER);
CREATE VIRTUAL TABLE own USING fts5(title, body, tokenize = 'porter unicode61');
CREATE VIRTUAL TABLE own_4 USING fts4(title, body);
CREATE VIRTUAL TABLE over_notes USING fts5(body, content = 'notes', content_rowid = 'id');
CREATE VIRTUAL TABLE over_notes_4 USING fts4(content="notes", body);
CREATE VIRTUAL TABLE bare USING fts5(word, content = '');
CREATE TRIGGER notes_inserted AFTER INSERT ON notes BEGIN
  INSERT INTO over_notes (rowid, body) VALUES (NEW.id, NEW.body);
END;
CREATE TRIGGER notes_deleted AFTER DELETE ON notes BEGIN
  INSERT INTO over_notes (over_notes, rowid, body) VALUES ('delete', OLD.id, OLD.body);
END;
-- rows
INSERT INTO notes VALUES (1, 'red apples', 5), (4, 'green pears and apples', NULL), (9, NULL, 0);
INSERT INTO own (rowid, title, body) VALUES (3, 'walking', 'he walks'), (-8, NULL, ''), (70, 'Schön', 'они идут');
INSERT INTO own_4 (rowid, title, body) VALUES (5, 'one', 'two'), (2, '', NULL);
INSERT INTO over_notes_4 (over_notes_4) VALUES ('rebuild');
INSERT INTO bare (rowid, word) VALUES (1, 'alone');
-- other rows
INSERT INTO notes VALUES (1, 'blue plums', 1), (2, 'apples', 1);
INSERT INTO own (rowid, title, body) VALUES (3, 'other', 'other'), (4, 'walked', '');
INSERT INTO own_4 (rowid, title, body) VALUES (5, 'other', 'two');
INSERT INTO over_notes_4 (over_notes_4) VALUES ('rebuild');
-- same
SELECT rowid FROM own WHERE own MATCH 'walk' ORDER BY rowid;
SELECT rowid FROM own WHERE own MATCH 'schon OR идут OR other';
SELECT rowid FROM own_4 WHERE own_4 MATCH 'two';
SELECT rowid FROM over_notes WHERE over_notes MATCH 'apples' ORDER BY rowid;
SELECT rowid FROM over_notes WHERE over_notes MATCH 'plums OR blue';
SELECT docid FROM over_notes_4 WHERE over_notes_4 MATCH 'apples' ORDER BY docid;
