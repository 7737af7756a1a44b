-- The installation on disk, layout 3. Statements are separated by empty lines.
--
-- Who writes does not matter: the triggers note every change in "changes", one row for each
-- affected item, scenario, thermostat, element or user, in the writer's own transaction. They also
-- take out what hangs on a deleted row, because an SQL shell does not enforce foreign keys unless
-- it is told to, and a grant must not outlive its user.
--
-- Names are ruled as in contract/database/name_rules.h. A constraint's name is what an SQL shell
-- answers when it is broken, and why a migration set a row aside. GLOB and length() end at a NUL.

-- What a migration could not take over: the row as JSON, and why. Nothing reads it but people.
-- The first table, so that what was set aside before is taken over before anything is added.
CREATE TABLE set_aside (
    id INTEGER PRIMARY KEY,
    tab TEXT NOT NULL,
    content TEXT NOT NULL,
    reason TEXT NOT NULL);

-- topic: of the installation, empty for none; imported: when an import was last committed
CREATE TABLE meta (
    key TEXT NOT NULL PRIMARY KEY CHECK (key IN ('topic', 'imported')),
    value TEXT NOT NULL CONSTRAINT "value must be text without NUL"
        CHECK (typeof(value) = 'text' AND instr(value, char(0)) = 0),
    CONSTRAINT "topic: levels of 0-9 a-z A-Z . _ - joined by /, not api first, without request"
        CHECK (key <> 'topic' OR (length(value) <= 256
               AND value NOT GLOB '*[^0-9a-zA-Z._/-]*' AND instr(value, 'request') = 0
               AND value NOT GLOB '/*' AND value NOT GLOB '*/' AND instr(value, '//') = 0
               AND value || '/' NOT GLOB 'api/*')));

-- What clients may write: nothing (writable 0), numbers from min to max, in whole steps; NULL: any.
CREATE TABLE items (
    id TEXT NOT NULL PRIMARY KEY
        CONSTRAINT "id must be 1 to 64 of the characters 0-9 a-z A-Z . _ -, without request"
        CHECK (typeof(id) = 'text' AND length(id) BETWEEN 1 AND 64 AND instr(id, char(0)) = 0
               AND id NOT GLOB '*[^0-9a-zA-Z._-]*' AND instr(id, 'request') = 0),
    value TEXT NOT NULL DEFAULT '' CONSTRAINT "value must be text without NUL"
        CHECK (typeof(value) = 'text' AND instr(value, char(0)) = 0),
    writable INTEGER NOT NULL DEFAULT 1 CONSTRAINT "writable must be 0 or 1"
        CHECK (writable IN (0, 1)),
    min REAL CONSTRAINT "min must be a number"
        CHECK (min IS NULL OR (typeof(min) = 'real' AND abs(min) < 9e999)),
    max REAL CONSTRAINT "max must be a number"
        CHECK (max IS NULL OR (typeof(max) = 'real' AND abs(max) < 9e999)),
    step REAL CONSTRAINT "step must be a number above 0"
        CHECK (step IS NULL OR (typeof(step) = 'real' AND step > 0 AND step < 9e999)),
    CONSTRAINT "min must not be above max" CHECK (min <= max));

CREATE TABLE scenarios (
    id TEXT NOT NULL PRIMARY KEY
        CONSTRAINT "id must be 1 to 64 of the characters 0-9 a-z A-Z . _ -, without request"
        CHECK (typeof(id) = 'text' AND length(id) BETWEEN 1 AND 64 AND instr(id, char(0)) = 0
               AND id NOT GLOB '*[^0-9a-zA-Z._-]*' AND instr(id, 'request') = 0),
    execution INTEGER NOT NULL DEFAULT 0 CHECK (execution IN (0, 1)));

CREATE TABLE thermostats (
    id TEXT NOT NULL PRIMARY KEY
        CONSTRAINT "id must be 1 to 64 of the characters 0-9 a-z A-Z . _ -, without request"
        CHECK (typeof(id) = 'text' AND length(id) BETWEEN 1 AND 64 AND instr(id, char(0)) = 0
               AND id NOT GLOB '*[^0-9a-zA-Z._-]*' AND instr(id, 'request') = 0),
    id_actual TEXT REFERENCES items (id) ON DELETE SET NULL ON UPDATE CASCADE,
    id_windows_contact TEXT REFERENCES items (id) ON DELETE SET NULL ON UPDATE CASCADE);

