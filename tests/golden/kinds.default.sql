-- drop table Preds;
create table Preds(id VARCHAR(20), Predictions FLOAT(53));
insert into Preds(id,Predictions)
 SELECT id,(0.3333333333333333
 +(CASE WHEN ("Age in.years" IS NULL) THEN 0.2
   WHEN "Age in.years"<18 THEN -0.4
   WHEN "Age in.years">65.5 THEN 1
   WHEN "Age in.years"<=65.5 THEN 0.6666666666666666
   ELSE 0.2
   END )
 +(CASE WHEN (rate IS NULL) THEN 0
   WHEN rate<2.5 THEN 1e+18
   WHEN rate>2.5 THEN -1e-05
   ELSE 0
   END )
 +(CASE WHEN ( "job-type" IS NULL OR RTRIM(LTRIM("job-type"))='') THEN 0
   WHEN RTRIM(LTRIM("job-type"))='5" pipe' THEN 0
   WHEN RTRIM(LTRIM("job-type"))='clerk' THEN 0
   WHEN RTRIM(LTRIM("job-type"))='it\'s' THEN 0
   WHEN RTRIM(LTRIM("job-type"))='1' THEN 0
   ELSE 0
   END)
 +(CASE WHEN ( size IS NULL OR RTRIM(LTRIM(size))='') THEN 0
   WHEN RTRIM(LTRIM(size))='1' THEN -1.875
   WHEN RTRIM(LTRIM(size))='2.5' THEN 1.875
   WHEN RTRIM(LTRIM(size))='10' THEN -0.125
   ELSE 0
   END)
 +(CASE WHEN ( records IS NULL OR RTRIM(LTRIM(records))='') THEN -7
   WHEN records='no' THEN 3.333333333333333
   WHEN records='N' THEN 3.333333333333333
   WHEN records='0' THEN 3.333333333333333
   WHEN records='false' THEN 3.333333333333333
   WHEN records='f' THEN 3.333333333333333
   WHEN records='yes' THEN -1e-06
   WHEN records='TRUE' THEN -1e-06
   ELSE -7
   END)
 +(CASE WHEN ("Age in.years" IS NULL) THEN 0
   WHEN "Age in.years"<10 THEN -1.25
   WHEN "Age in.years">50 THEN -5
   WHEN "Age in.years"<=40 THEN -2.5
   WHEN "Age in.years"<=50 THEN -3.75
   ELSE 0
   END )
 +(CASE WHEN ( "a field name that is longer than 31" IS NULL OR RTRIM(LTRIM("a field name that is longer than 31"))='') THEN 0
   WHEN RTRIM(LTRIM("a field name that is longer than 31"))='straße' THEN 5.764607523034235e+17
   ELSE 0
   END)
   ) AS Predictions FROM src;

