insert into Preds(id,Predictions)
 select id, (CASE 
   WHEN qorv_tmp.score>1 THEN 0.75
   WHEN qorv_tmp.score<1 THEN 0.75
   ELSE 0
   END ) AS Predictions
  from 
( SELECT id,(0.125
   ) AS score FROM src) Qorv_TMP;

