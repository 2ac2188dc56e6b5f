/******************************************************************************************
 *                                                                                        *
 *  QORVALIS v4.2.1 auto-generated model                             *
 *  ==========================================================                             *
 *                                                                                        *
 *   Source model file: model.ModelXml *
 *   Total number of variables in model: 50 *
 *                                                                                        *
 *  Variable Name                        <->  Recoding Name                               *
 *  ----------------------------------------------------------                            *
 *  c1  <->  R0_c1            *
 *  c2  <->  R1_c2            *
 *  c3  <->  R2_c3            *
 *  c4  <->  R3_c4            *
 *  c5  <->  R4_c5            *
 *  c6  <->  R5_c6            *
 *  c7  <->  R6_c7            *
 *  c8  <->  R7_c8            *
 *  c9  <->  R8_c9            *
 *  c10  <->  R9_c10            *
 *  c11  <->  R10_c11            *
 *  c12  <->  R11_c12            *
 *  c13  <->  R12_c13            *
 *  c14  <->  R13_c14            *
 *  c15  <->  R14_c15            *
 *  c16  <->  R15_c16            *
 *  c17  <->  R16_c17            *
 *  c18  <->  R17_c18            *
 *  c19  <->  R18_c19            *
 *  c20  <->  R19_c20            *
 *  c21  <->  R20_c21            *
 *  c22  <->  R21_c22            *
 *  c23  <->  R22_c23            *
 *  c24  <->  R23_c24            *
 *  c25  <->  R24_c25            *
 *  c26  <->  R25_c26            *
 *  c27  <->  R26_c27            *
 *  c28  <->  R27_c28            *
 *  c29  <->  R28_c29            *
 *  c30  <->  R29_c30            *
 *  c31  <->  R30_c31            *
 *  c32  <->  R31_c32            *
 *  c33  <->  R32_c33            *
 *  c34  <->  R33_c34            *
 *  c35  <->  R34_c35            *
 *  c36  <->  R35_c36            *
 *  c37  <->  R36_c37            *
 *  c38  <->  R37_c38            *
 *  c39  <->  R38_c39            *
 *  c40  <->  R39_c40            *
 *  c41  <->  R40_c41            *
 *  c42  <->  R41_c42            *
 *  c43  <->  R42_c43            *
 *  c44  <->  R43_c44            *
 *  c45  <->  R44_c45            *
 *  c46  <->  R45_c46            *
 *  c47  <->  R46_c47            *
 *  c48  <->  R47_c48            *
 *  c49  <->  R48_c49            *
 *  c50  <->  R49_c50            *
 *                                                                                        *
 ******************************************************************************************/

