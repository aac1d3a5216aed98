-- The basis run of John Doe for 2023: ABC (FIFO, one lot, part sold long
-- term; its Income lot has no rows and is not shown), XYZ (single-category
-- average, sold out short term, with its pool) and MMM (double-category
-- average, no rows of its own). Money in ten-thousandths.
INSERT INTO "Usage" VALUES (12);
INSERT INTO "BA Info" VALUES ('John Doe', 'DOE01', 'John Doe Family Trust', '2023-12-31', 'Taxpayer');
INSERT INTO "BA Secs" VALUES ('ABC', 'Abc Growth Fund', 'FIFO', 60.0, 6060000, 10.1),
  ('XYZ', 'Xyz Income Fund', 'Average Cost - Single Cat.', 0.0, 0, 0.0),
  ('MMM', 'Mmm Money Fund', 'Average Cost - Double Cat.', 1234.56789, 123456700, 10.0000081);
INSERT INTO "BA Blocks" VALUES (1, 'XYZ', 'ZZZZZZZZZZZZZZZZZZZZ', 'Average Cost', '1900-01-01'),
  (2, 'ABC', 'Growth', '01/03/2022-1', '2022-01-03'), (3, 'XYZ', 'Growth', '02/01/2023-1', '2023-02-01'),
  (4, 'ABC', 'Income', '05/05/2023-1', '2023-05-05');
INSERT INTO "BA Trans" VALUES
  (1, 2, 0, 'Buy', '2022-01-03', '2022-01-03', 100.0, 0, 100.0, 10100000, 10100000, 100000, 10.1),
  (2, 2, 1, 'Sell', '2023-06-01', '2023-06-01', -40.0, 6000000, 60.0, -4040000, 6060000, 50000, 10.1),
  (3, 3, 0, 'Buy', '2023-02-01', '2023-02-01', 50.0, 0, 50.0, 5000000, 5000000, 0, 10.0),
  (4, 3, 1, 'Sell', '2023-09-01', '2023-09-01', -50.0, 4500000, 0.0, -5000000, 0, 50000, 0.0),
  (5, 1, 10, 'Buy', '2023-02-01', '2023-02-01', 50.0, 0, 50.0, 5000000, 5000000, 0, 10.0),
  (6, 1, 40, 'Sell', '2023-09-01', '2023-09-01', -50.0, 4500000, 0.0, -5000000, 0, 50000, 0.0);
INSERT INTO "Sched D" VALUES ('2022-01-03', '2023-06-01', 40.0, 'ABC', 6000000, 4090000, 1910000, 1),
  ('2023-02-01', '2023-09-01', 30.0, 'XYZ', 2700000, 3030000, -330000, 0),
  ('2023-02-01', '2023-09-15', 20.0, 'XYZ', 1800000, 2020000, -220000, 0);
