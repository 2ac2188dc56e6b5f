-- drop table Preds;
create table Preds(id VARCHAR(20), Predictions FLOAT(53)) distribute by hash(id);
insert into Preds(id,Predictions)
 select id, (CASE 
   WHEN qorv_tmp.score>3 THEN 0.9
   WHEN qorv_tmp.score<-2 THEN 0.01
   WHEN qorv_tmp.score>2 THEN 0.9
   WHEN qorv_tmp.score>1 THEN -0.1333333333333334+qorv_tmp.score*0.4666666666666667
   WHEN qorv_tmp.score>-0.5 THEN 0.2777777777777778+qorv_tmp.score*0.05555555555555555
   ELSE 0
   END ) AS Predictions
  from 
( SELECT id,(CASE WHEN ("Age in.years" IS NULL) THEN 0.2
   WHEN "Age in.years"<18 THEN -0.4
   WHEN "Age in.years">65.5 THEN 1
   WHEN "Age in.years"<=65.5 THEN 0.6666666666666666
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
,(CASE WHEN ( records IS NULL OR records='') THEN -7
   WHEN records='no' THEN 3.333333333333333
   WHEN records='N' THEN 3.333333333333333
   WHEN records='0' THEN 3.333333333333333
   WHEN records='false' THEN 3.333333333333333
   WHEN records='f' THEN 3.333333333333333
   WHEN records='yes' THEN -1e-06
   WHEN records='TRUE' THEN -1e-06
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
   WHEN "a field name that is longer than 31"='straße' THEN 5.764607523034235e+17
   ELSE 0
   END) AS "R_a field name that is longer than 31"
, 0 as score FROM src) Qorv_TMP;

