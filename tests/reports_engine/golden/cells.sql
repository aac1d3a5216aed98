-- A portfolio whose name holds "|", one security under it, one not.
INSERT INTO "TL Port" VALUES ('A|B');
INSERT INTO "TL Sec" VALUES ('A|B', 'A very long security name that cannot fit', 'X', 1);
INSERT INTO "TL Sec" VALUES ('Other', 'Not under A|B', 'Y', 2);