/*
  data <ouput_dataset>;
     set <input_dataset>;
*/

   /* computing recoding 'R0_c1'
      based on the NormContinuous column of display name 'Label' */

   if (c1=.) then R0_c1=0;
   else if (c1<1) then R0_c1=1;
   else if (c1>1) then R0_c1=-1;
   else R0_c1=0; /* default */


   /* computing recoding 'R1_c2'
      based on the NormContinuous column of display name 'Label' */

   if (c2=.) then R1_c2=0;
   else if (c2<2) then R1_c2=2;
   else if (c2>2) then R1_c2=-2;
   else R1_c2=0; /* default */


   /* computing recoding 'R2_c3'
      based on the NormContinuous column of display name 'Label' */

   if (c3=.) then R2_c3=0;
   else if (c3<3) then R2_c3=3;
   else if (c3>3) then R2_c3=-3;
   else R2_c3=0; /* default */


   /* computing recoding 'R3_c4'
      based on the NormContinuous column of display name 'Label' */

   if (c4=.) then R3_c4=0;
   else if (c4<4) then R3_c4=4;
   else if (c4>4) then R3_c4=-4;
   else R3_c4=0; /* default */


   /* computing recoding 'R4_c5'
      based on the NormContinuous column of display name 'Label' */

   if (c5=.) then R4_c5=0;
   else if (c5<5) then R4_c5=5;
   else if (c5>5) then R4_c5=-5;
   else R4_c5=0; /* default */


   /* computing recoding 'R5_c6'
      based on the NormContinuous column of display name 'Label' */

   if (c6=.) then R5_c6=0;
   else if (c6<6) then R5_c6=6;
   else if (c6>6) then R5_c6=-6;
   else R5_c6=0; /* default */


   /* computing recoding 'R6_c7'
      based on the NormContinuous column of display name 'Label' */

   if (c7=.) then R6_c7=0;
   else if (c7<7) then R6_c7=7;
   else if (c7>7) then R6_c7=-7;
   else R6_c7=0; /* default */


   /* computing recoding 'R7_c8'
      based on the NormContinuous column of display name 'Label' */

   if (c8=.) then R7_c8=0;
   else if (c8<8) then R7_c8=8;
   else if (c8>8) then R7_c8=-8;
   else R7_c8=0; /* default */


   /* computing recoding 'R8_c9'
      based on the NormContinuous column of display name 'Label' */

   if (c9=.) then R8_c9=0;
   else if (c9<9) then R8_c9=9;
   else if (c9>9) then R8_c9=-9;
   else R8_c9=0; /* default */


   /* computing recoding 'R9_c10'
      based on the NormContinuous column of display name 'Label' */

   if (c10=.) then R9_c10=0;
   else if (c10<10) then R9_c10=10;
   else if (c10>10) then R9_c10=-10;
   else R9_c10=0; /* default */


   /* computing recoding 'R10_c11'
      based on the NormContinuous column of display name 'Label' */

   if (c11=.) then R10_c11=0;
   else if (c11<11) then R10_c11=11;
   else if (c11>11) then R10_c11=-11;
   else R10_c11=0; /* default */


   /* computing recoding 'R11_c12'
      based on the NormContinuous column of display name 'Label' */

   if (c12=.) then R11_c12=0;
   else if (c12<12) then R11_c12=12;
   else if (c12>12) then R11_c12=-12;
   else R11_c12=0; /* default */


   /* computing recoding 'R12_c13'
      based on the NormContinuous column of display name 'Label' */

   if (c13=.) then R12_c13=0;
   else if (c13<13) then R12_c13=13;
   else if (c13>13) then R12_c13=-13;
   else R12_c13=0; /* default */


   /* computing recoding 'R13_c14'
      based on the NormContinuous column of display name 'Label' */

   if (c14=.) then R13_c14=0;
   else if (c14<14) then R13_c14=14;
   else if (c14>14) then R13_c14=-14;
   else R13_c14=0; /* default */


   /* computing recoding 'R14_c15'
      based on the NormContinuous column of display name 'Label' */

   if (c15=.) then R14_c15=0;
   else if (c15<15) then R14_c15=15;
   else if (c15>15) then R14_c15=-15;
   else R14_c15=0; /* default */


   /* computing recoding 'R15_c16'
      based on the NormContinuous column of display name 'Label' */

   if (c16=.) then R15_c16=0;
   else if (c16<16) then R15_c16=16;
   else if (c16>16) then R15_c16=-16;
   else R15_c16=0; /* default */


   /* computing recoding 'R16_c17'
      based on the NormContinuous column of display name 'Label' */

   if (c17=.) then R16_c17=0;
   else if (c17<17) then R16_c17=17;
   else if (c17>17) then R16_c17=-17;
   else R16_c17=0; /* default */


   /* computing recoding 'R17_c18'
      based on the NormContinuous column of display name 'Label' */

   if (c18=.) then R17_c18=0;
   else if (c18<18) then R17_c18=18;
   else if (c18>18) then R17_c18=-18;
   else R17_c18=0; /* default */


   /* computing recoding 'R18_c19'
      based on the NormContinuous column of display name 'Label' */

   if (c19=.) then R18_c19=0;
   else if (c19<19) then R18_c19=19;
   else if (c19>19) then R18_c19=-19;
   else R18_c19=0; /* default */


   /* computing recoding 'R19_c20'
      based on the NormContinuous column of display name 'Label' */

   if (c20=.) then R19_c20=0;
   else if (c20<20) then R19_c20=20;
   else if (c20>20) then R19_c20=-20;
   else R19_c20=0; /* default */


   /* computing recoding 'R20_c21'
      based on the NormContinuous column of display name 'Label' */

   if (c21=.) then R20_c21=0;
   else if (c21<21) then R20_c21=21;
   else if (c21>21) then R20_c21=-21;
   else R20_c21=0; /* default */


   /* computing recoding 'R21_c22'
      based on the NormContinuous column of display name 'Label' */

   if (c22=.) then R21_c22=0;
   else if (c22<22) then R21_c22=22;
   else if (c22>22) then R21_c22=-22;
   else R21_c22=0; /* default */


   /* computing recoding 'R22_c23'
      based on the NormContinuous column of display name 'Label' */

   if (c23=.) then R22_c23=0;
   else if (c23<23) then R22_c23=23;
   else if (c23>23) then R22_c23=-23;
   else R22_c23=0; /* default */


   /* computing recoding 'R23_c24'
      based on the NormContinuous column of display name 'Label' */

   if (c24=.) then R23_c24=0;
   else if (c24<24) then R23_c24=24;
   else if (c24>24) then R23_c24=-24;
   else R23_c24=0; /* default */


   /* computing recoding 'R24_c25'
      based on the NormContinuous column of display name 'Label' */

   if (c25=.) then R24_c25=0;
   else if (c25<25) then R24_c25=25;
   else if (c25>25) then R24_c25=-25;
   else R24_c25=0; /* default */


   /* computing recoding 'R25_c26'
      based on the NormContinuous column of display name 'Label' */

   if (c26=.) then R25_c26=0;
   else if (c26<26) then R25_c26=26;
   else if (c26>26) then R25_c26=-26;
   else R25_c26=0; /* default */


   /* computing recoding 'R26_c27'
      based on the NormContinuous column of display name 'Label' */

   if (c27=.) then R26_c27=0;
   else if (c27<27) then R26_c27=27;
   else if (c27>27) then R26_c27=-27;
   else R26_c27=0; /* default */


   /* computing recoding 'R27_c28'
      based on the NormContinuous column of display name 'Label' */

   if (c28=.) then R27_c28=0;
   else if (c28<28) then R27_c28=28;
   else if (c28>28) then R27_c28=-28;
   else R27_c28=0; /* default */


   /* computing recoding 'R28_c29'
      based on the NormContinuous column of display name 'Label' */

   if (c29=.) then R28_c29=0;
   else if (c29<29) then R28_c29=29;
   else if (c29>29) then R28_c29=-29;
   else R28_c29=0; /* default */


   /* computing recoding 'R29_c30'
      based on the NormContinuous column of display name 'Label' */

   if (c30=.) then R29_c30=0;
   else if (c30<30) then R29_c30=30;
   else if (c30>30) then R29_c30=-30;
   else R29_c30=0; /* default */


   /* computing recoding 'R30_c31'
      based on the NormContinuous column of display name 'Label' */

   if (c31=.) then R30_c31=0;
   else if (c31<31) then R30_c31=31;
   else if (c31>31) then R30_c31=-31;
   else R30_c31=0; /* default */


   /* computing recoding 'R31_c32'
      based on the NormContinuous column of display name 'Label' */

   if (c32=.) then R31_c32=0;
   else if (c32<32) then R31_c32=32;
   else if (c32>32) then R31_c32=-32;
   else R31_c32=0; /* default */


   /* computing recoding 'R32_c33'
      based on the NormContinuous column of display name 'Label' */

   if (c33=.) then R32_c33=0;
   else if (c33<33) then R32_c33=33;
   else if (c33>33) then R32_c33=-33;
   else R32_c33=0; /* default */


   /* computing recoding 'R33_c34'
      based on the NormContinuous column of display name 'Label' */

   if (c34=.) then R33_c34=0;
   else if (c34<34) then R33_c34=34;
   else if (c34>34) then R33_c34=-34;
   else R33_c34=0; /* default */


   /* computing recoding 'R34_c35'
      based on the NormContinuous column of display name 'Label' */

   if (c35=.) then R34_c35=0;
   else if (c35<35) then R34_c35=35;
   else if (c35>35) then R34_c35=-35;
   else R34_c35=0; /* default */


   /* computing recoding 'R35_c36'
      based on the NormContinuous column of display name 'Label' */

   if (c36=.) then R35_c36=0;
   else if (c36<36) then R35_c36=36;
   else if (c36>36) then R35_c36=-36;
   else R35_c36=0; /* default */


   /* computing recoding 'R36_c37'
      based on the NormContinuous column of display name 'Label' */

   if (c37=.) then R36_c37=0;
   else if (c37<37) then R36_c37=37;
   else if (c37>37) then R36_c37=-37;
   else R36_c37=0; /* default */


   /* computing recoding 'R37_c38'
      based on the NormContinuous column of display name 'Label' */

   if (c38=.) then R37_c38=0;
   else if (c38<38) then R37_c38=38;
   else if (c38>38) then R37_c38=-38;
   else R37_c38=0; /* default */


   /* computing recoding 'R38_c39'
      based on the NormContinuous column of display name 'Label' */

   if (c39=.) then R38_c39=0;
   else if (c39<39) then R38_c39=39;
   else if (c39>39) then R38_c39=-39;
   else R38_c39=0; /* default */


   /* computing recoding 'R39_c40'
      based on the NormContinuous column of display name 'Label' */

   if (c40=.) then R39_c40=0;
   else if (c40<40) then R39_c40=40;
   else if (c40>40) then R39_c40=-40;
   else R39_c40=0; /* default */


   /* computing recoding 'R40_c41'
      based on the NormContinuous column of display name 'Label' */

   if (c41=.) then R40_c41=0;
   else if (c41<41) then R40_c41=41;
   else if (c41>41) then R40_c41=-41;
   else R40_c41=0; /* default */


   /* computing recoding 'R41_c42'
      based on the NormContinuous column of display name 'Label' */

   if (c42=.) then R41_c42=0;
   else if (c42<42) then R41_c42=42;
   else if (c42>42) then R41_c42=-42;
   else R41_c42=0; /* default */


   /* computing recoding 'R42_c43'
      based on the NormContinuous column of display name 'Label' */

   if (c43=.) then R42_c43=0;
   else if (c43<43) then R42_c43=43;
   else if (c43>43) then R42_c43=-43;
   else R42_c43=0; /* default */


   /* computing recoding 'R43_c44'
      based on the NormContinuous column of display name 'Label' */

   if (c44=.) then R43_c44=0;
   else if (c44<44) then R43_c44=44;
   else if (c44>44) then R43_c44=-44;
   else R43_c44=0; /* default */


   /* computing recoding 'R44_c45'
      based on the NormContinuous column of display name 'Label' */

   if (c45=.) then R44_c45=0;
   else if (c45<45) then R44_c45=45;
   else if (c45>45) then R44_c45=-45;
   else R44_c45=0; /* default */


   /* computing recoding 'R45_c46'
      based on the NormContinuous column of display name 'Label' */

   if (c46=.) then R45_c46=0;
   else if (c46<46) then R45_c46=46;
   else if (c46>46) then R45_c46=-46;
   else R45_c46=0; /* default */


   /* computing recoding 'R46_c47'
      based on the NormContinuous column of display name 'Label' */

   if (c47=.) then R46_c47=0;
   else if (c47<47) then R46_c47=47;
   else if (c47>47) then R46_c47=-47;
   else R46_c47=0; /* default */


   /* computing recoding 'R47_c48'
      based on the NormContinuous column of display name 'Label' */

   if (c48=.) then R47_c48=0;
   else if (c48<48) then R47_c48=48;
   else if (c48>48) then R47_c48=-48;
   else R47_c48=0; /* default */


   /* computing recoding 'R48_c49'
      based on the NormContinuous column of display name 'Label' */

   if (c49=.) then R48_c49=0;
   else if (c49<49) then R48_c49=49;
   else if (c49>49) then R48_c49=-49;
   else R48_c49=0; /* default */


   /* computing recoding 'R49_c50'
      based on the NormContinuous column of display name 'Label' */

   if (c50=.) then R49_c50=0;
   else if (c50<50) then R49_c50=50;
   else if (c50>50) then R49_c50=-50;
   else R49_c50=0; /* default */



   /* computing the regression Model */
   Bad_Payer_x_score= 0.5
        + 0.125* R0_c1
        + 0.25* R1_c2
        + 0.375* R2_c3
        + 0.5* R3_c4
        + 0.625* R4_c5
        + 0.75* R5_c6
        + 0.875* R6_c7
        + 1* R7_c8
        + 1.125* R8_c9
        + 1.25* R9_c10
        + 1.375* R10_c11
        + 1.5* R11_c12
        + 1.625* R12_c13
        + 1.75* R13_c14
        + 1.875* R14_c15
        + 2* R15_c16
        + 2.125* R16_c17
        + 2.25* R17_c18
        + 2.375* R18_c19
        + 2.5* R19_c20
        + 2.625* R20_c21
        + 2.75* R21_c22
        + 2.875* R22_c23
        + 3* R23_c24
        + 3.125* R24_c25
        + 3.25* R25_c26
        + 3.375* R26_c27
        + 3.5* R27_c28
        + 3.625* R28_c29
        + 3.75* R29_c30
        + 3.875* R30_c31
        + 4* R31_c32
        + 4.125* R32_c33
        + 4.25* R33_c34
        + 4.375* R34_c35
        + 4.5* R35_c36
        + 4.625* R36_c37
        + 4.75* R37_c38
        + 4.875* R38_c39
        + 5* R39_c40
        + 5.125* R40_c41
        + 5.25* R41_c42
        + 5.375* R42_c43
        + 5.5* R43_c44
        + 5.625* R44_c45
        + 5.75* R45_c46
        + 5.875* R46_c47
        + 6* R47_c48
        + 6.125* R48_c49
        + 6.25* R49_c50;




   /* comment or delete the next lines to keep the recoded variables in the output dataset */
   drop R0_c1;
   drop R1_c2;
   drop R2_c3;
   drop R3_c4;
   drop R4_c5;
   drop R5_c6;
   drop R6_c7;
   drop R7_c8;
   drop R8_c9;
   drop R9_c10;
   drop R10_c11;
   drop R11_c12;
   drop R12_c13;
   drop R13_c14;
   drop R14_c15;
   drop R15_c16;
   drop R16_c17;
   drop R17_c18;
   drop R18_c19;
   drop R19_c20;
   drop R20_c21;
   drop R21_c22;
   drop R22_c23;
   drop R23_c24;
   drop R24_c25;
   drop R25_c26;
   drop R26_c27;
   drop R27_c28;
   drop R28_c29;
   drop R29_c30;
   drop R30_c31;
   drop R31_c32;
   drop R32_c33;
   drop R33_c34;
   drop R34_c35;
   drop R35_c36;
   drop R36_c37;
   drop R37_c38;
   drop R38_c39;
   drop R39_c40;
   drop R40_c41;
   drop R41_c42;
   drop R42_c43;
   drop R43_c44;
   drop R44_c45;
   drop R45_c46;
   drop R46_c47;
   drop R47_c48;
   drop R48_c49;
   drop R49_c50;

/* run; */
