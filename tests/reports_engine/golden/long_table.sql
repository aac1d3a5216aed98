-- 120 securities: three pages of the summary.
INSERT INTO "Usage" VALUES (5);
INSERT INTO "BA Info" VALUES ('John Doe', 'DOE01', ' ', '2023-12-31', 'Taxpayer');
WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 119)
INSERT INTO "BA Secs" SELECT printf('S%03d', i), 'Fund ' || i, 'FIFO', 1.0, 10000, 1.0 FROM n;