CREATE TABLE thermostat_ids (
    thermostat TEXT NOT NULL REFERENCES thermostats (id) ON DELETE CASCADE ON UPDATE CASCADE,
    key TEXT NOT NULL CONSTRAINT "key must be text without NUL, and not empty"
        CHECK (typeof(key) = 'text' AND key <> '' AND instr(key, char(0)) = 0),
    item TEXT REFERENCES items (id) ON DELETE SET NULL ON UPDATE CASCADE,
    PRIMARY KEY (thermostat, key)) WITHOUT ROWID;

CREATE TABLE elements (
    id TEXT NOT NULL PRIMARY KEY
        CONSTRAINT "id must be 1 to 64 of the characters 0-9 a-z A-Z . _ -, without request"
        CHECK (typeof(id) = 'text' AND length(id) BETWEEN 1 AND 64 AND instr(id, char(0)) = 0
               AND id NOT GLOB '*[^0-9a-zA-Z._-]*' AND instr(id, 'request') = 0),
    name TEXT NOT NULL DEFAULT '' CONSTRAINT "name must be text without NUL"
        CHECK (typeof(name) = 'text' AND instr(name, char(0)) = 0),
    type INTEGER NOT NULL CHECK (type BETWEEN -2147483648 AND 2147483647),
    flags INTEGER NOT NULL DEFAULT 0 CHECK (flags BETWEEN -2147483648 AND 2147483647),
    scenario TEXT REFERENCES scenarios (id) ON DELETE SET NULL ON UPDATE CASCADE,
    thermostat TEXT REFERENCES thermostats (id) ON DELETE SET NULL ON UPDATE CASCADE);

CREATE TABLE functions (
    element TEXT NOT NULL REFERENCES elements (id) ON DELETE CASCADE ON UPDATE CASCADE,
    name TEXT NOT NULL CONSTRAINT "name must be text without NUL, and not empty"
        CHECK (typeof(name) = 'text' AND name <> '' AND instr(name, char(0)) = 0),
    item TEXT REFERENCES items (id) ON DELETE SET NULL ON UPDATE CASCADE,
    PRIMARY KEY (element, name)) WITHOUT ROWID;

CREATE TABLE users (
    id TEXT NOT NULL PRIMARY KEY
        CONSTRAINT "id must be 1 to 64 of the characters 0-9 a-z A-Z . _ -, without request"
        CHECK (typeof(id) = 'text' AND length(id) BETWEEN 1 AND 64 AND instr(id, char(0)) = 0
               AND id NOT GLOB '*[^0-9a-zA-Z._-]*' AND instr(id, 'request') = 0),
    username TEXT NOT NULL UNIQUE
        CONSTRAINT "username must be 1 to 64 of the characters 0-9 a-z A-Z . _ -, without request"
        CHECK (typeof(username) = 'text' AND length(username) BETWEEN 1 AND 64
               AND instr(username, char(0)) = 0 AND username NOT GLOB '*[^0-9a-zA-Z._-]*'
               AND instr(username, 'request') = 0),
    password_hash TEXT NOT NULL CONSTRAINT "password_hash must be text without NUL"
        CHECK (typeof(password_hash) = 'text' AND instr(password_hash, char(0)) = 0));

-- bits: 1 read, 2 write; no row: denied
CREATE TABLE permissions (
    user TEXT NOT NULL REFERENCES users (id) ON DELETE CASCADE ON UPDATE CASCADE,
    element TEXT NOT NULL REFERENCES elements (id) ON DELETE CASCADE ON UPDATE CASCADE,
    bits INTEGER NOT NULL CHECK (bits BETWEEN 1 AND 3),
    PRIMARY KEY (user, element)) WITHOUT ROWID;

-- AUTOINCREMENT: a number must not come back after its row was read and deleted.
CREATE TABLE changes (
    sequence INTEGER PRIMARY KEY AUTOINCREMENT,
    tab TEXT NOT NULL,
    key TEXT NOT NULL);

CREATE INDEX functions_item ON functions (item);

CREATE INDEX thermostat_ids_item ON thermostat_ids (item);

CREATE INDEX thermostats_id_actual ON thermostats (id_actual);

CREATE INDEX thermostats_id_windows_contact ON thermostats (id_windows_contact);

CREATE INDEX elements_scenario ON elements (scenario);

CREATE INDEX elements_thermostat ON elements (thermostat);

CREATE INDEX permissions_element ON permissions (element);

CREATE TRIGGER meta_inserted AFTER INSERT ON meta WHEN NEW.key = 'topic' BEGIN
    INSERT INTO changes (tab, key) VALUES ('meta', NEW.key);
END;

CREATE TRIGGER meta_updated AFTER UPDATE ON meta
WHEN 'topic' IN (OLD.key, NEW.key) AND (OLD.key IS NOT NEW.key OR OLD.value IS NOT NEW.value) BEGIN
    INSERT INTO changes (tab, key) VALUES ('meta', 'topic');
