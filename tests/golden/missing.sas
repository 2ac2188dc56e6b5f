/******************************************************************************************
 *                                                                                        *
 *  QORVALIS v4.2.1 auto-generated model                             *
 *  ==========================================================                             *
 *                                                                                        *
 *   Source model file: model.ModelXml *
 *   Total number of variables in model: 4 *
 *                                                                                        *
 *  Variable Name                        <->  Recoding Name                               *
 *  ----------------------------------------------------------                            *
 *  one  <->  R0_one            *
 *  many_codes  <->  R1_many_codes            *
 *  nothing  <->  R2_nothing            *
 *  none  <->  R3_none            *
 *                                                                                        *
 ******************************************************************************************/

/*
  data <ouput_dataset>;
     set <input_dataset>;
*/

   /* computing recoding 'R0_one'
      based on the NormContinuous column of display name 'Label' */

) then R0_one=5;
   else if (one<1) then R0_one=6;
   else if (one>2) then R0_one=8;
   else if (one<=2) then R0_one=7;
   else R0_one=5; /* default */


   /* computing recoding 'R1_many_codes'
      based on the NormContinuous column of display name 'Label' */

|| (many_codes==1.5e-007)|| (many_codes==1e+006)|| (many_codes==-999.5)) then R1_many_codes=-5;
   else if (many_codes<1) then R1_many_codes=6;
   else if (many_codes>2) then R1_many_codes=6;
   else if (many_codes<=2) then R1_many_codes=6;
   else R1_many_codes=-5; /* default */


   /* computing recoding 'R2_nothing'
      based on the NormContinuous column of display name 'Label' */

) then R2_nothing=1;
   else if (nothing<0) then R2_nothing=2;
   else if (nothing>0) then R2_nothing=3;
   else R2_nothing=1; /* default */


   /* computing recoding 'R3_none'
      based on the NormContinuous column of display name 'Label' */

   if (none=.) then R3_none=1;
   else if (none<0) then R3_none=2;
   else if (none>0.5) then R3_none=4;
   else if (none<=0.5) then R3_none=3;
   else R3_none=1; /* default */



   /* computing the regression Model */
   Bad_Payer_x_score= -1
        + 1* R0_one
        + 2* R1_many_codes
        + 3* R2_nothing
        + 4* R3_none;




   /* comment or delete the next lines to keep the recoded variables in the output dataset */
   drop R0_one;
   drop R1_many_codes;
   drop R2_nothing;
   drop R3_none;

/* run; */
