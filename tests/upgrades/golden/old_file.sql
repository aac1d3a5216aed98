-- A Taxpayer File from before the per-symbol sell method. Zeta's IBM is
-- the older row, so its method wins over Alpha's.
DROP TABLE "Sell Method";
ALTER TABLE "Security" ADD COLUMN "Sell Method" INTEGER;
INSERT INTO "Portfolio" ("Port Name", "2nd Line") VALUES ('Zeta', ' '), ('Alpha', ' ');
INSERT INTO "Security" ("Sec Symbol", "Port Name", "2nd Line", "Sell Method")
  VALUES ('IBM', 'Zeta', ' ', 3), ('MSFT', 'Zeta', ' ', 0), ('IBM', 'Alpha', ' ', 1),
         ('T', 'Alpha', ' ', NULL);
INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (2, '01/02/1996-1', '1996-01-02');
