// The fixed texts of the scoring script, in page order; $name$ is a placeholder for fill().
#pragma once

inline constexpr char16_t scriptHead[] = uR"js(<script type="text/javascript">
<!--

var finished=false;

/////////////////////////////////////////////////////////////
//          Example of some nondefault parameters          //
/////////////////////////////////////////////////////////////

// var QRVSpecifiedHistogramColor = ['FF0000','00FF00','0000FF','FF00FF','FFFF00','00FFFF'];
// var QRVSpecifiedHistogramBorder = 5;
// var QRVSpecifiedHistogramWidth = 20;
// var QRVSpecifiedHistogramHeight = 100;

/////////////////////////////////////////////////////////////
//                   Double text fields                    //
/////////////////////////////////////////////////////////////

function enterDoubleField(formVal,formUnknown,scoreAr,boundAr)
{
    var i;
    if (formUnknown.checked==false)
    {
        var val=formVal.value*1.0;
        if (val<boundAr[0]) return scoreAr[1]; //lower out-of-bound
        for(i=2;i<scoreAr.length-1;i++)
        {
            if (val<=boundAr[i-1]) return scoreAr[i];
        }
        return scoreAr[scoreAr.length-1]; //upper out-of-bound
    }
    else return scoreAr[0]; //missing
}

/////////////////////////////////////////////////////////////
//                       Map fields                        //
/////////////////////////////////////////////////////////////

function enterModalFieldString(formVal,scoreAr)
{
    return scoreAr[formVal.value];
}

function enterModalFieldInt(formVal,scoreAr)
{
    return scoreAr[formVal];
}

function enterModalFieldRadioButton(formVal,scoreAr)
{
    var i;
    for(i=0;i<formVal.length;i++)
    {
        if (formVal[i].checked) return scoreAr[formVal[i].value];
    }
    return scoreAr[0];
}

/////////////////////////////////////////////////////////////
//                 Compute model function                  //
/////////////////////////////////////////////////////////////

var computeIsReady=false;
function ComputeModel()
{
)js";

inline constexpr char16_t sumsHead[] = uR"js(   if (!computeIsReady)return;
try{
var maxHistogram=0;
var maxHistogramC=-Infinity;
var minHistogramC= Infinity;
)js";

// Shows a probability as a percentage.
inline constexpr char16_t probabilityEnd[] = uR"js($constant$); // constant term

	try{
	document.getElementById("m$model$_total_proba").innerHTML= (m$model$_probaTot*100).toFixed(3);
	}catch(err){}
	if (maxHistogram<=m$model$_probaTot)maxHistogram=m$model$_probaTot;

)js";

// Shows a prediction unchanged.
inline constexpr char16_t predictionEnd[] = uR"js($constant$; // constant term

	try{
	document.getElementById("m$model$_total_proba").innerHTML= (m$model$_probaTot).toFixed(3);
	}catch(err){}
	if (maxHistogramC<=m$model$_probaTot)maxHistogramC=m$model$_probaTot;


	if (minHistogramC>=m$model$_probaTot)minHistogramC=m$model$_probaTot;

)js";

inline constexpr char16_t histogramHead[] = uR"js(
	var histogramWidth;  try{histogramWidth  =QRVSpecifiedHistogramWidth; }catch(err){histogramWidth=20;}
	var histogramColor;  try{histogramColor  =QRVSpecifiedHistogramColor; }catch(err){histogramColor=['FF0000','00FF00','0000FF','FF00FF','FFFF00','00FFFF'];}
	var histogramHeight; try{histogramHeight =QRVSpecifiedHistogramHeight;}catch(err){histogramHeight=100;}
	var histogramBorder; try{histogramBorder =QRVSpecifiedHistogramBorder;}catch(err){histogramBorder=5;}

	if (maxHistogramC!=-Infinity && minHistogramC!=Infinity)
	{
		if (maxHistogramC<0)maxHistogramC=0;
		if (minHistogramC>0)minHistogramC=0;
		maxHistogram=maxHistogramC-minHistogramC;
	}
	else
	{
		if (maxHistogram==0)maxHistogram=0.01;
		if (document.getElementById("scaleProba").checked==false)
			maxHistogram=histogramMaxProba;
	}

	var drawing=document.getElementById("myDrawingSpace");
	drawing.style.position= "absolute";
	drawing.style.display="block";
	drawing.style.marginTop=histogramHeight+"px";
	drawing.innerHTML= "\
		<div style='position:absolute;background-color:#FFFFFF; left:0px; width:"+(10+(2*histogramBorder+histogramWidth)*$models$)+"px; bottom:0px; height:"+histogramHeight+"px;'> </div>\)js";

inline constexpr char16_t histogramBar[] = uR"js(
		<div class='histogramBar' style='bottom:0px;position:absolute;line-height:0px;font-size:0px;width:"+histogramWidth+"px; left:"+Math.round(5+(2*histogramBorder+histogramWidth)*$model$)+"px;\
			height:"+Math.round(histogramHeight*m$model$_probaTot/maxHistogram)+"px;background-color:"+histogramColor[$model$%histogramColor.length]+"'></div>\)js";

inline constexpr char16_t histogramEnd[] = uR"js(
		";

}catch(err)
{
    document.write("Error in Compute Model\n" +err+"<br>");
}
}


function validate_form(thisform)
{
    return finished;
}

/////////////////////////////////////////////////////////////
//                Score and boundary arrays                //
/////////////////////////////////////////////////////////////

)js";

inline constexpr char16_t mappingHead[] =
    uR"js(/////////////////////////////////////////////////////////////
//                   Probability mapping                   //
/////////////////////////////////////////////////////////////

function mapScoreToProba(modelIndex,modelScore)
{
    var i;
    var score=mapScore[modelIndex];
    var proba=mapProba[modelIndex];
    for(i in score)
    {
        if (modelScore>score[i])
        {
            if (i==0) return proba[0];
            var ratio = (modelScore-score[i-1])/(score[i]-score[i-1]);
            return proba[i-1]+ratio*((proba[i]-proba[i-1]));
        }
    }
    return proba[score.lenght-1];
}

var mapScore = new Array();
var mapProba = new Array();

)js";
