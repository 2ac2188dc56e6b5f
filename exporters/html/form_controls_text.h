// The fixed texts of the form controls; $name$ is a placeholder for fill().
#pragma once

inline constexpr char16_t numericControl[] = uR"html(
<div style="position:relative; left:50px; height:30px;width:350px;">
  <div style="position:absolute; left:0px; height:100%;width:210px;">
  <input type="range" min="$min$" max="$max$" value="$default$" id="range_$form$">
  </div>
  <div style="position:absolute; left:210px; height:100%;width:200px;">
    Value: <input type="inputNumber" id="value_$form$" value="$default$" size="5" name="$form$">
  </div>
  <div style="position:absolute; left:330px;  height:100%;width:90px;">
    $unknown$<input type="checkbox" name="unkown_$form$" onclick="ComputeModel();"/>
  </div>
</div>
)html";

inline constexpr char16_t yesNoControl[] = uR"html(
<div style="position:relative; left:50px; height:30px;width:300px;">
  <div style="position:absolute; left:0px; height:100%;width:100px;">
    <input onclick="ComputeModel();" type="radio" name="$form$" value="0" $unknownMark$ >$unknown$<br>
  </div>
  <div style="position:absolute; left:100px; height:100%;width:100px;">
<input onclick="ComputeModel();" type="radio" name="$form$" value="2" $trueMark$ >$true$<br>
  </div>
  <div style="position:absolute; left:200px; height:100%;width:100px;">
<input onclick="ComputeModel();" type="radio" name="$form$" value="1" $falseMark$ >$false$<br>
  </div>
<input type="hidden" name="$form$" value="0">
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
