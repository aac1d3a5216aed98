-- The Schedule D as the run leaves it (money in ten-thousandths): GONE has
-- no "BA Secs" row, ACME is listed twice, Q's sale has no dates.
INSERT INTO "BA Secs" ("Sec Symbol", "Sec Name") VALUES ('ACME', 'ACME FUND'), ('XYZ', ''),
  ('', ''), ('Q', 'ACME "A" CLASS  '), ('ACME', 'ACME FUND');
INSERT INTO "Sched D" ("Date Acqrd", "Date Sold", "Shares", "Sec Symbol", "Sale Price", "Cost")
VALUES ('2020-02-29', '2024-12-31', 100, 'ACME', 12345000, 10002500),
  ('2020-02-29', '2024-12-31', 2, 'GONE', 100000, 50000),
  ('2020-02-29', '2024-12-31', 12.5, 'XYZ', 999900, 1000000),
  ('2020-02-29', '2024-12-31', 7, '', 10000, 20000),
  (NULL, NULL, 3, 'Q', 0, -100),
  ('2020-02-29', '2024-12-31', 0.33333, 'ACME', 10001, 5000);
