-- drop table [my schema].Preds;
create table [my schema].Preds(id VARCHAR(20), Predictions FLOAT(53));
CREATE INDEX Preds_index ON [my schema].Preds(id);
--drop table [my schema].Qorv_TMP_Preds;
create table [my schema].Qorv_TMP_Preds(id VARCHAR(20), score FLOAT(53));
insert into [my schema].Qorv_TMP_Preds(id,score)
 SELECT id,(0.3333333333333333
 +(CASE WHEN ([Age in.years] IS NULL) THEN 0.2
   WHEN CAST([Age in.years] AS FLOAT)<18 THEN -0.4
   WHEN CAST([Age in.years] AS FLOAT)>65.5 THEN 1
   WHEN CAST([Age in.years] AS FLOAT)<=65.5 THEN 0.6666666666666666
   ELSE 0.2
   END )
 +(CASE WHEN (rate IS NULL) THEN 0
   WHEN CAST(rate AS FLOAT)<2.5 THEN 1e+18
   WHEN CAST(rate AS FLOAT)>2.5 THEN -1e-05
   ELSE 0
   END )
 +(CASE WHEN ( [job-type] IS NULL OR RTRIM(LTRIM([job-type]))='') THEN 0
   WHEN RTRIM(LTRIM([job-type]))='5" pipe' THEN 0
   WHEN RTRIM(LTRIM([job-type]))='clerk' THEN 0
   WHEN RTRIM(LTRIM([job-type]))='it\'s' THEN 0
   WHEN RTRIM(LTRIM([job-type]))='1' THEN 0
   ELSE 0
   END)
 +(CASE WHEN ( size IS NULL OR RTRIM(LTRIM(size))='') THEN 0
   WHEN RTRIM(LTRIM(size))='1' THEN -1.875
   WHEN RTRIM(LTRIM(size))='2.5' THEN 1.875
   WHEN RTRIM(LTRIM(size))='10' THEN -0.125
   ELSE 0
   END)
 +(CASE WHEN ( records IS NULL) THEN -7
   WHEN CAST(records AS FLOAT)=0 THEN 3.333333333333333
   WHEN CAST(records AS FLOAT)=1 THEN -1e-06
   ELSE -7
   END)
 +(CASE WHEN ([Age in.years] IS NULL) THEN 0
   WHEN CAST([Age in.years] AS FLOAT)<10 THEN -1.25
   WHEN CAST([Age in.years] AS FLOAT)>50 THEN -5
   WHEN CAST([Age in.years] AS FLOAT)<=40 THEN -2.5
   WHEN CAST([Age in.years] AS FLOAT)<=50 THEN -3.75
   ELSE 0
   END )
 +(CASE WHEN ( [a field name that is longer than 31] IS NULL OR RTRIM(LTRIM([a field name that is longer than 31]))='') THEN 0
   WHEN RTRIM(LTRIM([a field name that is longer than 31]))='straße' THEN 5.764607523034235e+17
   ELSE 0
   END)
   ) AS score FROM [my schema].[a-b];

insert into [my schema].Preds(id,Predictions)
 select id, (CASE 
   WHEN [my schema].Qorv_TMP_Preds.score>3 THEN 0.9
   WHEN [my schema].Qorv_TMP_Preds.score<-2 THEN 0.01
   WHEN [my schema].Qorv_TMP_Preds.score>2 THEN 0.9
   WHEN [my schema].Qorv_TMP_Preds.score>1 THEN -0.1333333333333334+[my schema].Qorv_TMP_Preds.score*0.4666666666666667
   WHEN [my schema].Qorv_TMP_Preds.score>-0.5 THEN 0.2777777777777778+[my schema].Qorv_TMP_Preds.score*0.05555555555555555
   ELSE 0
   END ) AS Predictions
  from [my schema].Qorv_TMP_Preds;
DROP TABLE [my schema].Qorv_TMP_Preds;
