INSERT INTO "Usage" VALUES (1);
INSERT INTO "BA Info" VALUES ('Mary Major', 'MAJ01', ' ', '2024-06-30', 'Security');
