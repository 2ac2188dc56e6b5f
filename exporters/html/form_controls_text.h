// The fixed stretches of the form controls; %n stands for what the line above the text names.
#pragma once

// Slider bounds and preset value, form name, unknown label.
inline constexpr char16_t numericControl[] = uR"html(
<div style="position:relative; left:50px; height:30px;width:350px;">
  <div style="position:absolute; left:0px; height:100%;width:210px;">
  <input type="range" min="%1" max="%2" value="%3" id="range_%4">
  </div>
  <div style="position:absolute; left:210px; height:100%;width:200px;">
    Value: <input type="inputNumber" id="value_%4" value="%3" size="5" name="%4">
  </div>
  <div style="position:absolute; left:330px;  height:100%;width:90px;">
    %5<input type="checkbox" name="unkown_%4" onclick="ComputeModel();"/>
  </div>
</div>
)html";

// Form name, unknown mark and label, true mark and label, false mark and label.
inline constexpr char16_t yesNoControl[] = uR"html(
<div style="position:relative; left:50px; height:30px;width:300px;">
  <div style="position:absolute; left:0px; height:100%;width:100px;">
    <input onclick="ComputeModel();" type="radio" name="%1" value="0" %2 >%3<br>
  </div>
  <div style="position:absolute; left:100px; height:100%;width:100px;">
<input onclick="ComputeModel();" type="radio" name="%1" value="2" %4 >%5<br>
  </div>
  <div style="position:absolute; left:200px; height:100%;width:100px;">
<input onclick="ComputeModel();" type="radio" name="%1" value="1" %6 >%7<br>
  </div>
<input type="hidden" name="%1" value="0">
  </div>
)html";

inline constexpr char16_t listenerScript[] = uR"js(<script type="text/javascript" ><!--
function myEventListener(varname)
{
   var slider=document.getElementById("range_"+varname);
   var output=document.getElementById("value_"+varname);
   slider.addEventListener('input', function (e) {
     output.value = e.target.value;
     ComputeModel();
   });
   output.addEventListener('input', function (e) {
     slider.value = e.target.value;
     ComputeModel();
   });
}
)js";
