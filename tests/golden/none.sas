/******************************************************************************************
 *                                                                                        *
 *  QORVALIS v4.2.1 auto-generated model                             *
 *  ==========================================================                             *
 *                                                                                        *
 *   Source model file: model.ModelXml *
 *   Total number of variables in model: 0 *
 *                                                                                        *
 *  Variable Name                        <->  Recoding Name                               *
 *  ----------------------------------------------------------                            *
 *                                                                                        *
 ******************************************************************************************/

/*
  data <ouput_dataset>;
     set <input_dataset>;
*/


   /* computing the regression Model */
   Bad_Payer_x_score= 0.125

   /* computing the probability */
   Bad_Payer_x_proba=0;
   if      (Bad_Payer_x_score>1) then Bad_Payer_x_proba=0.75;
   else if (Bad_Payer_x_score<1) then Bad_Payer_x_proba=0.75;


   /* comment or delete the next lines to keep the recoded variables in the output dataset */

/* run; */
