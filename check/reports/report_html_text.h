// The fixed parts of the page.
#pragma once

inline constexpr char16_t pageHead[] = uR"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>)";

inline constexpr char16_t reportStyle[] = uR"(<style>
:root { --ink: #1d2733; --soft: #5c6b7f; --line: #dfe5ec; --accent: #2563a8; --below: #b4552d; --pale: #d5e2f1; }
* { box-sizing: border-box; print-color-adjust: exact; -webkit-print-color-adjust: exact; }
body { margin: 0; background: #f3f6f9; color: var(--ink); font: 14px/1.45 system-ui, "DejaVu Sans", sans-serif;
  overflow-wrap: anywhere; }
main { max-width: 1060px; margin: 0 auto; padding: 32px 20px; }
h1 { margin: 0; font-size: 26px; }
h2 { margin: 32px 0 12px; font-size: 18px; }
h3 { margin: 0 0 6px; font-size: 14px; }
h2, h3, h2 + p { break-after: avoid; }
tr, li { break-inside: avoid; }
p { margin: 2px 0; }
small, .soft { color: var(--soft); }
article, figure { background: #fff; border: 1px solid var(--line); border-radius: 10px; padding: 14px 16px;
  margin: 0 0 12px; break-inside: avoid; }
.tiles { display: flex; flex-wrap: wrap; gap: 12px; margin-top: 16px; }
.tiles div { background: #fff; border: 1px solid var(--line); border-radius: 10px; padding: 10px 16px; min-width: 120px; }
.tiles b { display: block; font-size: 24px; color: var(--accent); }
.verdict { margin: 14px 0; font-size: 16px; }
.tag { display: inline-block; background: var(--pale); border-radius: 4px; padding: 0 6px; margin-left: 4px;
  font-size: 12px; font-weight: 400; }
ul { margin: 6px 0 0; padding-left: 20px; }
.recodings { display: grid; grid-template-columns: repeat(2, minmax(0, 1fr)); gap: 12px; align-items: start;
  margin-bottom: 12px; }
.recodings article { margin: 0; }
table { border-collapse: collapse; width: 100%; font-size: 13px; }
thead { display: table-header-group; }
th { text-align: left; font-weight: 400; color: var(--soft); }
td, th { padding: 1px 6px 1px 0; }
td { min-width: 72px; }
.number { min-width: 0; padding-left: 6px; text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
.bar { position: relative; width: 36%; min-width: 90px; height: 18px; padding: 0; }
.bar i { position: absolute; top: calc(50% - 6px); height: 12px; border-radius: 2px; background: var(--accent); }
.bar i.below { background: var(--below); }
.bar u { position: absolute; top: 0; bottom: 0; width: 1px; background: #9aa8b8; }
.signatures { display: grid; grid-template-columns: auto 3fr auto 1fr; gap: 18px 8px; align-items: end;
  margin: 28px 0 8px; break-inside: avoid; }
.signatures i { border-bottom: 1px solid var(--soft); }
.plot { position: relative; height: 220px; margin: 22px 60px 42px 44px; font-size: 11px; color: var(--soft); }
.plot svg { position: absolute; width: 100%; height: 100%; overflow: visible; }
.plot svg * { vector-effect: non-scaling-stroke; }
.plot i, .plot b, .plot span { position: absolute; font: inherit; white-space: nowrap; }
.plot .below { top: 0; bottom: 0; border-left: 1px solid var(--line); }
.plot .below b { top: calc(100% + 4px); transform: translateX(-50%); }
.plot .left { left: 0; right: 0; border-top: 1px solid var(--line); }
.plot .left b { right: calc(100% + 6px); transform: translateY(-50%); }
.plot .right { left: 100%; }
.plot .right b { left: 6px; transform: translateY(-50%); }
.plot .under { top: calc(100% + 20px); left: 0; right: 0; text-align: center; }
.plot .over { bottom: calc(100% + 6px); left: 0; }
.plot .over.right { left: auto; right: 0; }
@media (max-width: 760px) { .recodings { grid-template-columns: minmax(0, 1fr); } }
@media (max-width: 520px) { main { padding: 20px 12px; } .bar { width: 28%; min-width: 50px; }
  .plot .below.minor b { display: none; } }
@page { size: A4; margin: 14mm; }
@media print { body { background: #fff; font-size: 11px; } main { max-width: none; padding: 0; }
  table { font-size: 11px; } .hash { font-size: 9.5px; white-space: nowrap; }
  .bar { width: 16%; min-width: 44px; } .long { break-inside: auto; }
  .recodings { display: block; columns: 2; } .recodings article { margin-bottom: 10px; } }
</style>
)";

inline constexpr char16_t signatures[] = uR"(<div class="signatures">
<span>Checked by</span><i></i><span>Date</span><i></i>
<span>Approved by</span><i></i><span>Date</span><i></i>
</div>
)";