END;

CREATE TRIGGER meta_deleted AFTER DELETE ON meta WHEN OLD.key = 'topic' BEGIN
    INSERT INTO changes (tab, key) VALUES ('meta', OLD.key);
END;

CREATE TRIGGER items_inserted AFTER INSERT ON items BEGIN
    INSERT INTO changes (tab, key) VALUES ('items', NEW.id);
END;

CREATE TRIGGER items_updated AFTER UPDATE ON items WHEN OLD.value IS NOT NEW.value BEGIN
    INSERT INTO changes (tab, key) VALUES ('items', NEW.id);
END;

-- Apart from the value: the server may hold a newer one that it has not saved yet.
CREATE TRIGGER items_limits AFTER UPDATE ON items
WHEN OLD.writable IS NOT NEW.writable OR OLD.min IS NOT NEW.min OR OLD.max IS NOT NEW.max
    OR OLD.step IS NOT NEW.step BEGIN
    INSERT INTO changes (tab, key) VALUES ('limits', NEW.id);
END;

CREATE TRIGGER items_renamed AFTER UPDATE OF id ON items WHEN OLD.id IS NOT NEW.id BEGIN
    INSERT INTO changes (tab, key) VALUES ('items', OLD.id), ('items', NEW.id);
END;

CREATE TRIGGER items_deleting BEFORE DELETE ON items BEGIN
    UPDATE functions SET item = NULL WHERE item = OLD.id;
    UPDATE thermostat_ids SET item = NULL WHERE item = OLD.id;
    UPDATE thermostats SET id_actual = NULL WHERE id_actual = OLD.id;
    UPDATE thermostats SET id_windows_contact = NULL WHERE id_windows_contact = OLD.id;
    INSERT INTO changes (tab, key) VALUES ('items', OLD.id);
END;

CREATE TRIGGER scenarios_inserted AFTER INSERT ON scenarios BEGIN
    INSERT INTO changes (tab, key) VALUES ('scenarios', NEW.id);
END;

CREATE TRIGGER scenarios_updated AFTER UPDATE ON scenarios
WHEN OLD.execution IS NOT NEW.execution BEGIN
    INSERT INTO changes (tab, key) VALUES ('scenarios', NEW.id);
END;

CREATE TRIGGER scenarios_renamed AFTER UPDATE OF id ON scenarios WHEN OLD.id IS NOT NEW.id BEGIN
    INSERT INTO changes (tab, key) VALUES ('scenarios', OLD.id), ('scenarios', NEW.id);
END;

CREATE TRIGGER scenarios_deleting BEFORE DELETE ON scenarios BEGIN
    UPDATE elements SET scenario = NULL WHERE scenario = OLD.id;
    INSERT INTO changes (tab, key) VALUES ('scenarios', OLD.id);
END;

CREATE TRIGGER thermostats_inserted AFTER INSERT ON thermostats BEGIN
    INSERT INTO changes (tab, key) VALUES ('thermostats', NEW.id);
END;

CREATE TRIGGER thermostats_updated AFTER UPDATE ON thermostats
WHEN OLD.id_actual IS NOT NEW.id_actual OR OLD.id_windows_contact IS NOT NEW.id_windows_contact
BEGIN
    INSERT INTO changes (tab, key) VALUES ('thermostats', NEW.id);
END;

CREATE TRIGGER thermostats_renamed AFTER UPDATE OF id ON thermostats
WHEN OLD.id IS NOT NEW.id BEGIN
    INSERT INTO changes (tab, key) VALUES ('thermostats', OLD.id), ('thermostats', NEW.id);
END;

CREATE TRIGGER thermostats_deleting BEFORE DELETE ON thermostats BEGIN
    DELETE FROM thermostat_ids WHERE thermostat = OLD.id;
    UPDATE elements SET thermostat = NULL WHERE thermostat = OLD.id;
    INSERT INTO changes (tab, key) VALUES ('thermostats', OLD.id);
END;

CREATE TRIGGER thermostat_ids_inserted AFTER INSERT ON thermostat_ids BEGIN
    INSERT INTO changes (tab, key) VALUES ('thermostats', NEW.thermostat);
END;

CREATE TRIGGER thermostat_ids_updated AFTER UPDATE ON thermostat_ids
WHEN OLD.thermostat IS NOT NEW.thermostat OR OLD.key IS NOT NEW.key OR OLD.item IS NOT NEW.item
BEGIN
    INSERT INTO changes (tab, key)
        SELECT 'thermostats', OLD.thermostat UNION SELECT 'thermostats', NEW.thermostat;
END;

