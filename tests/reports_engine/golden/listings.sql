-- Two taxpayers, one without a file; sell methods stored by number, by
-- name and as "not selected".
INSERT INTO "Usage" VALUES (3);
INSERT INTO "Client Report" VALUES
  ('Zed Adams', 'Adams, Zed', 'ADA01', 'Zed Adams', '2023-12-31', 'ADA0101.mdb', NULL),
  ('Bob Brown', 'Brown, Bob', 'BRO01', 'Bob Brown Estate', NULL, 'BRO0101.mdb', 'Taxpayer File Missing');
INSERT INTO "Portfolio Report" VALUES ('Retirement', 'IRA account ', 'ADA01'), ('Brokerage', ' ', 'ADA01');
INSERT INTO "Sec List Report" VALUES ('Retirement', 'XYZ', 'Xyz Income Fund', '123456789', ' ', '2'),
  ('Brokerage', 'XYZ', 'Xyz Income Fund', '123456789', 'held in street name ', 'FIFO'),
  ('Brokerage', 'ABC', 'Abc Growth Fund', 'NO CUSIP', ' ', '255');
