// The built-in canvas.
#pragma once

inline constexpr char16_t defaultCanvas[] = uR"html(<html>
<meta http-equiv="Content-Type" content="text/html; charset=utf-8">
<head>
<style>
body {background-color: #EFEFEF}
.form_widget_amount_slider{
    border-top:1px solid #9d9c99;
    border-left:1px solid #9d9c99;
    border-bottom:1px solid #eee;
    border-right:1px solid #eee;
    background-color:#f0ede0;
    height:3px;
    position:absolute;
    bottom:0px;
  }
div.histogramBar{
   border:1px solid black;
}
div.histogram{
   top:30px;
   left:10px;
   right:10px;
}
</style>
[QRV_STRING_UNKNOWN unknown/]
[QRV_STRING_TRUE True/]
[QRV_STRING_FALSE False/]
[QRV_STRING_SUBMIT Submit/]
<title>Generated Model</title>
[QRV_SCRIPT/]
</head>
<body onLoad="ComputeModel();">
<div style="position:relative;left:50px;width:300px;height:135px;border:1px solid black;" >
[QRV_DYN_SCALE/]
[QRV_GRAPHICS/]
</div>

Proba model 0: [QRV_ANSWER 0 /] %<br/>
Proba model 1: [QRV_ANSWER 1 /] %<br/>
Please answer those questions:<br/>
<form name="QRVform" action="#" onsubmit="return validate_form(this)">
[QRV_ALL_QUESTIONS/]
[QRV_SUBMIT/]
</form>
</body>
</html>
)html";
