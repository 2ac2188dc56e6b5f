insert into Preds(id,Predictions)
 SELECT id,(-1
 +(CAST((CASE WHEN (one IS NULL) OR (CAST(one AS FLOAT)=-1) THEN 5
   WHEN CAST(one AS FLOAT)<1 THEN 6
   WHEN CAST(one AS FLOAT)>2 THEN 8
   WHEN CAST(one AS FLOAT)<=2 THEN 7
   ELSE 5
   END ) AS FLOAT))
 +(CAST((CASE WHEN ("many codes" IS NULL) OR (CAST("many codes" AS FLOAT)=97) OR (CAST("many codes" AS FLOAT)=98) THEN -10
   WHEN CAST("many codes" AS FLOAT)<1 THEN 12
   WHEN CAST("many codes" AS FLOAT)>2 THEN 12
   WHEN CAST("many codes" AS FLOAT)<=2 THEN 12
   ELSE -10
   END ) AS FLOAT))
 +(CAST((CASE WHEN (nothing IS NULL) THEN 3
   WHEN CAST(nothing AS FLOAT)<0 THEN 6
   WHEN CAST(nothing AS FLOAT)>0 THEN 9
   ELSE 3
   END ) AS FLOAT))
 +(CAST((CASE WHEN (none IS NULL) THEN 4
   WHEN CAST(none AS FLOAT)<0 THEN 8
   WHEN CAST(none AS FLOAT)>0.5 THEN 16
   WHEN CAST(none AS FLOAT)<=0.5 THEN 12
   ELSE 4
   END ) AS FLOAT))
   ) AS Predictions FROM src;