CREATE TRIGGER thermostat_ids_deleted AFTER DELETE ON thermostat_ids BEGIN
    INSERT INTO changes (tab, key) VALUES ('thermostats', OLD.thermostat);
END;

CREATE TRIGGER elements_inserted AFTER INSERT ON elements BEGIN
    INSERT INTO changes (tab, key) VALUES ('elements', NEW.id);
END;

CREATE TRIGGER elements_updated AFTER UPDATE ON elements
WHEN OLD.name IS NOT NEW.name OR OLD.type IS NOT NEW.type OR OLD.flags IS NOT NEW.flags
    OR OLD.scenario IS NOT NEW.scenario OR OLD.thermostat IS NOT NEW.thermostat BEGIN
    INSERT INTO changes (tab, key) VALUES ('elements', NEW.id);
END;

CREATE TRIGGER elements_renamed AFTER UPDATE OF id ON elements WHEN OLD.id IS NOT NEW.id BEGIN
    UPDATE functions SET element = NEW.id WHERE element = OLD.id;
    UPDATE permissions SET element = NEW.id WHERE element = OLD.id;
    INSERT INTO changes (tab, key) VALUES ('elements', OLD.id), ('elements', NEW.id);
END;

CREATE TRIGGER elements_deleting BEFORE DELETE ON elements BEGIN
    DELETE FROM functions WHERE element = OLD.id;
    DELETE FROM permissions WHERE element = OLD.id;
    INSERT INTO changes (tab, key) VALUES ('elements', OLD.id);
END;

CREATE TRIGGER functions_inserted AFTER INSERT ON functions BEGIN
    INSERT INTO changes (tab, key) VALUES ('elements', NEW.element);
END;

CREATE TRIGGER functions_updated AFTER UPDATE ON functions
WHEN OLD.element IS NOT NEW.element OR OLD.name IS NOT NEW.name OR OLD.item IS NOT NEW.item BEGIN
    INSERT INTO changes (tab, key)
        SELECT 'elements', OLD.element UNION SELECT 'elements', NEW.element;
END;

CREATE TRIGGER functions_deleted AFTER DELETE ON functions BEGIN
    INSERT INTO changes (tab, key) VALUES ('elements', OLD.element);
END;

-- An INSERT OR REPLACE that takes over another user's name deletes that user without a trigger.
CREATE TRIGGER users_inserting BEFORE INSERT ON users BEGIN
    DELETE FROM permissions WHERE user IN
        (SELECT id FROM users WHERE username = NEW.username AND id <> NEW.id);
    INSERT INTO changes (tab, key)
        SELECT 'users', id FROM users WHERE username = NEW.username AND id <> NEW.id;
END;

CREATE TRIGGER users_inserted AFTER INSERT ON users BEGIN
    INSERT INTO changes (tab, key) VALUES ('users', NEW.id);
    INSERT INTO changes (tab, key)
        SELECT 'elements', element FROM permissions WHERE user = NEW.id;
END;

CREATE TRIGGER users_updated AFTER UPDATE ON users
WHEN OLD.id IS NOT NEW.id OR OLD.username IS NOT NEW.username BEGIN
    UPDATE permissions SET user = NEW.id WHERE user = OLD.id;
    INSERT INTO changes (tab, key)
        SELECT 'users', OLD.id UNION SELECT 'users', NEW.id;
    INSERT INTO changes (tab, key)
        SELECT 'elements', element FROM permissions WHERE user IN (OLD.id, NEW.id);
END;

CREATE TRIGGER users_password AFTER UPDATE OF password_hash ON users
WHEN OLD.password_hash IS NOT NEW.password_hash BEGIN
    INSERT INTO changes (tab, key) VALUES ('passwords', NEW.id);
END;

CREATE TRIGGER users_deleting BEFORE DELETE ON users BEGIN
    DELETE FROM permissions WHERE user = OLD.id;
    INSERT INTO changes (tab, key) VALUES ('users', OLD.id);
END;

CREATE TRIGGER permissions_inserted AFTER INSERT ON permissions BEGIN
    INSERT INTO changes (tab, key) VALUES ('elements', NEW.element);
END;

CREATE TRIGGER permissions_updated AFTER UPDATE ON permissions
WHEN OLD.user IS NOT NEW.user OR OLD.element IS NOT NEW.element OR OLD.bits IS NOT NEW.bits BEGIN
    INSERT INTO changes (tab, key)
        SELECT 'elements', OLD.element UNION SELECT 'elements', NEW.element;
END;

CREATE TRIGGER permissions_deleted AFTER DELETE ON permissions BEGIN
    INSERT INTO changes (tab, key) VALUES ('elements', OLD.element);
END;
