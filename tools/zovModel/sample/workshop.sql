-- A small workshop: what it keeps, what it buys and from whom.
--
-- Three tables describe the same things ever more closely, and share one primary key: each Item may be a Part, and
-- each Part may be a MachinedPart. `zovModel list --inherit` makes derived classes of them.

BEGIN;

-- Everything that has a place on a shelf.
CREATE TABLE Item (
    itemNo      INTEGER PRIMARY KEY,
    name        VARCHAR(80) NOT NULL,
    shelf       CHAR(6),
    addedOn     DATE NOT NULL,
    isRetired   BOOLEAN NOT NULL DEFAULT 0
);

-- Items with a size: sheets, bars, screws, and whatever is made of them.
CREATE TABLE Part (
    itemNo      INTEGER PRIMARY KEY REFERENCES Item (itemNo),
    width       DOUBLE NOT NULL,              -- millimetres
    height      DOUBLE NOT NULL,
    material    VARCHAR(40) NOT NULL,
    area        DOUBLE AS (width * height / 1e6), -- square metres
    weight      DOUBLE
);

-- Parts that are made here, on a machine.
CREATE TABLE MachinedPart (
    itemNo      INTEGER PRIMARY KEY REFERENCES Part (itemNo),
    drawing     VARCHAR(20) NOT NULL UNIQUE,
    tolerance   DOUBLE NOT NULL,
    program     BLOB                          -- for the milling machine
);

-- Items with an edge that wears off.
CREATE TABLE Tool (
    itemNo      INTEGER PRIMARY KEY REFERENCES Item (itemNo),
    sharpenedAt TIMESTAMP,
    price       MONEY                         -- no type that SQLite knows
);

CREATE TABLE Supplier (
    code        CHAR(8) NOT NULL PRIMARY KEY,
    name        VARCHAR(80) NOT NULL UNIQUE,
    phone       VARCHAR(30)
);

-- What is ordered from a supplier, and when.
CREATE TABLE PurchaseOrder (
    orderNo     INTEGER PRIMARY KEY,
    supplier    CHAR(8) NOT NULL REFERENCES Supplier (code),
    orderedAt   TIMESTAMP NOT NULL DEFAULT CURRENT_TIMESTAMP,
    remark      TEXT
);

-- The lines of an order, identified by the order and their number in it.
CREATE TABLE OrderLine (
    orderNo     INTEGER NOT NULL REFERENCES PurchaseOrder (orderNo) ON DELETE CASCADE,
    lineNo      INTEGER NOT NULL,
    item        INTEGER NOT NULL REFERENCES Item (itemNo),
    quantity    DECIMAL(8, 2) NOT NULL DEFAULT 1,
    PRIMARY KEY (orderNo, lineNo)
);

-- Lines that have arrived: the same compound key, so a special case of OrderLine.
CREATE TABLE DeliveredLine (
    orderNo     INTEGER NOT NULL,
    lineNo      INTEGER NOT NULL,
    arrivedOn   DATE NOT NULL,
    PRIMARY KEY (orderNo, lineNo),
    FOREIGN KEY (orderNo, lineNo) REFERENCES OrderLine (orderNo, lineNo)
);

-- What is still under way.
CREATE VIEW OpenLine AS
    SELECT OrderLine.orderNo, OrderLine.lineNo, Item.name, OrderLine.quantity
    FROM OrderLine
    JOIN Item ON Item.itemNo = OrderLine.item
    LEFT JOIN DeliveredLine USING (orderNo, lineNo)
    WHERE DeliveredLine.orderNo IS NULL;

INSERT INTO Item VALUES
    (1, 'steel sheet', 'A1', '2024-02-12', 0),
    (2, 'bracket', 'B4', '2024-03-01', 0),
    (3, 'milling cutter', 'T2', '2023-11-20', 0);
INSERT INTO Part VALUES (1, 2000, 1000, 'steel', 15.7), (2, 80, 40, 'steel', 0.12);
INSERT INTO MachinedPart (itemNo, drawing, tolerance) VALUES (2, 'BR-0080', 0.05);
INSERT INTO Tool VALUES (3, '2024-04-02 16:30:00', '48.50');
INSERT INTO Supplier VALUES ('HOLM', 'Holm Steel', '+45 0000 0000');
INSERT INTO PurchaseOrder VALUES (1, 'HOLM', '2024-02-01 09:15:00', NULL);
INSERT INTO OrderLine VALUES (1, 1, 1, 4), (1, 2, 3, 1);
INSERT INTO DeliveredLine VALUES (1, 1, '2024-02-12');

COMMIT;
