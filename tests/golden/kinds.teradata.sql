--drop table "Qorv_TMP_a table name longer t";
create table "Qorv_TMP_a table name longer t"(id VARCHAR(20), score FLOAT(53),
"R_Age in.years" FLOAT(53),
R_rate FLOAT(53),
"R_job-type" FLOAT(53),
R_size FLOAT(53),
R_records FLOAT(53),
"R_Age in.years" FLOAT(53),
"R_a field name that is longer than 31" FLOAT(53));
insert into "Qorv_TMP_a table name longer t"(id,"R_Age in.years",R_rate,"R_job-type",R_size,R_records,"R_Age in.years","R_a field name that is longer than 31",score)
 SELECT id,(CASE WHEN ("Age in.years" IS NULL) THEN 0.2
   WHEN "Age in.years"<18 THEN -0.4
   WHEN "Age in.years">65.5 THEN 1
   WHEN "Age in.years"<=65.5 THEN 0.666666666666667
   ELSE 0.2
   END ) AS "R_Age in.years"
,(CASE WHEN (rate IS NULL) THEN 0
   WHEN rate<2.5 THEN 1e+18
   WHEN rate>2.5 THEN -1e-05
   ELSE 0
   END ) AS R_rate
,(CASE WHEN ( "job-type" IS NULL OR "job-type"='') THEN 0
   WHEN "job-type"='5" pipe' THEN 0
   WHEN "job-type"='clerk' THEN 0
   WHEN "job-type"='it\'s' THEN 0
   WHEN "job-type"='1' THEN 0
   ELSE 0
   END) AS "R_job-type"
,(CASE WHEN ( size IS NULL OR size='') THEN 0
   WHEN size='1' THEN -1.875
   WHEN size='2.5' THEN 1.875
   WHEN size='10' THEN -0.125
   ELSE 0
   END) AS R_size
,(CASE WHEN ( records IS NULL) THEN -7
   WHEN records=0 THEN 3.33333333333333
   WHEN records=1 THEN -1e-06
   ELSE -7
   END) AS R_records
,(CASE WHEN ("Age in.years" IS NULL) THEN 0
   WHEN "Age in.years"<10 THEN -1.25
   WHEN "Age in.years">50 THEN -5
   WHEN "Age in.years"<=40 THEN -2.5
   WHEN "Age in.years"<=50 THEN -3.75
   ELSE 0
   END ) AS "R_Age in.years"
,(CASE WHEN ( "a field name that is longer than 31" IS NULL OR "a field name that is longer than 31"='') THEN 0
   WHEN "a field name that is longer than 31"='straße' THEN 5.76460752303423e+17
   ELSE 0
   END) AS "R_a field name that is longer than 31"
, 0 as score FROM src;

COLLECT STATISTICS ON "Qorv_TMP_a table name longer t" INDEX (id);
insert into "a table name longer than thirt"(id,"p c")
 select id, (CASE 
   WHEN "Qorv_TMP_a table name longer t".score>3 THEN 0.9
   WHEN "Qorv_TMP_a table name longer t".score<-2 THEN 0.01
   WHEN "Qorv_TMP_a table name longer t".score>2 THEN 0.9
   WHEN "Qorv_TMP_a table name longer t".score>1 THEN -0.133333333333333+"Qorv_TMP_a table name longer t".score*0.466666666666667
   WHEN "Qorv_TMP_a table name longer t".score>-0.5 THEN 0.277777777777778+"Qorv_TMP_a table name longer t".score*0.0555555555555555
   ELSE 0
   END ) AS "p c"
  from "Qorv_TMP_a table name longer t";
