-- create table s.Qorv_TMP_Preds(id VARCHAR(20), score FLOAT(53),
"R_Age in.years" FLOAT(53),
R_rate FLOAT(53),
"R_job-type" FLOAT(53),
R_size FLOAT(53),
R_records FLOAT(53),
"R_Age in.years" FLOAT(53),
"R_a field name that is longer than 31" FLOAT(53));
delete from s.Qorv_TMP_Preds;
insert into s.Qorv_TMP_Preds(id,"R_Age in.years",R_rate,"R_job-type",R_size,R_records,"R_Age in.years","R_a field name that is longer than 31",score)
 SELECT id,(CAST((CASE WHEN ("Age in.years" IS NULL) THEN 0.2
   WHEN CAST("Age in.years" AS FLOAT)<18 THEN -0.4
   WHEN CAST("Age in.years" AS FLOAT)>65.5 THEN 1
   WHEN CAST("Age in.years" AS FLOAT)<=65.5 THEN 0.6666666666666666
   ELSE 0.2
   END ) AS FLOAT)) AS "R_Age in.years"
,(CAST((CASE WHEN (rate IS NULL) THEN 0
   WHEN CAST(rate AS FLOAT)<2.5 THEN 1e+18
   WHEN CAST(rate AS FLOAT)>2.5 THEN -1e-05
   ELSE 0
   END ) AS FLOAT)) AS R_rate
,(CAST((CASE WHEN ( "job-type" IS NULL OR RTRIM(LTRIM("job-type"))='') THEN 0
   WHEN RTRIM(LTRIM("job-type"))='5" pipe' THEN 0
   WHEN RTRIM(LTRIM("job-type"))='clerk' THEN 0
   WHEN RTRIM(LTRIM("job-type"))='it\'s' THEN 0
   WHEN RTRIM(LTRIM("job-type"))='1' THEN 0
   ELSE 0
   END) AS FLOAT)) AS "R_job-type"
,(CAST((CASE WHEN ( size IS NULL OR RTRIM(LTRIM(size))='') THEN 0
   WHEN RTRIM(LTRIM(size))='1' THEN -1.875
   WHEN RTRIM(LTRIM(size))='2.5' THEN 1.875
   WHEN RTRIM(LTRIM(size))='10' THEN -0.125
   ELSE 0
   END) AS FLOAT)) AS R_size
,(CAST((CASE WHEN ( records IS NULL) THEN -7
   WHEN CAST(records AS FLOAT)=0 THEN 3.333333333333333
   WHEN CAST(records AS FLOAT)=1 THEN -1e-06
   ELSE -7
   END) AS FLOAT)) AS R_records
,(CAST((CASE WHEN ("Age in.years" IS NULL) THEN 0
   WHEN CAST("Age in.years" AS FLOAT)<10 THEN -1.25
   WHEN CAST("Age in.years" AS FLOAT)>50 THEN -5
   WHEN CAST("Age in.years" AS FLOAT)<=40 THEN -2.5
   WHEN CAST("Age in.years" AS FLOAT)<=50 THEN -3.75
   ELSE 0
   END ) AS FLOAT)) AS "R_Age in.years"
,(CAST((CASE WHEN ( "a field name that is longer than 31" IS NULL OR RTRIM(LTRIM("a field name that is longer than 31"))='') THEN 0
   WHEN RTRIM(LTRIM("a field name that is longer than 31"))='straße' THEN 5.764607523034235e+17
   ELSE 0
   END) AS FLOAT)) AS "R_a field name that is longer than 31"
, 0 as score FROM s.src;

insert into s.Preds(id,Predictions)
 select id, (CAST((CASE 
   WHEN s.Qorv_TMP_Preds.score>3 THEN 0.9
   WHEN s.Qorv_TMP_Preds.score<-2 THEN 0.01
   WHEN s.Qorv_TMP_Preds.score>2 THEN 0.9
   WHEN s.Qorv_TMP_Preds.score>1 THEN -0.1333333333333334+s.Qorv_TMP_Preds.score*0.4666666666666667
   WHEN s.Qorv_TMP_Preds.score>-0.5 THEN 0.2777777777777778+s.Qorv_TMP_Preds.score*0.05555555555555555
   ELSE 0
   END ) AS FLOAT)) AS Predictions
  from s.Qorv_TMP_Preds;
