/******************************************************************************************
 *                                                                                        *
 *  QORVALIS v4.2.1 auto-generated model                             *
 *  ==========================================================                             *
 *                                                                                        *
 *   Source model file: model.ModelXml *
 *   Total number of variables in model: 2 *
 *                                                                                        *
 *  Variable Name                        <->  Recoding Name                               *
 *  ----------------------------------------------------------                            *
 *  a  <->  R0_a            *
 *  b  <->  R1_b            *
 *                                                                                        *
 ******************************************************************************************/

/*
  data <ouput_dataset>;
     set <input_dataset>;
*/

   /* computing recoding 'R0_a'
      based on the NormContinuous column of display name 'Label' */

   if (a=.) then R0_a=0;
   else if (a<0) then R0_a=1;
   else if (a>1) then R0_a=3;
   else if (a<=1) then R0_a=2;
   else R0_a=0; /* default */


   /* computing recoding 'R1_b'
      based on the MapValues column of display name 'Label' */

   if trim(left(b))="" then R1_b=0;
   else if trim(left(b))="x" then R1_b=1;
   else R1_b=0;


   /* computing the regression Model */
   score= 0
        + 0.5* R1_b
        + 1* R0_a;


   /* computing the probability */
   proba=1/(1+exp(-score);


   /* comment or delete the next lines to keep the recoded variables in the output dataset */
   drop R0_a;
   drop R1_b;

/* run; */
