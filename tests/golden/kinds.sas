/******************************************************************************************
 *                                                                                        *
 *  QORVALIS v4.2.1 auto-generated model                             *
 *  ==========================================================                             *
 *                                                                                        *
 *   Source model file: model.ModelXml *
 *   Total number of variables in model: 7 *
 *                                                                                        *
 *  Variable Name                        <->  Recoding Name                               *
 *  ----------------------------------------------------------                            *
 *  Age_in_years  <->  R0_Age_in_years            *
 *  rate  <->  R1_rate            *
 *  job-type  <->  R2_job-type            *
 *  size  <->  R3_size            *
 *  records  <->  R4_records            *
 *  Age_in_years  <->  R5_Age_in_years            *
 *  a_field_name_that_is_longer_than_31  <->  R6_a_field_name_that_is_longer_            *
 *                                                                                        *
 ******************************************************************************************/

/*
  data <ouput_dataset>;
     set <input_dataset>;
*/

   /* computing recoding 'R0_Age_in_years'
      based on the NormContinuous column of display name 'Age (years)' */

   if (Age_in_years=.) then R0_Age_in_years=0.1;
   else if (Age_in_years<18) then R0_Age_in_years=-0.2;
   else if (Age_in_years>65.5) then R0_Age_in_years=0.5;
   else if (Age_in_years<=65.5) then R0_Age_in_years=0.3333333333333333;
   else R0_Age_in_years=0.1; /* default */


   /* computing recoding 'R1_rate'
      based on the Discretize column of display name 'R&D's rate' */

   if (rate=.) then R1_rate=0;
   else if (rate<2.5) then R1_rate=1e+18;
   else if (rate>2.5) then R1_rate=-1e-05;
   else R1_rate=0; /* default */


   /* computing recoding 'R2_job-type'
      based on the MapValues column of display name 'The "job"' */

   if trim(left(job-type))="" then R2_job-type=0.25;
   else if trim(left(job-type))="5\" pipe" then R2_job-type=-1;
   else if trim(left(job-type))="clerk" then R2_job-type=2;
   else if trim(left(job-type))="it's" then R2_job-type=3;
   else if trim(left(job-type))="1" then R2_job-type=4;
   else R2_job-type=0.25;

   /* computing recoding 'R3_size'
      based on the MapValues column of display name 'Label' */

   if trim(left(size))="" then R3_size=0;
   else if trim(left(size))=1 then R3_size=1.5;
   else if trim(left(size))=2.5 then R3_size=-1.5;
   else if trim(left(size))=10 then R3_size=0.1;
   else R3_size=0;

   /* computing recoding 'R4_records'
      based on the MapValues column of display name 'Label' */

   if trim(left(records))="" then R4_records=0.7;
   else if trim(left(records))="no" then R4_records=-0.333333;
   else if trim(left(records))="N" then R4_records=-0.333333;
   else if trim(left(records))="0" then R4_records=-0.333333;
   else if trim(left(records))="false" then R4_records=-0.333333;
   else if trim(left(records))="f" then R4_records=-0.333333;
   else if trim(left(records))="yes" then R4_records=1e-007;
   else if trim(left(records))="TRUE" then R4_records=1e-007;
   else R4_records=0.7;

   /* computing recoding 'R5_Age_in_years'
      based on the NormContinuous column of display name 'Âge (ans) €' */

   if (Age_in_years=.) then R5_Age_in_years=0;
   else if (Age_in_years<10) then R5_Age_in_years=1;
   else if (Age_in_years>50) then R5_Age_in_years=4;
   else if (Age_in_years<=40) then R5_Age_in_years=2;
   else if (Age_in_years<=50) then R5_Age_in_years=3;
   else R5_Age_in_years=0; /* default */


   /* computing recoding 'R6_a_field_name_that_is_longer_'
      based on the MapValues column of display name 'Label' */

   if trim(left(a_field_name_that_is_longer_than_31))="" then R6_a_field_name_that_is_longer_=0;
   else if trim(left(a_field_name_that_is_longer_than_31))="straße" then R6_a_field_name_that_is_longer_=1.152921504606847e+18;
   else R6_a_field_name_that_is_longer_=0;


   /* computing the regression Model */
   Bad_Payer_x_score= 0.3333333333333333
        + 0.5* R6_a_field_name_that_is_longer_
        + -1.25* R5_Age_in_years
        + 2* R0_Age_in_years
        + 1e-13* R2_job-type
        + 1* R1_rate
        + -10* R4_records;


   /* computing the probability */
   Bad_Payer_x_proba=0;
   if      (Bad_Payer_x_score>3) then Bad_Payer_x_proba=0.9;
   else if (Bad_Payer_x_score<-2) then Bad_Payer_x_proba=0.01;
   else if Bad_Payer_x_score>2 then Bad_Payer_x_proba=0.9+ Bad_Payer_x_score*-0;
   else if Bad_Payer_x_score>1 then Bad_Payer_x_proba=-0.1333333333333334+ Bad_Payer_x_score*0.4666666666666667;
   else if Bad_Payer_x_score>-0.5 then Bad_Payer_x_proba=0.2777777777777778+ Bad_Payer_x_score*0.05555555555555555;
   else if Bad_Payer_x_score>-2 then Bad_Payer_x_proba=0.33+ Bad_Payer_x_score*0.16;


   /* comment or delete the next lines to keep the recoded variables in the output dataset */
   drop R0_Age_in_years;
   drop R1_rate;
   drop R2_job-type;
   drop R3_size;
   drop R4_records;
   drop R5_Age_in_years;
   drop R6_a_field_name_that_is_longer_;

/* run; */
