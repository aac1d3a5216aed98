-- A portfolio listing: "bonds" without securities, DEF and abd without
-- transactions, ABC's rows out of date order, and a row of no security.
INSERT INTO "Usage" VALUES (7);
INSERT INTO "TL Info" VALUES ('Jane Roe', 'ROE01', 'Jane Roe', '2023-01-01', '2023-12-31', 'Portfolio');
INSERT INTO "TL Port" VALUES ('Income'), ('bonds');
INSERT INTO "TL Sec" VALUES ('Income', 'Def | Co "Class A"', 'DEF', 42), ('Income', 'Abd Old Fund', 'abd', 43),
  ('Income', 'Abc Growth Fund', 'ABC', 41);
INSERT INTO "TL Trans" VALUES (41, '2023-07-01', 'Sell', -10.0, 0, 50000, 1500000),
  (41, '2023-03-01', 'Buy', 25.5, 2550000, 0, NULL),
  (41, '2023-08-01', 'Stock Split (1 to 2)', 15.5, 0, 0, NULL),
  (99, '2023-08-01', 'Buy', 1.0, 10000, 0, NULL);
